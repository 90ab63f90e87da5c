// SPDX-License-Identifier: MIT
// Tests whether a point lies in a shape's filled area or near its outline.
//
// The winding number counts the outline's crossings of the ray from the point towards growing x, with every figure
// closed. A point is near if it lies within the tolerance of the path that a stroke would follow; the closing line of
// an open figure bounds the area, but is not part of the outline. Borders belong to the area. Units are those of the
// mapped shape.
#pragma once

#include "../Geometry/CurveFlattener.h"
#include "../Geometry/Shape.h"
#include "../Matrix.h"

namespace Graphics {

/// Receives a path with finite coordinates; the answer is valid at its end.
class HitTester {
public:
    /// `point` must be finite. A negative or NaN tolerance counts as 0.
    HitTester(const Point& point, float tolerance) noexcept;

    /// Tests the shape mapped by `m`. Figures with a mapped coordinate that is not finite are ignored; a point that is
    /// not finite hits nothing.
    [[nodiscard]] static bool Test(const Shape& shape, const Point& point, const Matrix& m, float tolerance);

    void SetFillRule(uint32_t rule) { m_evenOdd = rule != GXFillRuleNonZero; }
    void BeginFigure(const Point& start) { m_start = m_current = start; }
    void EndFigure();
    void EndFigureClose() { LineTo(m_start); }
    void LineTo(const Point& p);
    void CubicTo(const Point& c1, const Point& c2, const Point& end);

    /// Near the outline received so far; later segments cannot change that.
    [[nodiscard]] bool Near() const noexcept { return m_near; }
    [[nodiscard]] bool Hit() const noexcept { return m_near || (m_evenOdd ? (m_winding & 1) : m_winding) != 0; }

private:
    /// Position of a box relative to the square of the tolerance around the point.
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
