// SPDX-License-Identifier: MIT
// The calls that build a path and send it to a consumer. Sinks are template arguments, so a chain of them consists of
// direct calls. The host's function table is one more sink (GeometrySinkAdapter).
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
