// SPDX-License-Identifier: MIT
// A path under construction, and operations that derive a new path from it. Read as a Shape, it consists of the figures
// finished so far; a copy of that part never changes.
#pragma once

#include <memory>

#include "Shape.h"
#include "StrokeStyle.h"

namespace Graphics {

class Geometry final : public Shape {
public:
    Geometry() noexcept = default;
    Geometry(const Geometry&) = delete;

    // An operation that fails to allocate changes nothing.

    /// Stored unchanged; every value but 0 acts as even-odd.
    void SetFillRule(uint32_t rule) noexcept {
        if (rule != m_fillRule) {
            m_fillRule = rule;
            Changed();
        }
    }
    /// Ends a figure that is still open, then starts another.
    void BeginFigure(const Point& start);
    /// Stores the figure unless it is a lone start point, which stays open.
    void EndFigure();
    void EndFigureClose();
    /// Lines and curves are ignored while no figure is open.
    void LineTo(const Point& p) {
        if (m_open) {
            m_current.AddLine(p);
            m_bounds.Add(p);
            Changed();
        }
    }
    void CubicTo(const Point& c1, const Point& c2, const Point& end) {
        if (m_open) {
            m_current.AddCubic(c1, c2, end);
            m_bounds.Add(c1);
            m_bounds.Add(c2);
            m_bounds.Add(end);
            Changed();
        }
    }
    /// A cubic whose first control point is the current point.
    void ConicTo(const Point& c2, const Point& end);

    /// Adds the closed figure, if any, that `add` sends to a sink. Adds all of it or nothing.
    template <class Add> void AddClosed(const Add& add) {
        ClosedFigure sink;
        add(sink);
        if (sink.figure.Drawn()) {
            Append(std::move(sink.figure));
        }
    }

    /// Empties the path, keeping one figure's memory: for paths that live for one draw call.
    void Clear() noexcept;

    /// The last point; the first point if the figure is closed. False if there is no figure.
    [[nodiscard]] bool CurrentPoint(Point& out) const noexcept;

    /// A new geometry of the finished figures, mapped by `m`.
    [[nodiscard]] std::shared_ptr<Geometry> Transform(const Matrix& m) const;
    [[nodiscard]] std::shared_ptr<Geometry> Copy() const { return Transform(kIdentity); }
    /// A new geometry of the stroke's outline, non-zero rule, flattened at 0.25 unit. `width` is at least 0.
    [[nodiscard]] std::shared_ptr<Geometry> Widen(float width, const StrokeStyle& style) const;

private:
    /// Collects one closed figure before it is added.
    struct ClosedFigure {
        void BeginFigure(const Point& start) { figure.Start(start); }
        void LineTo(const Point& p) { figure.AddLine(p); }
        void CubicTo(const Point& c1, const Point& c2, const Point& end) { figure.AddCubic(c1, c2, end); }
        void EndFigureClose() noexcept { figure.SetClosed(); }
        Figure figure;
    };
    void Append(Figure&& closed);

    Figure m_current;
    bool m_open = false;
};

} // namespace Graphics
