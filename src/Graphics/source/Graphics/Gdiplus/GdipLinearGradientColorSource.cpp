// SPDX-License-Identifier: MIT
// On the device the parameter is t = t0 + g . p. With u = g / |g| and s = u . p it depends only on s, and one step of s
// is one device pixel along u. The strip covers s from its least to its largest value over the pixels to be painted, so
// it also contains the colours before the start and behind the end of the axis.
#include "GdipLinearGradientColorSource.h"

#include <cmath>

#include "../Scan/DeviceFigures.h"

namespace Graphics {

GdipLinearGradientColorSource::GdipLinearGradientColorSource(const GradientBrush& brush, const GdipPlace& place) {
    const auto& gradient = static_cast<const LinearGradient&>(*brush.gradient);
    const Matrix toDevice = Concat(brush.transform, place.transform);
    const double axisX = static_cast<double>(gradient.end.x) - gradient.start.x;
    const double axisY = static_cast<double>(gradient.end.y) - gradient.start.y;
    const double square = axisX * axisX + axisY * axisY;
    const double det =
        static_cast<double>(toDevice.m00) * toDevice.m11 - static_cast<double>(toDevice.m01) * toDevice.m10;
    // The gradient of t: the inverse of the linear part applied to the axis.
    const double gx = (toDevice.m11 * axisX - toDevice.m01 * axisY) / (det * square);
    const double gy = (toDevice.m00 * axisY - toDevice.m10 * axisX) / (det * square);
    const double slope = std::hypot(gx, gy);
    if (!(slope > 0.0) || !std::isfinite(slope) || !std::isfinite(1.0 / slope)) {
        // Without a direction every pixel has the same colour.
        CreateTexture(brush, place.transform, 1, 1, place, kIdentity);
        return;
    }
    const double ux = gx / slope, uy = gy / slope;
    const IntRect& v = place.visible;
    const auto least = [](double a, double b) { return std::floor(std::min(a, b)); };
    const auto most = [](double a, double b) { return std::ceil(std::max(a, b)); };
    constexpr double kMargin = 2.0; // reach of a filter
    const double low = least(ux * v.left, ux * v.right) + least(uy * v.top, uy * v.bottom) - kMargin;
    const double high = most(ux * v.left, ux * v.right) + most(uy * v.top, uy * v.bottom) + kMargin;

    // Device pixels to the strip: x is s, y the coordinate across.
    const Matrix toStrip{static_cast<float>(ux), static_cast<float>(-uy),  static_cast<float>(uy),
                         static_cast<float>(ux), static_cast<float>(-low), 0.0F};
    const Matrix fromStrip{static_cast<float>(ux), static_cast<float>(uy),       static_cast<float>(-uy),
                           static_cast<float>(ux), static_cast<float>(ux * low), static_cast<float>(uy * low)};
    CreateTexture(brush, Concat(place.transform, toStrip), static_cast<int32_t>(high - low), 1, place, fromStrip);
}

} // namespace Graphics
