// SPDX-License-Identifier: MIT
// The border of a combination from one sweep over its exact lines: winding numbers follow from the order, and only the
// points at which the border turns are rounded to the grid. So it closes, and is off by half a unit at most; where the
// rounded edges cross or touch each other, PixelSnapper sees to it.
#pragma once

#include "LineSweep.h"
#include "WindingTest.h"

namespace Graphics {

class LineWinder final : private LineSweep::Listener {
public:
    /// `border` gets the pieces of lines that are the border, weight 1 for the area at their left, -1 at the right, in
    /// operand A.
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
    HeapArray<GridPoint> m_from; // for each line where the border began to be as it is
};

} // namespace Graphics
