// SPDX-License-Identifier: MIT
// Whether a point lies in a shape's filled area or near its outline.
//
// The winding number counts the outline's crossings of the ray from the point towards growing x; every figure counts as
// closed. Near are points within the tolerance of what a stroke would follow: the closing line of an open figure is a
// border of the area, but no part of the outline. Borders belong to the area. Units are those of the mapped shape.
#pragma once

#include "../Geometry/CurveFlattener.h"
#include "../Geometry/Shape.h"
#include "../Matrix.h"

namespace Graphics {

/// Takes a path with finite coordinates and knows the answer at its end.
class HitTester {
public:
    /// `point` is finite. A tolerance that is negative or NaN counts as 0.
    HitTester(const Point& point, float tolerance) noexcept;

    /// The answer for the shape, mapped by `m`. Figures with a coordinate that is not finite once mapped are left out;
    /// a point that is not finite hits nothing.
    [[nodiscard]] static bool Test(const Shape& shape, const Point& point, const Matrix& m, float tolerance);

    void SetFillRule(uint32_t rule) { m_evenOdd = rule != GXFillRuleNonZero; }
    void BeginFigure(const Point& start) { m_start = m_current = start; }
    void EndFigure();
    void EndFigureClose() { LineTo(m_start); }
    void LineTo(const Point& p);
    void CubicTo(const Point& c1, const Point& c2, const Point& end);

    /// Near the outline so far: what follows can't change it.
    [[nodiscard]] bool Near() const noexcept { return m_near; }
    [[nodiscard]] bool Hit() const noexcept { return m_near || (m_evenOdd ? (m_winding & 1) : m_winding) != 0; }

private:
    /// Where a box lies, seen from the square of the tolerance around the point.
    enum class Place { Away, Right, Around };

    template <class... More> [[nodiscard]] Place PlaceOf(const Point& a, const More&... more) const noexcept;
    void Cross(float fromY, float toY) noexcept { m_winding += (toY > m_point.y) - (fromY > m_point.y); }
    void CrossLine(const Point& a, const Point& b) noexcept;
    void TestCurve(const WideCurve& curve) noexcept;

    const Point m_point;
    const double m_tolerance;
    Rect m_square; // rounded outwards
    Point m_start{}, m_current{};
    int64_t m_winding = 0;
    bool m_evenOdd = false;
    bool m_near = false;
};

} // namespace Graphics
