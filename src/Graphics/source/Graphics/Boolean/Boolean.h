// SPDX-License-Identifier: MIT
// Boolean combination of two areas.
//
//   shapes -> EdgeCollector (lines on the grid) -> Scanner (cut, wound, linked) -> ContourTracer (figures)
//
// The grid has 2^24 steps from 0 to the largest coordinate that can matter: the finest on which every point is a float,
// so that the figures that are written are exactly those that were proved not to cross. The result lies within the box
// of the operands, of both for an intersection and of the first for a difference; what lies outside is cut off first
// and does neither cost time nor make the grid coarser.
//
// Where the grid would still be too coarse for the tolerance, as the far and the near are both part of the result, the
// plane is cut into cells that each have a grid as fine as the floats in it (CellCombiner). Figures with a coordinate
// that is not finite count as absent.
#pragma once

#include "../Geometry/Geometry.h"
#include "CellCombiner.h"

namespace Graphics {

class Boolean {
public:
    /// Sends the combined area to `out`, which must be empty and none of the operands: simple closed figures that do
    /// not cross or overlap, outlines as a rectangle runs, holes the other way, so that both fill rules give the same.
    /// `mode` is a GXCombine value. Curves are flattened to within `tolerance`, 0.25 where it is not above 0.
    /// `work` gets what it took.
    static void Combine(const Shape& a, const Shape& b, uint32_t mode, float tolerance, Geometry& out,
                        CellCombiner::Counts* work = nullptr);
};

} // namespace Graphics
