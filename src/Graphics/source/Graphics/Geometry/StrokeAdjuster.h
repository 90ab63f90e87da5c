// SPDX-License-Identifier: MIT
// Stroke adjustment: moves the level and upright segments of a figure so that the edges of their strokes fall on whole
// pixels, and gives the pen that makes these edges. One pen draws the whole figure, so that joints stay closed.
#pragma once

#include <cmath>

#include "../Matrix.h"
#include "../ProcessHeap.h"
#include "Figure.h"

namespace Graphics {

/// Moves a coordinate that misses a whole pixel by a rounding error onto it.
[[nodiscard]] inline Point SnapToPixel(const Point& p) noexcept {
    const auto snap = [](float v) {
        const float whole = std::floor(v + 0.5F);
        return std::fabs(v - whole) < 1.0F / 256 ? whole : v;
    };
    return {snap(p.x), snap(p.y)};
}

class StrokeAdjuster {
public:
    enum class Result {
        Untouched, // no segment to move
        Path,      // straight segments through the points of the path
        Moved,     // the figure's own segments through the points of the path
    };

    StrokeAdjuster(const Matrix& m, float width) noexcept;

    /// Whether the matrix keeps the widths of axis-aligned lines apart at all.
    [[nodiscard]] bool Applies() const noexcept { return m_applies; }
    /// The points are in user space again.
    [[nodiscard]] Result Adjust(const Figure& figure, HeapArray<Point>& path) const;

    /// From user space to one where the line is 2 wide in both directions, and from there to the device.
    [[nodiscard]] const Matrix& ToPen() const noexcept { return m_toPen; }
    [[nodiscard]] const Matrix& ToDevice() const noexcept { return m_toDevice; }

private:
    [[nodiscard]] bool AdjustStraight(const Figure& figure, HeapArray<Point>& path) const;
    [[nodiscard]] bool AdjustMixed(const Figure& figure, HeapArray<Point>& path) const;

    Matrix m_matrix;
    Matrix m_inverse{kIdentity};
    Matrix m_toPen{kIdentity};
    Matrix m_toDevice{kIdentity};
    float m_widthX = 1; // of vertical lines, in whole pixels
    float m_widthY = 1; // of horizontal lines
    bool m_applies = false;
};

} // namespace Graphics
