// SPDX-License-Identifier: MIT
// Stroke adjustment: moves the horizontal and vertical segments of a figure so that their stroke edges fall on whole
// pixels, and gives the pen that makes these edges. One pen draws the whole figure, so that joins stay closed.
#pragma once

#include <cmath>

#include "../Matrix.h"
#include "../ProcessHeap.h"
#include "Figure.h"

namespace Graphics {

/// Moves a coordinate that misses a whole pixel by a rounding error onto that pixel.
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
        Path,      // straight segments through the points of `path`
        Moved,     // the figure's own segments through the points of `path`
    };

    StrokeAdjuster(const Matrix& m, float width) noexcept;

    /// Whether the matrix maps axes to axes; otherwise nothing is adjusted.
    [[nodiscard]] bool Applies() const noexcept { return m_applies; }
    /// `path` receives the moved points, in user space.
    [[nodiscard]] Result Adjust(const Figure& figure, HeapArray<Point>& path) const;

    /// From user space to a space where the line is 2 wide in both directions, and from there to the device.
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
