// SPDX-License-Identifier: MIT
// Positions of paths in device pixels, for every back end that rasterizes.
#pragma once

#include "../Geometry/BasicFigures.h"
#include "../Matrix.h"
#include "EdgeBuilder.h"

namespace Graphics {

class Rasterizer;
class Shape;
struct PenStorage;
struct StrokeStyle;

/// The whole pixels around a box, enlarged by one pixel on every side: a degenerate rectangle is one pixel wide, and
/// snapping may move an edge. NaN sides are taken as the farthest ones.
[[nodiscard]] IntRect RoundOut(const Rect& r) noexcept;

[[nodiscard]] inline Rect ToRect(const IntRect& r) noexcept {
    return {static_cast<float>(r.left), static_cast<float>(r.top), static_cast<float>(r.right),
            static_cast<float>(r.bottom)};
}

/// Device box of a path enlarged by `reach` user units; the largest box if a coordinate is not finite.
[[nodiscard]] Rect DeviceBox(const Shape& path, const Matrix& m, float reach) noexcept;

/// The whole pixels around everything that a stroke of the path may cover.
[[nodiscard]] IntRect StrokeBox(const Shape& path, const Matrix& m, float width, const StrokeStyle& style) noexcept;

/// The whole pixels around a layer's bounds; `area` if the bounds are empty.
[[nodiscard]] IntRect LayerBox(const Rect& bounds, const Matrix& m, const IntRect& area) noexcept;

/// The placement of `part` of an image when `source` is mapped exactly onto `destination`.
[[nodiscard]] Matrix PlaceImage(const IntRect& part, const IntRect& source, const Rect& destination) noexcept;

/// The whole pixels of a rectangle that stays upright under the matrix; false for any other figure.
[[nodiscard]] bool SnapFigure(const BasicFigure& figure, const Matrix& m, const IntRect& area, IntRect& pixels);

/// Begins a fill with a stroke's outline; the caller calls Finish. What the clip hides of the target `area` may be
/// omitted.
void RasterizeStroke(Rasterizer& rasterizer, const Shape& path, const Matrix& m, const StrokeStyle& style, float width,
                     bool adjust, PenStorage& storage, const IntRect& area, const IntRect& visible);

} // namespace Graphics
