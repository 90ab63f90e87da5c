// SPDX-License-Identifier: MIT
// Where paths lie in device pixels, as every back end that rasterizes needs it.
#pragma once

#include "../Geometry/BasicFigures.h"
#include "../Matrix.h"
#include "EdgeBuilder.h"

namespace Graphics {

class Rasterizer;
class Shape;
struct PenStorage;
struct StrokeStyle;

/// Whole pixels around a box, one more on every side: a degenerate rectangle is one pixel wide, and snapping may move
/// an edge. NaN sides go as far as they can.
[[nodiscard]] IntRect RoundOut(const Rect& r) noexcept;

[[nodiscard]] inline Rect ToRect(const IntRect& r) noexcept {
    return {static_cast<float>(r.left), static_cast<float>(r.top), static_cast<float>(r.right),
            static_cast<float>(r.bottom)};
}

/// Device box of a path, grown by `reach` user units, under a matrix; the widest box where a coordinate is not finite.
[[nodiscard]] Rect DeviceBox(const Shape& path, const Matrix& m, float reach) noexcept;

/// Whole pixels around everything that a stroke of the path may cover.
[[nodiscard]] IntRect StrokeBox(const Shape& path, const Matrix& m, float width, const StrokeStyle& style) noexcept;

/// Whole pixels around a layer's bounds; `area` where they are empty.
[[nodiscard]] IntRect LayerBox(const Rect& bounds, const Matrix& m, const IntRect& area) noexcept;

/// Where part of an image lands: the source rectangle lies exactly on the destination, and `part` of it is drawn.
[[nodiscard]] Matrix PlaceImage(const IntRect& part, const IntRect& source, const Rect& destination) noexcept;

/// The whole pixels of a rectangle that stays upright under the matrix; false for everything else.
[[nodiscard]] bool SnapFigure(const BasicFigure& figure, const Matrix& m, const IntRect& area, IntRect& pixels);

/// Two opposite corners, in fine units, of a rectangle that stays upright under the matrix; false for everything else.
[[nodiscard]] bool UprightCorners(const BasicFigure& figure, const Matrix& m, Vertex& a, Vertex& b) noexcept;

/// Begins a fill with a stroke's outline; Finish is left to the caller. What the clip hides of the target `area` may be
/// left out of it.
void RasterizeStroke(Rasterizer& rasterizer, const Shape& path, const Matrix& m, const StrokeStyle& style, float width,
                     bool adjust, PenStorage& storage, const IntRect& area, const IntRect& visible);

} // namespace Graphics
