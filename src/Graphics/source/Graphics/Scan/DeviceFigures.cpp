// SPDX-License-Identifier: MIT
#include "DeviceFigures.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "../Geometry/DeviceFeed.h"
#include "../Geometry/Shape.h"
#include "../Geometry/StrokeStyle.h"
#include "Rasterizer.h"
#include "SnapRectangle.h"
#include "UprightCorners.h"

namespace Graphics {

IntRect RoundOut(const Rect& r) noexcept {
    static constexpr float kFar = 1.0e9F;
    const auto low = [](float v) {
        return v > -kFar ? SaturatingTruncate(std::floor(std::min(v, kFar))) - 1 : -1000000001;
    };
    const auto high = [](float v) {
        return v < kFar ? SaturatingTruncate(std::ceil(std::max(v, -kFar))) + 1 : 1000000001;
    };
    return {low(r.left), low(r.top), high(r.right), high(r.bottom)};
}

Rect DeviceBox(const Shape& path, const Matrix& m, float reach) noexcept {
    constexpr float kFar = 1.0e9F;
    const Rect box = path.ControlBox();
    const Rect mapped = MapBox(m, {box.left - reach, box.top - reach, box.right + reach, box.bottom + reach});
    const bool finite = path.AllFinite() && std::isfinite(mapped.left) && std::isfinite(mapped.top) &&
                        std::isfinite(mapped.right) && std::isfinite(mapped.bottom);
    return finite ? mapped : Rect{-kFar, -kFar, kFar, kFar};
}

IntRect StrokeBox(const Shape& path, const Matrix& m, float width, const StrokeStyle& style) noexcept {
    constexpr float kDiagonal = 1.4142136F; // reach of a square cap
    const float factor = style.join == GXLineJoinMiter ? std::max(style.miterLimit, kDiagonal) : kDiagonal;
    const Rect box = DeviceBox(path, m, width * 0.5F * factor);
    // Two more pixels, because the thinnest line is one pixel wide and adjustment moves edges by less than one.
    return RoundOut({box.left - 2.0F, box.top - 2.0F, box.right + 2.0F, box.bottom + 2.0F});
}

IntRect LayerBox(const Rect& bounds, const Matrix& m, const IntRect& area) noexcept {
    if (!(bounds.left < bounds.right && bounds.top < bounds.bottom)) {
        return area;
    }
    const Rect box = MapBox(m, bounds);
    // Rounded to whole pixels before RoundOut's margin is subtracted, so that the rounding of a sum cannot lose a
    // pixel.
    return RoundOut({std::floor(box.left) + 1.0F, std::floor(box.top) + 1.0F, std::ceil(box.right) - 1.0F,
                     std::ceil(box.bottom) - 1.0F});
}

Matrix PlaceImage(const IntRect& part, const IntRect& source, const Rect& destination) noexcept {
    // A source may be wider than an int32_t holds.
    const auto distance = [](int32_t from, int32_t to) { return static_cast<float>(static_cast<int64_t>(to) - from); };
    const float sx = (destination.right - destination.left) / distance(source.left, source.right);
    const float sy = (destination.bottom - destination.top) / distance(source.top, source.bottom);
    return {sx,
            0.0F,
            0.0F,
            sy,
            destination.left + distance(source.left, part.left) * sx,
            destination.top + distance(source.top, part.top) * sy};
}

bool SnapFigure(const BasicFigure& figure, const Matrix& m, const IntRect& area, IntRect& pixels) {
    Vertex a;
    Vertex b;
    return UprightCorners(figure, m, a, b) && SnapRectangle(area, a, b, pixels);
}

void RasterizeStroke(Rasterizer& rasterizer, const Shape& path, const Matrix& m, const StrokeStyle& style, float width,
                     bool adjust, PenStorage& storage, const IntRect& area, const IntRect& visible) {
    const Rect target = ToRect(area);
    rasterizer.Begin(target, visible, adjust);
    const bool partial = FeedStroke(path, m, style, width, adjust, storage, target, ToRect(visible), rasterizer);
    // A lone rectangle snaps to whole pixels only if it is alone in the whole target, so the clip must not decide that.
    if (partial && adjust && rasterizer.IsLoneRectangle()) {
        rasterizer.Begin(target, visible, adjust);
        FeedStroke(path, m, style, width, adjust, storage, target, rasterizer);
    }
}

} // namespace Graphics
