// SPDX-License-Identifier: MIT
// What is settled once per stroke: in which space the pen works, how finely, and what can be seen.
//
//   figure -> [Dasher, user space] -> toPen -> Pen -> toDevice -> band -> sink
//
// Under a matrix without distortion, and for the thinnest line, the pen works in device space and toDevice is the
// identity; else it works in user space and toPen is. An adjusted figure has a plan of its own.
#pragma once

#include <cmath>

#include "../Matrix.h"
#include "Figure.h"
#include "PenOutline.h"

namespace Graphics {

struct StrokePlan {
    bool nothing = false; // a width or matrix that draws nothing, or all of it out of sight
    bool inBand = false;  // no strip clipper is needed
    bool cull = false;    // something may be out of sight
    Matrix toPen{kIdentity};
    Matrix toDevice{kIdentity};
    float half = 0;          // half the width in the pen's space
    float tolerance = 0.25F; // in the pen's space
    float userHalf = 0;      // the same two in user space, for the dasher
    float userTolerance = 0.25F;
    Rect visiblePen{}; // what can be seen, with the pen's reach, in the pen's space
    Rect visibleUser{};
    float dashScale = 1.0F; // a whole number that lifts a pattern too fine to be seen to one just as dense

    StrokePlan(const Rect& controlBox, bool finite, const Matrix& m, const StrokeStyle& style, float width,
               const Rect& visibleDevice) noexcept;
};

/// Moves a coordinate that misses a whole pixel by a rounding error onto it.
[[nodiscard]] inline Point SnapToPixel(const Point& p) noexcept {
    const auto snap = [](float v) {
        const float whole = std::floor(v + 0.5F);
        return std::fabs(v - whole) < 1.0F / 256 ? whole : v;
    };
    return {snap(p.x), snap(p.y)};
}

/// Device space for axis-aligned strokes whose edges lie on whole pixels.
class StrokeAdjuster {
public:
    StrokeAdjuster(const Matrix& m, float width) noexcept;

    /// Whether the matrix keeps the widths of axis-aligned lines apart at all.
    [[nodiscard]] bool Applies() const noexcept { return m_applies; }
    /// Moves a figure of axis-aligned straight segments so that their edges fall on whole pixels; false, and nothing
    /// done, for any other figure. The points are in user space again, without repeated ones.
    [[nodiscard]] bool Adjust(const Figure& figure, HeapArray<Point>& path) const;

    /// From user space to one where the line is 2 wide in both directions, and from there to the device.
    [[nodiscard]] const Matrix& ToPen() const noexcept { return m_toPen; }
    [[nodiscard]] const Matrix& ToDevice() const noexcept { return m_toDevice; }

private:
    Matrix m_matrix;
    Matrix m_inverse{kIdentity};
    Matrix m_toPen{kIdentity};
    Matrix m_toDevice{kIdentity};
    float m_widthX = 1; // of vertical lines, in whole pixels
    float m_widthY = 1; // of horizontal lines
    bool m_applies = false;
};

} // namespace Graphics
