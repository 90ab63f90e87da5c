// SPDX-License-Identifier: MIT
// Stores the vertices of a fill and turns them into edges. Vertices are in 1/128 pixel (fine units); edges are stepped
// in 1/8 pixel (sub units, fine >> 4), one step per sub-scanline.
#pragma once

#include <algorithm>
#include <bit>

#include "../ProcessHeap.h"
#include "../Simd/BaseVectors.h"
#include "../Types.h"

namespace Graphics {

/// In fine units.
struct Vertex {
    int32_t x;
    int32_t y;
};

/// An edge at sub-scanline `first`. The next x is x + step, plus one if error + increment reaches 0 (the error then
/// falls by `denominator`). So x after k steps is x + k * step + floor((error + k * increment) / denominator) + 1.
struct Edge {
    int32_t first; // inclusive
    int32_t last;  // exclusive
    int32_t x;
    int32_t step;
    int32_t error;       // -denominator ... -1
    int32_t increment;   // 0 ... denominator - 1
    int32_t denominator; // height in fine units
    int32_t direction;   // 1 downward, -1 upward
};

/// Coordinates are limited to +-2^30 fine units, so that the height and width of an edge fit 32 bits.
inline constexpr float kFineLimit = 1073741760.0F;

/// Truncated toward zero; NaN gives 0.
[[nodiscard]] inline Vertex ToVertex(const Point& p) noexcept {
    using namespace GX_SIMD_NAMESPACE;
    auto v = (F32)U64{std::bit_cast<uint64_t>(p), 0};
    v = (F32)((I32)v & (v == v)) * 128.0F;
    v = Lower(Higher(v, Splat(-kFineLimit)), Splat(kFineLimit));
    return std::bit_cast<Vertex>(((U64)Truncate(v))[0]);
}

/// The sub column of an upright edge at `fine`, rounded as edge set-up rounds.
[[nodiscard]] inline constexpr int32_t UprightColumn(int32_t fine) noexcept {
    return (fine + ((fine & 7) != 0 ? 7 : 0)) >> 4;
}

/// The largest number of ranges that overlap: each adds 1 to the change at its begin and subtracts 1 behind its end.
template <class Changes> [[nodiscard]] size_t MostOverlapping(const Changes& changes) noexcept {
    int32_t sum = 0;
    int32_t most = 0;
    for (const int32_t change : changes) {
        sum += change;
        most = std::max(most, sum);
    }
    return static_cast<size_t>(most);
}

/// Properties of a fill that the vertices tell before edges are built.
struct FillShape {
    int32_t first; // sub-scanlines inside the clip, first inclusive, last exclusive; first >= last if there is no edge
    int32_t last;
    int32_t minX, minY, maxX, maxY; // fine units, over the figures that have edges
    uint32_t windingBound;          // upper bound of |winding|
};

class EdgeBuilder {
public:
    /// Starts a new fill. `clipPixels` determines which edges and vertices exist.
    void Begin(const Rect& clipPixels);

    void Add(Vertex v) {
        if (m_next == m_limit) {
            Grow();
        }
        *m_next++ = v;
    }
    /// Closes the loop of the vertices added since the last call.
    void CloseFigure();

    /// Moves every vertex added so far. Moving by whole sub units keeps the edges' steps and rounding.
    void Move(int32_t fineX, int32_t fineY) noexcept {
        for (Vertex* v = m_vertices.data(); v != m_next; ++v) {
            v->x += fineX;
            v->y += fineY;
        }
    }

    /// Drops vertices horizontally outside the clip and measures the rest. Call once, after the last figure.
    [[nodiscard]] FillShape Measure(bool nonZero);

    /// True, with both returned, if the fill has exactly two edges, both vertical and of the same height.
    [[nodiscard]] bool TwoUprightEdges(Edge (&out)[2]) const;

    /// True, with two opposite corners returned, if the fill is one loop of four upright sides.
    [[nodiscard]] bool UprightRectangle(Vertex& a, Vertex& b) const noexcept;

    /// Builds every edge inside the sub-scanlines [first, last).
    void Build(HeapArray<Edge>& out, int32_t first, int32_t last) const;

    [[nodiscard]] size_t SideCount() const noexcept { return m_vertices.size(); }

    /// Frees arrays that grew large, and the fill.
    void Trim() noexcept {
        m_vertices.Trim();
        m_figures.Trim();
        m_chains.Trim();
        m_rowSums.Trim();
    }

    /// Calls f(from, to) for each side of each loop.
    template <class F> void ForEachSide(F&& f) const {
        const Vertex* v = m_vertices.data();
        for (const uint32_t end : m_figures) {
            const Vertex* const stop = m_vertices.data() + end;
            if (v == stop) {
                continue;
            }
            Vertex from = stop[-1];
            for (; v != stop; ++v) {
                f(from, *v);
                from = *v;
            }
        }
    }

    /// Calls f(first vertex, third vertex) for each figure. Requires that every figure has four vertices.
    template <class F> void ForEachBox(F&& f) const {
        const Vertex* const stop = m_vertices.data() + (m_figures.empty() ? 0 : m_figures[m_figures.size() - 1]);
        for (const Vertex* v = m_vertices.data(); v != stop; v += 4) {
            f(v[0], v[2]);
        }
    }
    [[nodiscard]] size_t FigureCount() const noexcept { return m_figures.size(); }

    [[nodiscard]] int32_t ClipLeft() const noexcept { return m_clipLeft; }
    [[nodiscard]] int32_t ClipRight() const noexcept { return m_clipRight; }
    [[nodiscard]] int32_t ClipFirst() const noexcept { return m_clipFirst; }
    [[nodiscard]] int32_t ClipLast() const noexcept { return m_clipLast; }

    /// False if the side gives no edge between the sub-scanlines clipFirst and clipLast.
    [[nodiscard]] static bool SetUp(Vertex from, Vertex to, int32_t clipFirst, int32_t clipLast, Edge& e) noexcept;

private:
    struct RowRange {
        int32_t first; // sub-scanlines, inclusive
        int32_t last;  // exclusive
    };

    void Grow();
    [[nodiscard]] uint32_t DropOutside(Vertex* loop, uint32_t count) const noexcept;
    void AddChains(const Vertex* loop, uint32_t count);
    void AddChain(int32_t top, int32_t bottom);
    void StartSums(size_t rows);
    void SumChains(int32_t first, int32_t last, int shift);
    [[nodiscard]] uint32_t WindingBound(int32_t first, int32_t last);

    HeapArray<Vertex> m_vertices;
    HeapArray<uint32_t> m_figures; // end index of each loop
    HeapArray<RowRange> m_chains;  // downward runs of sides, not yet added to the sums
    HeapArray<int32_t> m_rowSums;  // chains per sub-scanline, as changes from row to row
    bool m_hasSums = false;        // m_rowSums holds chains: they were too many to keep one by one
    Vertex* m_next = nullptr;      // inside m_vertices
    Vertex* m_limit = nullptr;
    uint32_t m_figureStart = 0;
    uint32_t m_chainCount = 0;
    int32_t m_clipLeft = 0;
    int32_t m_clipRight = 0;
    int32_t m_clipFirst = 0;
    int32_t m_clipLast = 0;
};

} // namespace Graphics
