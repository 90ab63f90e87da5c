// SPDX-License-Identifier: MIT
// Dashes of a horizontal or vertical line are axis-aligned boxes, passed as two corners instead of through the pen.
// Ruled paper, charts and forms are full of them: gxbench's dash_rules_w1 and dash_rules_w2 take several times as
// long when BoxScanner leaves such boxes to the other scanners, and longer still when they also go through the pen.
#pragma once

#include <cmath>

#include "../Matrix.h"
#include "Figure.h"
#include "StrokeAdjuster.h"
#include "StrokePlan.h"
#include "StrokeStyle.h"

namespace Graphics {

/// Sinks that take an axis-aligned rectangle by two opposite corners: a closed figure that starts at the first corner
/// and first runs along x.
template <class Sink>
concept TakesBoxes = requires(Sink& sink, const Point& p) {
    sink.Box(p, p);
};

/// Strokes the dashes of one axis-aligned line, given in user space; StrokePlan's matrices map axes to axes. Every
/// corner is computed with the pen's operations in the pen's order, and the boxes wind as the pen's outlines do.
template <TakesBoxes Sink> class BoxPen {
public:
    BoxPen(Sink& sink, const StrokePlan& plan, uint32_t cap, bool snaps) noexcept
        : m_sink(sink), m_plan(plan), m_half(plan.half), m_reach(cap == GXLineCapSquare ? m_half : 0.0),
          m_turns(plan.toDevice.m00 == 0), m_snaps(snaps) {}

    void BeginFigure(const Point& start) { m_start = m_end = Map(m_plan.toPen, start); }
    void LineTo(const Point& p) { m_end = Map(m_plan.toPen, p); }
    void CubicTo(const Point&, const Point&, const Point& end) { LineTo(end); }
    void EndFigureClose() { EndFigure(); }
    void EndFigure() {
        const double dx = static_cast<double>(m_end.x) - m_start.x;
        const double dy = static_cast<double>(m_end.y) - m_start.y;
        if (dx == 0 && dy == 0 && m_reach == 0) {
            return;
        }
        // Half the width across the line, the cap's reach along it. A dash of length 0 is a square around its point.
        const bool upright = dx == 0;
        const bool back = dx < 0 || dy < 0;
        const Point& low = back ? m_end : m_start;
        const Point& high = back ? m_start : m_end;
        const double x = upright ? m_half : m_reach;
        const double y = upright ? m_reach : m_half;
        const Point a = ToDevice({static_cast<float>(low.x - x), static_cast<float>(low.y - y)});
        const Point b = ToDevice({static_cast<float>(high.x + x), static_cast<float>(high.y + y)});
        if (m_turns) {
            m_sink.Box({b.x, a.y}, {a.x, b.y});
        } else {
            m_sink.Box(a, b);
        }
    }

private:
    [[nodiscard]] Point ToDevice(const Point& p) const noexcept {
        const Point device = Map(m_plan.toDevice, p);
        return m_snaps ? SnapToPixel(device) : device;
    }

    Sink& m_sink;
    const StrokePlan& m_plan;
    const double m_half;
    const double m_reach;
    const bool m_turns; // x and y are exchanged, which reverses the rectangle's direction
    const bool m_snaps;
    Point m_start{};
    Point m_end{};
};

/// Whether the dashes of the line from a to b are axis-aligned rectangles of one width on the device.
[[nodiscard]] inline bool DashesAreBoxes(const Point& a, const Point& b, const StrokePlan& plan,
                                         const StrokeStyle& style) noexcept {
    const auto keepsAxes = [](const Matrix& m) { return (m.m01 == 0 && m.m10 == 0) || (m.m00 == 0 && m.m11 == 0); };
    return plan.inBand && style.cap != GXLineCapRound && (a.x == b.x || a.y == b.y) && keepsAxes(plan.toPen) &&
           keepsAxes(plan.toDevice);
}

} // namespace Graphics
