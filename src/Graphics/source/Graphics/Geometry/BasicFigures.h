// SPDX-License-Identifier: MIT
// Rectangles, ellipses and lines held by value: paths that cost no heap.
#pragma once

#include "Figures.h"

namespace Graphics {

/// A rectangle, ellipse or line as a path.
class BasicFigure {
public:
    enum class Kind { Rectangle, Ellipse, Line };

    BasicFigure(Kind kind, const Rect& r) noexcept : m_kind(kind), m_rect(r) {}

    [[nodiscard]] Kind GetKind() const noexcept { return m_kind; }
    [[nodiscard]] const Rect& Box() const noexcept { return m_rect; }

    /// True if Replay sends no figure.
    [[nodiscard]] bool IsEmpty() const noexcept {
        return m_kind == Kind::Ellipse && (m_rect.left == m_rect.right || m_rect.top == m_rect.bottom);
    }

    template <class Sink> void Replay(Sink& sink) const {
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

private:
    Kind m_kind;
    Rect m_rect;
};

} // namespace Graphics
