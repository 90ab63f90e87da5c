// SPDX-License-Identifier: MIT
// The object behind a geometry handle: a shared shape, the operations that build it, and those that make new ones.
#pragma once

#include <memory>

#include "Shape.h"
#include "StrokeStyle.h"

namespace Graphics {

class Geometry final : public GeometrySink {
public:
    Geometry();

    void SetFillRule(uint32_t rule) override { m_shape->SetFillRule(rule); }
    void BeginFigure(const Point& start) override { m_shape->BeginFigure(start); }
    void EndFigure() override { m_shape->EndFigure(); }
    void EndFigureClose() override { m_shape->EndFigureClose(); }
    void LineTo(const Point& p) override { m_shape->LineTo(p); }
    void CubicTo(const Point& c1, const Point& c2, const Point& end) override { m_shape->CubicTo(c1, c2, end); }
    /// A cubic whose first control point is the current point, or c2 where there is none.
    void ConicTo(const Point& c2, const Point& end);

    [[nodiscard]] const Shape& GetShape() const noexcept { return *m_shape; }
    [[nodiscard]] Shape& GetShape() noexcept { return *m_shape; }
    [[nodiscard]] const std::shared_ptr<const Shape>& SharedShape() const noexcept { return m_shared; }

    /// A new geometry with the finished figures, mapped.
    [[nodiscard]] std::shared_ptr<Geometry> Transform(const Matrix& m) const;
    [[nodiscard]] std::shared_ptr<Geometry> Copy() const { return Transform(kIdentity); }
    /// A new geometry with the outline of the stroke, non-zero rule, flattened at 0.25 unit. `width` is at least 0.
    [[nodiscard]] std::shared_ptr<Geometry> Widen(float width, const StrokeStyle& style) const;

private:
    std::shared_ptr<const Shape> m_shared;
    Shape* m_shape; // the same, for the operations that build it
};

} // namespace Graphics
