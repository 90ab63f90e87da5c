// SPDX-License-Identifier: MIT
// Boolean combination of two areas.
//
//   shapes -> EdgeCollector (lines on the grid) -> Scanner (cut, wound, linked) -> ContourTracer (figures)
//
// 1. The grid has 2^24 steps from 0 to the largest coordinate that can affect the result. It is the finest grid on
//    which every point is a float, so the figures written are exactly those that were proved not to cross.
// 2. The result lies within the box of the operands: of both for an intersection, of the first for a difference. Parts
//    outside are cut off first, so they cost no time and do not coarsen the grid.
// 3. If that grid is too coarse for the tolerance, because near and far parts are both in the result, the plane is cut
//    into cells, each with a grid as fine as the floats in it (CellCombiner).
// 4. Figures with a non-finite coordinate are ignored.
#pragma once

#include "../Geometry/Geometry.h"
#include "CellCombiner.h"

namespace Graphics {

class Boolean {
public:
    /// Sends the combined area to `out`, which must be empty and none of the operands. The figures are simple, closed,
    /// and neither cross nor overlap; outlines wind as a rectangle, holes the other way, so both fill rules give the
    /// same area. `mode` is a GXCombine value. Curves are flattened to within `tolerance`, or 0.25 if it is not
    /// positive. `work` receives the operation counts.
    static void Combine(const Shape& a, const Shape& b, uint32_t mode, float tolerance, Geometry& out,
                        CellCombiner::Counts* work = nullptr);
};

} // namespace Graphics
