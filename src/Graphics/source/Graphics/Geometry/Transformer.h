// SPDX-License-Identifier: MIT
// Maps every point by an affine matrix. Mapping the control points maps the curve, so curves stay curves.
#pragma once

#include "../Matrix.h"
#include "Figure.h"
#include "GeometrySink.h"

namespace Graphics {

template <FigureSink Sink> class Transformer {
public:
    Transformer(Sink& sink, const Matrix& m) noexcept : m_matrix(m), m_sink(sink) {}

    void BeginFigure(const Point& start) { m_sink.BeginFigure(Map(m_matrix, start)); }
    void EndFigure() { m_sink.EndFigure(); }
    void EndFigureClose() { m_sink.EndFigureClose(); }
    void LineTo(const Point& p) { m_sink.LineTo(Map(m_matrix, p)); }
    void CubicTo(const Point& c1, const Point& c2, const Point& end) {
        m_sink.CubicTo(Map(m_matrix, c1), Map(m_matrix, c2), Map(m_matrix, end));
    }
    /// For pens: the next dash of a chain starts at `p`.
    void Gap(const Point& p) requires requires(Sink& sink) { sink.Gap(p); }
    { m_sink.Gap(Map(m_matrix, p)); }

private:
    const Matrix m_matrix;
    Sink& m_sink;
};

/// Whether every mapped point of the figure is finite.
[[nodiscard]] inline bool AllFinite(const Figure& figure, const Matrix& m) noexcept {
    float check = 0; // x - x is 0 for a finite x, else NaN
    for (const Point& point : figure.Points()) {
        const Point p = Map(m, point);
        check += (p.x - p.x) + (p.y - p.y);
    }
    return check == 0.0F;
}

} // namespace Graphics
