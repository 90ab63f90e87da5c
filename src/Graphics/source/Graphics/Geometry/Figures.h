// SPDX-License-Identifier: MIT
// The ready-made closed figures, for any sink. All run clockwise as seen with y pointing down.
#pragma once

#include <algorithm>

#include "../Types.h"

namespace Graphics {

/// Control length of a quarter circle of radius 1 as one cubic, 4 (sqrt 2 - 1) / 3.
inline constexpr float kQuarterArc = 0.55228477F;

/// Corners in the order left top, right top, right bottom, left bottom; reversed rectangles stay reversed.
template <class Sink> void AddRectangle(Sink& sink, const Rect& r) {
    sink.BeginFigure(Point{r.left, r.top});
    sink.LineTo(Point{r.right, r.top});
    sink.LineTo(Point{r.right, r.bottom});
    sink.LineTo(Point{r.left, r.bottom});
    sink.EndFigureClose();
}

/// Four cubics from the bottom over left, top and right. Sends nothing for a rectangle without width or height.
template <class Sink> void AddEllipse(Sink& sink, const Rect& r) {
    if (r.left == r.right || r.top == r.bottom) {
        return;
    }
    const float rx = (r.right - r.left) * 0.5F, ry = (r.bottom - r.top) * 0.5F;
    const float cx = r.left + rx, cy = r.top + ry;
    const float kx = kQuarterArc * rx, ky = kQuarterArc * ry;
    sink.BeginFigure(Point{cx, cy + ry});
    sink.CubicTo(Point{cx - kx, cy + ry}, Point{cx - rx, cy + ky}, Point{cx - rx, cy});
    sink.CubicTo(Point{cx - rx, cy - ky}, Point{cx - kx, cy - ry}, Point{cx, cy - ry});
    sink.CubicTo(Point{cx + kx, cy - ry}, Point{cx + rx, cy - ky}, Point{cx + rx, cy});
    sink.CubicTo(Point{cx + rx, cy + ky}, Point{cx + kx, cy + ry}, Point{cx, cy + ry});
    sink.EndFigureClose();
}

/// Radii are limited to half the width and height; with a zero radius the figure is a rectangle. Sends nothing for a
/// rectangle without area.
template <class Sink> void AddRoundRectangle(Sink& sink, const Rect& r, float radiusX, float radiusY) {
    if (r.left == r.right || r.top == r.bottom) {
        return;
    }
    const float rx = std::min((r.right - r.left) * 0.5F, radiusX);
    const float ry = std::min((r.bottom - r.top) * 0.5F, radiusY);
    if (rx == 0.0F || ry == 0.0F) {
        AddRectangle(sink, r);
        return;
    }
    const float dx = rx - kQuarterArc * rx, dy = ry - kQuarterArc * ry; // from the corner to the control points
    sink.BeginFigure(Point{r.left + rx, r.top});
    sink.LineTo(Point{r.right - rx, r.top});
    sink.CubicTo(Point{r.right - dx, r.top}, Point{r.right, r.top + dy}, Point{r.right, r.top + ry});
    sink.LineTo(Point{r.right, r.bottom - ry});
    sink.CubicTo(Point{r.right, r.bottom - dy}, Point{r.right - dx, r.bottom}, Point{r.right - rx, r.bottom});
    sink.LineTo(Point{r.left + rx, r.bottom});
    sink.CubicTo(Point{r.left + dx, r.bottom}, Point{r.left, r.bottom - dy}, Point{r.left, r.bottom - ry});
    sink.LineTo(Point{r.left, r.top + ry});
    sink.CubicTo(Point{r.left, r.top + dy}, Point{r.left + dx, r.top}, Point{r.left + rx, r.top});
    sink.EndFigureClose();
}

} // namespace Graphics
