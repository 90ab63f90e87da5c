// SPDX-License-Identifier: MIT
// Rectangles, ellipses and lines held by value: paths that cost no heap.
#pragma once

#include <algorithm>
#include <cmath>

#include "Figures.h"

namespace Graphics {

/// A rectangle, ellipse or line as a path that is replayed like a stored shape.
class BasicFigure {
public:
    enum class Kind { Rectangle, Ellipse, Line };

    BasicFigure(Kind kind, const Rect& r) noexcept : m_kind(kind), m_rect(r) {}

    template <class Sink>
    void Replay(Sink& sink) const {
        sink.SetFillRule(0);
        switch (m_kind) {
        case Kind::Rectangle:
            AddRectangle(sink, m_rect);
            break;
        case Kind::Ellipse:
            AddEllipse(sink, m_rect);
            break;
        case Kind::Line:
            sink.BeginFigure({m_rect.left, m_rect.top});
            sink.LineTo({m_rect.right, m_rect.bottom});
            sink.EndFigure();
            break;
        }
    }

    [[nodiscard]] Rect ControlBox() const noexcept {
        return {std::min(m_rect.left, m_rect.right), std::min(m_rect.top, m_rect.bottom),
                std::max(m_rect.left, m_rect.right), std::max(m_rect.top, m_rect.bottom)};
    }
    [[nodiscard]] bool AllFinite() const noexcept {
        return std::isfinite(m_rect.left) && std::isfinite(m_rect.top) && std::isfinite(m_rect.right) &&
               std::isfinite(m_rect.bottom);
    }
    [[nodiscard]] uint32_t FillRule() const noexcept { return 0; }
    [[nodiscard]] bool Empty() const noexcept { return false; }

private:
    Kind m_kind;
    Rect m_rect;
};

} // namespace Graphics
