// SPDX-License-Identifier: MIT
// Rectangles, ellipses and lines as figures: emitted into any sink, or held by value as a path that costs no heap.
#pragma once

#include <algorithm>
#include <cmath>

#include "../Types.h"

namespace Graphics {

/// Control distance of a quarter circle drawn as one cubic, as a share of the radius: 4/3 (sqrt 2 - 1).
inline constexpr float kCircleControl = 0.55228477F;

/// One closed figure; reversed corners are not put in order.
template <class Sink>
void EmitRectangle(Sink& sink, const Rect& r) {
    sink.BeginFigure({r.left, r.top});
    sink.LineTo({r.right, r.top});
    sink.LineTo({r.right, r.bottom});
    sink.LineTo({r.left, r.bottom});
    sink.EndFigureClose();
}

/// Four cubics, clockwise with y pointing down, from the bottom. Nothing when a side is 0.
template <class Sink>
void EmitEllipse(Sink& sink, const Rect& r) {
    if (r.left == r.right || r.top == r.bottom) {
        return;
    }
    const float rx = (r.right - r.left) * 0.5F;
    const float ry = (r.bottom - r.top) * 0.5F;
    const float cx = r.left + rx;
    const float cy = r.top + ry;
    const float kx = kCircleControl * rx;
    const float ky = kCircleControl * ry;
    sink.BeginFigure({cx, cy + ry});
    sink.CubicTo({cx - kx, cy + ry}, {cx - rx, cy + ky}, {cx - rx, cy});
    sink.CubicTo({cx - rx, cy - ky}, {cx - kx, cy - ry}, {cx, cy - ry});
    sink.CubicTo({cx + kx, cy - ry}, {cx + rx, cy - ky}, {cx + rx, cy});
    sink.CubicTo({cx + rx, cy + ky}, {cx + kx, cy + ry}, {cx, cy + ry});
    sink.EndFigureClose();
}

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
            EmitRectangle(sink, m_rect);
            break;
        case Kind::Ellipse:
            EmitEllipse(sink, m_rect);
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
