// SPDX-License-Identifier: MIT
// The image has the device's resolution up to four million pixels, about 3 x 3 inches at 600 dots per inch; beyond that
// its pixels cover several device pixels. A whole page then has about 200 dots per inch, twice a screen's resolution.
#include "GdipRadialGradientColorSource.h"

#include <cmath>

namespace Graphics {

GdipRadialGradientColorSource::GdipRadialGradientColorSource(const GradientBrush& brush, const GdipPlace& place) {
    constexpr double kMostPixels = 4.0 * 1024 * 1024;
    const IntRect& v = place.visible;
    const int32_t width = v.right - v.left;
    const int32_t height = v.bottom - v.top;
    const auto step = static_cast<int32_t>(std::ceil(std::sqrt(static_cast<double>(width) * height / kMostPixels)));
    const auto pixel = static_cast<float>(std::max(step, 1));
    const auto left = static_cast<float>(v.left), top = static_cast<float>(v.top);
    const Matrix toImage{1.0F / pixel, 0.0F, 0.0F, 1.0F / pixel, -left / pixel, -top / pixel};
    const Matrix fromImage{pixel, 0.0F, 0.0F, pixel, left, top};
    const auto pixels = [&](int32_t length) {
        return static_cast<int32_t>(std::ceil(static_cast<float>(length) / pixel));
    };
    CreateTexture(brush, Concat(place.transform, toImage), pixels(width), pixels(height), place, fromImage);
}

} // namespace Graphics
