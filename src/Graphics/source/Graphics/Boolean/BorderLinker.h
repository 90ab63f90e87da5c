// SPDX-License-Identifier: MIT
// Follows the winding numbers through a sweep, point by point: decides which edges are borders of the area, and which
// border continues which.
#pragma once

#include "EdgePieces.h"
#include "WindingTest.h"

namespace Graphics {

class BorderLinker {
public:
    BorderLinker(EdgePieces& edges, const WindingTest& test) noexcept : m_edges(edges), m_test(test) {}

    void SetTest(const WindingTest& test) noexcept { m_test = test; }
    void BeginSweep() noexcept { m_junctions = 0; }

    /// Sets the winding numbers at both sides of the edges that start at a point, and whether they are borders. `left`
    /// is the edge left of the point, or kNone.
    void Wind(uint32_t left, const HeapArray<uint32_t>& starts) noexcept { Wind(left, starts.begin(), starts.end()); }
    void Wind(uint32_t left, uint32_t start) noexcept { Wind(left, &start, &start + 1); }
    /// Links the borders that end and start at a point; both lists are sorted from left to right.
    void Link(const GridPoint& point, uint32_t left, const HeapArray<uint32_t>& ends,
              const HeapArray<uint32_t>& starts);
    /// Link for one edge that ends and one that starts.
    void LinkPair(const GridPoint& point, uint32_t end, uint32_t start) noexcept {
        if (m_edges[end].Borders() && m_edges[start].Borders()) {
            Join(point, end, start);
        }
    }

    /// The number of points at which several borders meet.
    [[nodiscard]] uint32_t Junctions() const noexcept { return m_junctions; }

private:
    static constexpr uint32_t kNone = GridEdge::kNone;

    void Wind(uint32_t left, const uint32_t* start, const uint32_t* end) noexcept;
    void Join(const GridPoint& point, uint32_t first, uint32_t second) noexcept;

    EdgePieces& m_edges;
    WindingTest m_test;
    uint32_t m_junctions = 0;
    HeapArray<uint32_t> m_around;
};

} // namespace Graphics
