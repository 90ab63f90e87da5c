// SPDX-License-Identifier: MIT
#include "PairwiseWinder.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "../Simd/BaseVectors.h"

namespace Graphics {
namespace {

constexpr double kWeightOfB = 1 << 26;
constexpr size_t kAtOnce = GX_SIMD_NAMESPACE::kLongLanes;

// A sweep takes about 0.4 us per crossing; here a pair takes 5 ns, in both directions, and a crossing 0.1 us. So this
// is faster if more than one pair in fifty crosses; twice that rate is required, to stay clear of noise.
constexpr size_t kPairsPerCrossing = 25;
constexpr size_t kFewEdges = 32, kMostPairs = 256, kMostSamples = 32, kEdgesPerSample = 64;
// Edges compared before the first check: comparing so many with all others costs no more than a sweep.
constexpr size_t kFreeEdges = 64;

/// Pseudo-random places in a list, so that no order of the list can bias the samples.
class RandomPlaces {
public:
    explicit RandomPlaces(size_t count) noexcept : m_count(count) {}
    [[nodiscard]] uint32_t Next() noexcept {
        m_state = m_state * 6364136223846793005U + 1442695040888963407U; // Knuth's MMIX
        return static_cast<uint32_t>((m_state >> 32) * m_count >> 32);
    }

private:
    size_t m_count;
    uint64_t m_state = 0x9E3779B97F4A7C15U;
};

/// Whether the edges cross strictly inside both.
[[nodiscard]] bool Crosses(const GridEdge& e, const GridEdge& f) noexcept {
    const auto parts = [](const GridEdge& g, const GridPoint& p, const GridPoint& q) {
        const int64_t a = g.SideOf(p), b = g.SideOf(q);
        return (a < 0 && b > 0) || (a > 0 && b < 0);
    };
    return e.lo.y <= f.hi.y && f.lo.y <= e.hi.y && parts(e, f.lo, f.hi) && parts(f, e.lo, e.hi);
}

/// Increases from e's start to its end and differs for distinct grid points along it.
[[nodiscard]] uint32_t Distance(const GridEdge& e, const GridPoint& p) noexcept {
    return static_cast<uint32_t>(std::abs(p.x - e.lo.x) + std::abs(p.y - e.lo.y));
}

} // namespace

bool PairwiseWinder::Worthwhile() {
    const size_t count = m_edges.size();
    if (count < kFewEdges || !SampledPairsCross()) {
        return false;
    }
    LoadColumns();
    const size_t samples = std::min(kMostSamples, count / kEdgesPerSample + 2);
    size_t points = 0;
    RandomPlaces places(count);
    for (size_t i = 0; i < samples; ++i) {
        Wind(places.Next());
        points += LonelyPassages();
    }
    return points * kPairsPerCrossing >= samples * count;
}

/// The number of passages at distinct points. Where several edges meet at one point, a sweep stops only once.
size_t PairwiseWinder::LonelyPassages() const noexcept {
    size_t lonely = 0;
    for (size_t i = 0; i < m_order.size(); ++i) {
        const uint64_t distance = m_order[i] >> 32;
        lonely += (i == 0 || m_order[i - 1] >> 32 != distance) &&
                          (i + 1 == m_order.size() || m_order[i + 1] >> 32 != distance)
                      ? 1
                      : 0;
    }
    return lonely;
}

/// A first test on few pairs, because most input is sparse and must not pay for a larger one.
bool PairwiseWinder::SampledPairsCross() const noexcept {
    const size_t count = m_edges.size(), pairs = std::min(kMostPairs, count / 4);
    size_t crossings = 0;
    RandomPlaces places(count);
    for (size_t i = 0; i < pairs; ++i) {
        const GridEdge& e = m_edges[places.Next()];
        crossings += Crosses(e, m_edges[places.Next()]) ? 1 : 0;
    }
    return crossings * kPairsPerCrossing >= pairs;
}

void PairwiseWinder::LoadColumns() {
    const size_t count = m_edges.size(), padded = (count + kAtOnce - 1) / kAtOnce * kAtOnce;
    Columns& c = m_columns;
    for (HeapArray<double>* column :
         {&c.loX, &c.loY, &c.hiX, &c.hiY, &c.dx, &c.dy, &c.offset, &c.weight, &m_sideOfLo, &m_sideOfHi}) {
        column->resize(padded);
        std::fill(column->begin(), column->end(), 0.0);
    }
    m_crossed.resize(padded + kAtOnce);
    for (size_t i = 0; i < count; ++i) {
        const GridEdge& e = m_edges[i];
        c.loX[i] = e.lo.x;
        c.loY[i] = e.lo.y;
        c.hiX[i] = e.hi.x;
        c.hiY[i] = e.hi.y;
        c.dx[i] = e.hi.x - e.lo.x;
        c.dy[i] = e.hi.y - e.lo.y;
        c.offset[i] = c.loX[i] * c.dy[i] - c.loY[i] * c.dx[i];
        c.weight[i] = e.a + e.b * kWeightOfB;
    }
}

bool PairwiseWinder::Run(HeapArray<GridEdge>& border) {
    if (m_crossed.empty()) {
        LoadColumns();
    }
    const size_t count = m_edges.size();
    size_t points = 0;
    for (size_t i = 0; i < count; ++i) {
        Wind(static_cast<uint32_t>(i));
        points += LonelyPassages();
        if ((i + 1) * count > kFreeEdges * count + 2 * kPairsPerCrossing * points) {
            border.clear();
            return false;
        }
        Walk(m_edges[i], border);
    }
    return true;
}

void PairwiseWinder::Wind(uint32_t edge) {
    m_pairs += m_edges.size();
    m_passages.clear();
    m_order.clear();
    Meet(edge);
    if (!m_sorter.Sort(m_order, [](uint64_t key) { return key; })) {
        std::sort(m_order.begin(), m_order.end());
    }
}

/// Compares the edge with all others. The path follows the edge, shifted to its left by an infinitesimal amount. It
/// crosses another edge that has one end strictly left and one on the edge or right of it, if the edge's own ends lie
/// strictly on both sides of the other. What meets the start counts as crossed before: it is part of the winding number
/// there, which counts what the ray to the left meets, with half-open rows.
void PairwiseWinder::Meet(uint32_t edge) {
    const Columns& c = m_columns;
    const GridEdge& e = m_edges[edge];
    using namespace GX_SIMD_NAMESPACE;
    const auto splat = [](double v) { return v - F64{}; };
    const F64 x0 = splat(e.lo.x), y0 = splat(e.lo.y), x1 = splat(e.hi.x), y1 = splat(e.hi.y);
    const F64 dx = splat(c.dx[edge]), dy = splat(c.dy[edge]), offset = splat(c.offset[edge]);
    const auto side = [](F64 x, F64 y, F64 alongX, F64 alongY, F64 less)
                          GX_INLINE { return x * alongY - y * alongX - less; };
    const auto at = [](const auto& column, size_t i)
                        GX_INLINE { return Load<F64>(__builtin_assume_aligned(column.data() + i, sizeof(F64))); };
    F64 winding{};
    size_t crossed = 0;
    m_a = m_b = 0;
    for (size_t i = 0; i < c.loX.size(); i += kAtOnce) {
        const F64 loY = at(c.loY, i), hiY = at(c.hiY, i);
        const F64 otherLo = side(at(c.loX, i), loY, dx, dy, offset);
        const F64 otherHi = side(at(c.hiX, i), hiY, dx, dy, offset);
        const F64 alongX = at(c.dx, i), alongY = at(c.dy, i), less = at(c.offset, i);
        const F64 lo = side(x0, y0, alongX, alongY, less), hi = side(x1, y1, alongX, alongY, less);
        Store(&m_sideOfLo[i], lo);
        Store(&m_sideOfHi[i], hi);
        // Adding a half makes points on the edge count as right of it.
        const F64 parted = (otherLo + 0.5) * (otherHi + 0.5);
        const uint32_t crosses = MaskBits((I64)(Higher(parted, lo * hi) < 0.0));
        m_crossed[crossed] = static_cast<uint32_t>(i);
        crossed += crosses & 1U;
        m_crossed[crossed] = static_cast<uint32_t>(i + 1);
        crossed += crosses >> 1;
        const F64 inRows = Masked(loY <= y0, Masked(y0 < hiY, at(c.weight, i)));
        winding += Masked(lo > 0.0, inRows) + Masked(lo == 0.0, Masked(hi > 0.0, inRows));
        if ((MaskBits((I64)(otherLo == 0.0)) & MaskBits((I64)(otherHi == 0.0))) != 0) {
            for (size_t k = i; k < std::min<size_t>(i + kAtOnce, edge); ++k) {
                Overlap(e, m_edges[k]);
            }
        }
    }
    const double both = winding[0] + winding[1];
    const double ofB = std::floor(both / kWeightOfB + 0.5);
    m_a += static_cast<int32_t>(both - ofB * kWeightOfB);
    m_b += static_cast<int32_t>(ofB);
    for (size_t i = 0; i < crossed; ++i) {
        const size_t other = m_crossed[i];
        const GridEdge& f = m_edges[other];
        const double lo = m_sideOfLo[other], whole = lo - m_sideOfHi[other];
        const auto crossing = LineCrossing::Along(e.lo, e.hi, static_cast<int64_t>(lo), static_cast<int64_t>(whole));
        const bool fromLeft = lo < 0;
        Pass(e, crossing.Nearest(), fromLeft ? f.a : -f.a, fromLeft ? f.b : -f.b);
    }
}

/// Handles an edge with a smaller index that may coincide with e: where it does, it counts as left of e.
void PairwiseWinder::Overlap(const GridEdge& e, const GridEdge& f) {
    if (e.SideOf(f.lo) != 0 || e.SideOf(f.hi) != 0 || !Before(f.lo, e.hi) || !Before(e.lo, f.hi)) {
        return;
    }
    if (Before(e.lo, f.lo)) {
        Pass(e, f.lo, f.a, f.b);
    } else {
        m_a += f.a;
        m_b += f.b;
    }
    if (Before(f.hi, e.hi)) {
        Pass(e, f.hi, -f.a, -f.b);
    }
}

void PairwiseWinder::Pass(const GridEdge& e, const GridPoint& at, int32_t a, int32_t b) {
    m_order.push_back(static_cast<uint64_t>(Distance(e, at)) << 32 | m_passages.size());
    m_passages.push_back({at, a, b});
}

/// Follows the winding number along the edge. Points at which the border continues straight are omitted.
void PairwiseWinder::Walk(const GridEdge& e, HeapArray<GridEdge>& border) const {
    int32_t a = m_a, b = m_b;
    const auto weight = [&] {
        return static_cast<int32_t>(m_test.Inside(a, b)) - static_cast<int32_t>(m_test.Inside(a + e.a, b + e.b));
    };
    int32_t current = weight();
    GridPoint from = e.lo;
    const auto put = [&](const GridPoint& to) {
        if (current != 0 && !(from == to)) {
            const bool forward = Before(from, to); // a falling line may have a horizontal piece
            GridEdge piece;
            piece.lo = forward ? from : to;
            piece.hi = forward ? to : from;
            piece.a = forward ? current : -current;
            piece.line = e.line;
            border.push_back(piece);
        }
        from = to;
    };
    for (size_t i = 0; i < m_order.size();) {
        const uint64_t distance = m_order[i] >> 32;
        const GridPoint at = m_passages[static_cast<uint32_t>(m_order[i])].at;
        for (; i < m_order.size() && m_order[i] >> 32 == distance; ++i) {
            const Passage& passage = m_passages[static_cast<uint32_t>(m_order[i])];
            a += passage.a;
            b += passage.b;
        }
        const int32_t next = weight();
        if (next != current) {
            put(at);
            current = next;
        }
    }
    put(e.hi);
}

} // namespace Graphics
