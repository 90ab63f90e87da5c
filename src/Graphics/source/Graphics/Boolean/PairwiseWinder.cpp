// SPDX-License-Identifier: MIT
#include "PairwiseWinder.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Graphics {
namespace {

constexpr double kWeightOfB = 1 << 26;
constexpr size_t kLanes = 2;

// A sweep takes about 0.4 us for a crossing; here a pair takes 5 ns, both ways, and a crossing 0.1 us. So it is worth
// while if more than one pair in fifty crosses; twice that stays clear of the noise.
constexpr size_t kPairsPerCrossing = 25;
constexpr size_t kFewEdges = 32, kMostPairs = 256, kMostSamples = 32, kEdgesPerSample = 64;
// Edges that may be done without a find: comparing as many with all others takes what a sweep takes at least.
constexpr size_t kFreeEdges = 64;

/// Places in a list, spread as at random, so that no order of the list can meet or miss what is rare in it.
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

/// Whether the edges cross inside both.
[[nodiscard]] bool Crosses(const GridEdge& e, const GridEdge& f) noexcept {
    const auto parts = [](const GridEdge& g, const GridPoint& p, const GridPoint& q) {
        const int64_t a = g.SideOf(p), b = g.SideOf(q);
        return (a < 0 && b > 0) || (a > 0 && b < 0);
    };
    return e.lo.y <= f.hi.y && f.lo.y <= e.hi.y && parts(e, f.lo, f.hi) && parts(f, e.lo, e.hi);
}

/// Increases from e's begin to its end, and tells points of the grid apart that lie along it.
[[nodiscard]] uint32_t Distance(const GridEdge& e, const GridPoint& p) noexcept {
    return static_cast<uint32_t>(std::abs(p.x - e.lo.x) + std::abs(p.y - e.lo.y));
}

} // namespace

bool PairwiseWinder::Worthwhile() {
    const size_t count = m_edges.size();
    if (count < kFewEdges || !SampledPairsCross()) {
        return false;
    }
    Load();
    const size_t samples = std::min(kMostSamples, count / kEdgesPerSample + 2);
    size_t points = 0;
    RandomPlaces places(count);
    for (size_t i = 0; i < samples; ++i) {
        Wind(places.Next());
        points += LonelyPassages();
    }
    return points * kPairsPerCrossing >= samples * count;
}

/// How many passages are at a point of their own. Where several edges meet at one point, a sweep stops once for all.
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

/// A glance at few pairs: most input is sparse, and shall not pay for being asked.
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

void PairwiseWinder::Load() {
    const size_t count = m_edges.size(), padded = (count + kLanes - 1) / kLanes * kLanes;
    Columns& c = m_columns;
    for (HeapArray<double>* column :
         {&c.loX, &c.loY, &c.hiX, &c.hiY, &c.dx, &c.dy, &c.offset, &c.weight, &m_sideOfLo, &m_sideOfHi}) {
        column->resize(padded);
        std::fill(column->begin(), column->end(), 0.0);
    }
    m_crossed.resize(padded + kLanes);
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
        Load();
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

/// Compares the edge with all others. The way along it, seen as running at its left by next to nothing, crosses an edge
/// that has one end strictly left and one on the edge or right, if the edge's own ends lie strictly on both sides. What
/// meets the begin is crossed before: it belongs to the winding number there, which counts what the ray to the left
/// meets, its rows half open.
void PairwiseWinder::Meet(uint32_t edge) {
    const Columns& c = m_columns;
    const GridEdge& e = m_edges[edge];
    const __m128d zero = _mm_setzero_pd(), half = _mm_set1_pd(0.5);
    const __m128d x0 = _mm_set1_pd(e.lo.x), y0 = _mm_set1_pd(e.lo.y);
    const __m128d x1 = _mm_set1_pd(e.hi.x), y1 = _mm_set1_pd(e.hi.y);
    const __m128d dx = _mm_set1_pd(c.dx[edge]), dy = _mm_set1_pd(c.dy[edge]), offset = _mm_set1_pd(c.offset[edge]);
    const auto side = [](__m128d x, __m128d y, __m128d alongX, __m128d alongY, __m128d less) {
        return _mm_sub_pd(_mm_sub_pd(_mm_mul_pd(x, alongY), _mm_mul_pd(y, alongX)), less);
    };
    __m128d winding = zero;
    size_t crossed = 0;
    m_a = m_b = 0;
    for (size_t i = 0; i < c.loX.size(); i += kLanes) {
        const __m128d loY = _mm_load_pd(&c.loY[i]), hiY = _mm_load_pd(&c.hiY[i]);
        const __m128d otherLo = side(_mm_load_pd(&c.loX[i]), loY, dx, dy, offset);
        const __m128d otherHi = side(_mm_load_pd(&c.hiX[i]), hiY, dx, dy, offset);
        const __m128d alongX = _mm_load_pd(&c.dx[i]), alongY = _mm_load_pd(&c.dy[i]), less = _mm_load_pd(&c.offset[i]);
        const __m128d lo = side(x0, y0, alongX, alongY, less), hi = side(x1, y1, alongX, alongY, less);
        _mm_store_pd(&m_sideOfLo[i], lo);
        _mm_store_pd(&m_sideOfHi[i], hi);
        // The half makes what lies on the edge lie right of it.
        const __m128d parted = _mm_mul_pd(_mm_add_pd(otherLo, half), _mm_add_pd(otherHi, half));
        const auto crosses =
            static_cast<uint32_t>(_mm_movemask_pd(_mm_cmplt_pd(_mm_max_pd(parted, _mm_mul_pd(lo, hi)), zero)));
        m_crossed[crossed] = static_cast<uint32_t>(i);
        crossed += crosses & 1U;
        m_crossed[crossed] = static_cast<uint32_t>(i + 1);
        crossed += crosses >> 1;
        const __m128d right =
            _mm_or_pd(_mm_cmpgt_pd(lo, zero), _mm_and_pd(_mm_cmpeq_pd(lo, zero), _mm_cmpgt_pd(hi, zero)));
        const __m128d inRows = _mm_and_pd(_mm_cmple_pd(loY, y0), _mm_cmplt_pd(y0, hiY));
        winding = _mm_add_pd(winding, _mm_and_pd(_mm_and_pd(right, inRows), _mm_load_pd(&c.weight[i])));
        const __m128d inLine = _mm_and_pd(_mm_cmpeq_pd(otherLo, zero), _mm_cmpeq_pd(otherHi, zero));
        if (_mm_movemask_pd(inLine) != 0) {
            for (size_t k = i; k < std::min<size_t>(i + kLanes, edge); ++k) {
                Overlap(e, m_edges[k]);
            }
        }
    }
    const double both = _mm_cvtsd_f64(winding) + _mm_cvtsd_f64(_mm_unpackhi_pd(winding, winding));
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

/// An edge with a smaller index that perhaps lies upon e: where it does, it is at e's left.
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

/// Follows the winding number along the edge. Points at which the border goes straight on are left out.
void PairwiseWinder::Walk(const GridEdge& e, HeapArray<GridEdge>& border) const {
    int32_t a = m_a, b = m_b;
    const auto weight = [&] {
        return static_cast<int32_t>(m_test.Inside(a, b)) - static_cast<int32_t>(m_test.Inside(a + e.a, b + e.b));
    };
    int32_t current = weight();
    GridPoint from = e.lo;
    const auto put = [&](const GridPoint& to) {
        if (current != 0 && !(from == to)) {
            const bool forward = Before(from, to); // a line that falls may have a level piece
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
