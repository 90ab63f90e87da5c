// SPDX-License-Identifier: MIT
#include "Geometry.h"

#include <optional>

#include "Dasher.h"
#include "Pen.h"
#include "Transformer.h"

namespace Graphics {

Geometry::Geometry() {
    auto shape = std::make_shared<Shape>();
    m_shape = shape.get();
    m_shared = std::move(shape);
}

void Geometry::ConicTo(const Point& c2, const Point& end) {
    Point c1 = c2;
    static_cast<void>(m_shape->CurrentPoint(c1));
    m_shape->CubicTo(c1, c2, end);
}

std::shared_ptr<Geometry> Geometry::Transform(const Matrix& m) const {
    auto result = std::make_shared<Geometry>();
    if (IsIdentity(m)) {
        m_shape->Replay(*result->m_shape);
    } else {
        Transformer<Shape> transformer(*result->m_shape, m);
        m_shape->Replay(transformer);
    }
    return result;
}

std::shared_ptr<Geometry> Geometry::Widen(float width, const StrokeStyle& style) const {
    constexpr float kTolerance = 0.25F;
    std::optional<DashSequence> dashes;
    if (style.dashCount != 0) {
        dashes.emplace(style);
    }
    auto result = std::make_shared<Geometry>();
    if (!std::isfinite(width)) {
        return result;
    }
    PenStorage storage;
    Pen<Shape> pen(*result->m_shape, storage, style, width * 0.5F, kTolerance);
    const auto finite = [](const Figure& figure) { return AllFinite(figure, kIdentity); };
    if (dashes) {
        Dasher<Pen<Shape>> dasher(pen, *dashes, kTolerance);
        m_shape->ReplayFigures(dasher, finite);
    } else {
        m_shape->ReplayFigures(pen, finite);
    }
    return result;
}

} // namespace Graphics
