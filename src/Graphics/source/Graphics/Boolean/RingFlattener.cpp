// SPDX-License-Identifier: MIT
#include "RingFlattener.h"

#include "../Geometry/CurveFlattener.h"

namespace Graphics {

namespace {

/// Whether the curve stays within the tolerance of its chord: both control points do, and the curve deviates by at most
/// three quarters of their distance. Uniform parameter steps do not detect this: towards a point where control points
/// coincide they would halve a line until it is as short as the tolerance.
[[nodiscard]] bool IsChord(const WideCurve& c, double tolerance) noexcept {
    const double dx = c.x[3] - c.x[0], dy = c.y[3] - c.y[0];
    const double square = dx * dx + dy * dy;
    for (int i = 1; i <= 2; ++i) {
        const double x = c.x[i] - c.x[0], y = c.y[i] - c.y[0];
        const double along = x * dx + y * dy, across = x * dy - y * dx;
        if (!(along >= 0 && along <= square && across * across <= tolerance * tolerance * square)) {
            return false;
        }
    }
    return true;
}

} // namespace

void RingFlattener::BeginFigure(const Point& start) {
    m_ring.clear();
    m_ring.push_back(start);
}

void RingFlattener::CubicTo(const Point& c1, const Point& c2, const Point& end) {
    // Few steps at a time keep the flattener's float sums accurate. Even from the largest floats to the smallest
    // tolerances, the number of halvings stays below the limit here.
    constexpr uint32_t kSteps = 16;
    constexpr int kDepth = 96;
    const auto place = [&](const WideCurve& c) {
        const auto beyond = [](const double* v, double low, double high) {
            return (v[0] < low && v[1] < low && v[2] < low && v[3] < low) ||
                   (v[0] > high && v[1] > high && v[2] > high && v[3] > high);
        };
        if (!beyond(c.x, m_limits.left, m_limits.right) && !beyond(c.y, m_limits.top, m_limits.bottom) &&
            !IsChord(c, m_tolerance)) {
            return CurvePlace::Mixed;
        }
        m_ring.push_back(c.At(3));
        return CurvePlace::Handled;
    };
    const Point from = m_ring.back();
    FlattenBounded(
        WideCurve(from, c1, c2, end), m_tolerance, kSteps, place, [&](const Point& p) { m_ring.push_back(p); }, kDepth);
}

} // namespace Graphics
