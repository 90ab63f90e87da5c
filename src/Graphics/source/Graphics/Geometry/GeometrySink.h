// SPDX-License-Identifier: MIT
// The calls by which a path is built and by which every consumer reads it. Sinks are template arguments: a chain of
// them is direct calls. The host's table of functions is one more sink (GeometrySinkAdapter).
#pragma once

#include "../Types.h"

namespace Graphics {

/// Takes figures, one after the other.
template <class Sink>
concept FigureSink = requires(Sink& sink, const Point& p) {
    sink.BeginFigure(p);
    sink.LineTo(p);
    sink.CubicTo(p, p, p);
    sink.EndFigure();
    sink.EndFigureClose();
};

/// Takes a path: the rule by which it is filled, then its figures.
template <class Sink>
concept GeometrySink = FigureSink<Sink> && requires(Sink& sink, uint32_t rule) {
    sink.SetFillRule(rule);
};

} // namespace Graphics
