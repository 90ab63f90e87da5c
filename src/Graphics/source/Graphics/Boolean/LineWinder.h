// SPDX-License-Identifier: MIT
// Finds the border of a combination in one sweep over its exact lines. Winding numbers follow from the order, and only
// the points at which the border turns are rounded to the grid. So the border closes and is off by at most half a unit;
// where rounded edges cross or touch, PixelSnapper cuts them.
#pragma once

#include "LineSweep.h"
#include "WindingTest.h"

namespace Graphics {

class LineWinder final : private LineSweep::Listener {
public:
    /// `border` receives the pieces of lines that are borders, as operand A, weight 1 if the area is at their left, -1
    /// if at the right.
    LineWinder(HeapArray<GridEdge>& lines, const WindingTest& test, HeapArray<GridEdge>& border) noexcept
        : m_lines(lines), m_test(test), m_border(border) {}

    void Wind(LineSweep& sweep);

private:
    void Meet(const GridPoint& at, bool isEnd, uint32_t left, std::span<const uint32_t> through,
              std::span<const uint32_t> onward) override;
    void Answer(uint32_t, uint32_t) override {}
    void Put(const GridEdge& e, const GridPoint& from, const GridPoint& to);

    HeapArray<GridEdge>& m_lines;
    const WindingTest m_test;
    HeapArray<GridEdge>& m_border;
    HeapArray<GridPoint> m_from; // for each line where its present border piece begins
};

} // namespace Graphics
