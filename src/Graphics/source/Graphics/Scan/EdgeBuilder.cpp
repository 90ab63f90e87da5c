// SPDX-License-Identifier: MIT
// Turns vertex loops into edges: sides outside the clip are merged, the others set up in closed form.
#include "EdgeBuilder.h"

#include <algorithm>
#include <climits>

namespace Graphics {

namespace {

/// floor(n / d) for d > 0; `rest` is the remainder, 0 ... d - 1.
inline int64_t FloorDivide(int64_t n, int64_t d, int64_t& rest) noexcept {
    int64_t q = n / d;
    int64_t r = n - q * d;
    if (r < 0) {
        --q;
        r += d;
    }
    rest = r;
    return q;
}

} // namespace

void EdgeBuilder::Begin(const Rect& clipPixels) {
    m_vertices.reserve(256);
    m_vertices.clear();
    m_figures.clear();
    m_chains.clear();
    m_hasSums = false;
    m_next = m_vertices.data();
    m_limit = m_next + m_vertices.capacity();
    m_figureStart = 0;
    const Vertex topLeft = ToVertex({clipPixels.left, clipPixels.top});
    const Vertex bottomRight = ToVertex({clipPixels.right, clipPixels.bottom});
    m_clipLeft = topLeft.x;
    m_clipRight = bottomRight.x;
    m_clipFirst = topLeft.y >> 4;
    m_clipLast = (bottomRight.y + 15) >> 4;
}

void EdgeBuilder::Grow() {
    const size_t used = static_cast<size_t>(m_next - m_vertices.data());
    m_vertices.resize(used);
    m_vertices.reserve(used + used / 2 + 256);
    m_next = m_vertices.data() + used;
    m_limit = m_vertices.data() + m_vertices.capacity();
}

void EdgeBuilder::CloseFigure() {
    const auto end = static_cast<uint32_t>(m_next - m_vertices.data());
    if (end != m_figureStart) {
        m_figures.push_back(end);
        m_figureStart = end;
    }
}

/// A vertex is dropped if it and both neighbours lie at or beyond the same side of the clip. That changes sides only
/// outside the clip, and the loop stays closed.
uint32_t EdgeBuilder::DropOutside(Vertex* loop, uint32_t count) const noexcept {
    const auto side = [this](int32_t x) { return x <= m_clipLeft ? 1U : x >= m_clipRight ? 2U : 0U; };
    const uint32_t firstSide = side(loop[0].x);
    uint32_t before = side(loop[count - 1].x);
    uint32_t here = firstSide;
    uint32_t kept = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t after = i + 1 < count ? side(loop[i + 1].x) : firstSide;
        if (here == 0 || here != before || here != after) {
            loop[kept++] = loop[i];
        }
        before = here;
        here = after;
    }
    return kept;
}

/// Claim: |winding| is at most the number of runs of downward sides that meet a sub-scanline. Proof: each run crosses
/// it at most once, and a closed loop crosses it as often upward as downward.
void EdgeBuilder::AddChains(const Vertex* loop, uint32_t count) {
    int32_t y = loop[count - 1].y;
    int32_t top = y;
    bool down = false;
    bool firstDown = false;
    bool seen = false;
    for (uint32_t i = 0; i < count; ++i) {
        const int32_t next = loop[i].y;
        if (next == y) {
            continue;
        }
        const bool goesDown = next > y;
        if (goesDown != down || !seen) {
            if (down) {
                AddChain(top, y);
            }
            if (!seen) {
                firstDown = goesDown;
                seen = true;
            }
            m_chainCount += goesDown ? 1U : 0U;
            top = y;
            down = goesDown;
        }
        y = next;
    }
    if (down) {
        AddChain(top, y);
        m_chainCount -= firstDown ? 1U : 0U; // the first and the last run are the same
    }
}

void EdgeBuilder::AddChain(int32_t top, int32_t bottom) {
    constexpr size_t kMost = 4096;
    constexpr int32_t kMostRows = 1 << 18;
    m_chains.push_back({top >> 4, bottom >> 4});
    if (m_chains.size() == kMost && m_clipLast - m_clipFirst <= kMostRows) {
        if (!m_hasSums) {
            StartSums(static_cast<size_t>(m_clipLast - m_clipFirst));
            m_hasSums = true;
        }
        SumChains(m_clipFirst, m_clipLast, 0);
        m_chains.clear();
    }
}

void EdgeBuilder::StartSums(size_t rows) {
    m_rowSums.resize(rows + 1);
    std::fill_n(m_rowSums.data(), rows + 1, 0);
}

/// Adds the chains to the rows of 2^shift sub-scanlines from `first` to before `last`.
void EdgeBuilder::SumChains(int32_t first, int32_t last, int shift) {
    const int32_t firstRow = first >> shift;
    for (const RowRange& c : m_chains) {
        const int32_t from = std::max(c.first, first);
        const int32_t to = std::min(c.last, last);
        if (from < to) {
            ++m_rowSums[static_cast<size_t>((from >> shift) - firstRow)];
            --m_rowSums[static_cast<size_t>(((to - 1) >> shift) - firstRow) + 1];
        }
    }
}

/// The largest number of chains in one row. Sub-scanlines are counted only if pixel rows would require the widest
/// cells.
uint32_t EdgeBuilder::WindingBound(int32_t first, int32_t last) {
    if (m_hasSums) {
        SumChains(m_clipFirst, m_clipLast, 0);
        return static_cast<uint32_t>(MostOverlapping(m_rowSums));
    }
    uint32_t bound = m_chainCount;
    for (int shift = 3; shift >= 0 && bound > (shift == 0 ? 15U : 3U); shift -= 3) {
        StartSums(static_cast<size_t>(((last - 1) >> shift) - (first >> shift)) + 1);
        SumChains(first, last, shift);
        bound = std::min(bound, static_cast<uint32_t>(MostOverlapping(m_rowSums)));
    }
    return bound;
}

FillShape EdgeBuilder::Measure(bool nonZero) {
    FillShape shape{INT_MAX, INT_MIN, INT_MAX, INT_MAX, INT_MIN, INT_MIN, 1};
    m_vertices.resize(static_cast<size_t>(m_next - m_vertices.data()));
    m_chainCount = 0;
    uint32_t from = 0;
    uint32_t to = 0; // loops move to the front as vertices are dropped
    size_t loops = 0;
    for (size_t i = 0; i < m_figures.size(); ++i) {
        Vertex* loop = m_vertices.data() + from;
        uint32_t count = m_figures[i] - from;
        from = m_figures[i];
        int32_t minX = INT_MAX;
        int32_t maxX = INT_MIN;
        int32_t minY = INT_MAX;
        int32_t maxY = INT_MIN;
        for (uint32_t k = 0; k < count; ++k) {
            minX = std::min(minX, loop[k].x);
            maxX = std::max(maxX, loop[k].x);
            minY = std::min(minY, loop[k].y);
            maxY = std::max(maxY, loop[k].y);
        }
        const bool beside = maxX <= m_clipLeft || minX >= m_clipRight;
        if (beside || std::max(minY >> 4, m_clipFirst) >= std::min(maxY >> 4, m_clipLast)) {
            continue; // none of it would be kept
        }
        if (minX <= m_clipLeft || maxX >= m_clipRight) {
            count = DropOutside(loop, count);
            minY = INT_MAX;
            maxY = INT_MIN;
            for (uint32_t k = 0; k < count; ++k) {
                minY = std::min(minY, loop[k].y);
                maxY = std::max(maxY, loop[k].y);
            }
        }
        const int32_t first = std::max(minY >> 4, m_clipFirst);
        const int32_t last = std::min(maxY >> 4, m_clipLast);
        if (count < 2 || first >= last) {
            continue;
        }
        if (nonZero) {
            AddChains(loop, count);
        }
        shape.minX = std::min(shape.minX, minX);
        shape.maxX = std::max(shape.maxX, maxX);
        shape.minY = std::min(shape.minY, minY);
        shape.maxY = std::max(shape.maxY, maxY);
        shape.first = std::min(shape.first, first);
        shape.last = std::max(shape.last, last);
        if (m_vertices.data() + to != loop) {
            std::copy(loop, loop + count, m_vertices.data() + to);
        }
        to += count;
        m_figures[loops++] = to;
    }
    m_figures.resize(loops);
    m_vertices.resize(to);
    m_next = m_vertices.data() + to;
    m_figureStart = to;
    if (nonZero && loops != 0) {
        shape.windingBound = WindingBound(shape.first, shape.last);
    }
    return shape;
}

bool EdgeBuilder::SetUp(Vertex from, Vertex to, int32_t clipFirst, int32_t clipLast, Edge& e) noexcept {
    e.direction = 1;
    if (to.y < from.y) {
        std::swap(from, to);
        e.direction = -1;
    }
    e.first = from.y >> 4;
    e.last = to.y >> 4;
    if (e.first == e.last || e.first >= clipLast || e.last <= clipFirst) {
        return false;
    }
    const int64_t dy = to.y - from.y;
    const int64_t dx = static_cast<int64_t>(to.x) - from.x;
    int64_t rest;
    e.step = static_cast<int32_t>(FloorDivide(dx, dy, rest));
    e.increment = static_cast<int32_t>(rest);
    e.denominator = static_cast<int32_t>(dy);

    // The position at the next multiple of 8 in y, n fine steps from error -1: x + floor((n * dx - 1) / dy) + 1.
    const int64_t n = (8 - (from.y & 7)) & 7;
    int64_t x = from.x + FloorDivide(n * dx - 1, dy, rest) + 1;
    int64_t error = rest - dy;
    if ((x & 7) != 0) {
        error -= (8 - (x & 7)) * dy;
        x += 7;
    }
    x >>= 4;
    error >>= 4;
    if (e.first < clipFirst) {
        const int64_t k = static_cast<int64_t>(clipFirst) - e.first;
        x += k * e.step + FloorDivide(error + k * e.increment, dy, rest) + 1;
        error = rest - dy;
        e.first = clipFirst;
    }
    e.x = static_cast<int32_t>(x);
    e.error = static_cast<int32_t>(error);
    return true;
}

bool EdgeBuilder::TwoUprightEdges(Edge (&out)[2]) const {
    size_t count = 0;
    const Vertex* v = m_vertices.data();
    for (const uint32_t end : m_figures) {
        const Vertex* const stop = m_vertices.data() + end;
        Vertex from = stop[-1];
        for (; v != stop; ++v) {
            Edge e;
            const bool upright = v->x == from.x;
            if (SetUp(from, *v, m_clipFirst, m_clipLast, e)) {
                if (!upright || count == 2) {
                    return false;
                }
                out[count++] = e;
            }
            from = *v;
        }
    }
    return count == 2 && out[0].first == out[1].first && out[0].last == out[1].last;
}

bool EdgeBuilder::UprightRectangle(Vertex& a, Vertex& b) const noexcept {
    if (m_figures.size() != 1 || m_figures[0] != 4) {
        return false;
    }
    const Vertex* const v = m_vertices.data();
    a = v[0];
    b = v[2];
    return (v[1].y == a.y && v[1].x == b.x && v[3].x == a.x && v[3].y == b.y) ||
           (v[1].x == a.x && v[1].y == b.y && v[3].y == a.y && v[3].x == b.x);
}

void EdgeBuilder::Build(HeapArray<Edge>& out, int32_t first, int32_t last) const {
    out.clear();
    out.reserve(m_vertices.size());
    ForEachSide([&](const Vertex& from, const Vertex& to) {
        Edge e;
        if (SetUp(from, to, first, last, e)) {
            out.push_back(e);
        }
    });
}

} // namespace Graphics
