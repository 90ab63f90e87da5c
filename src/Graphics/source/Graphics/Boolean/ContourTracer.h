// SPDX-License-Identifier: MIT
// Follows the borders linked by the scanner and writes them as closed figures: simple ones, without points in the
// middle of a straight run, outlines winding as a rectangle and holes the other way.
#pragma once

#include "../Geometry/Geometry.h"
#include "PointGrid.h"
#include "Scanner.h"

namespace Graphics {

class ContourTracer {
public:
    ContourTracer(const PointGrid& grid, Geometry& out) noexcept : m_grid(grid), m_out(out) {}

    /// Writes all figures; clears the links.
    void Trace(Scanner& scanner);

private:
    void Follow(HeapArray<GridEdge>& edges, uint32_t first);
    void CloseLoop(size_t from, HeapArray<GridEdge>& edges);
    void Write();
    [[nodiscard]] Point UserPoint(size_t i) const noexcept;

    static constexpr uint32_t kNone = GridEdge::kNone;

    const PointGrid& m_grid;
    Geometry& m_out;
    bool m_transposed = false;
    HeapArray<uint32_t> m_path;    // edges since the start, without the loops already closed
    HeapArray<uint32_t> m_visited; // for each junction its index in the path
    HeapArray<GridPoint> m_loop;
};

} // namespace Graphics
