// SPDX-License-Identifier: MIT
#include "GdipShows.h"

#include <cmath>

#include "../Paint/GradientSampler.h"
#include "../Pixels/PixelFormat.h"
#include "../Scan/DeviceFigures.h"

namespace Graphics {
namespace {

[[nodiscard]] bool IsOpaque(const PixelView& pixels) noexcept {
    switch (pixels.format) {
    case GXPixelFormatBGR24:
    case GXPixelFormatBGRX32:
    case GXPixelFormatGray8:
    case GXPixelFormatBlackWhite1:
        return true;
    case GXPixelFormatIndexed8:
    case GXPixelFormatIndexed1:
        return std::all_of(pixels.palette, pixels.palette + (pixels.palette != nullptr ? pixels.paletteCount : 0),
                           [](uint32_t color) { return color >> 24 == 255; });
    case GXPixelFormatPBGRA32:
    case GXPixelFormatBGRA32:
        for (int32_t y = 0; y < pixels.height; ++y) {
            const uint8_t* alpha = pixels.data + y * pixels.strideBytes + 3;
            for (int32_t x = 0; x < pixels.width; ++x) {
                if (alpha[static_cast<size_t>(x) * 4] != 255) {
                    return false;
                }
            }
        }
        return true;
    default:
        return false;
    }
}

} // namespace

bool GdipShows::Shows(const Ink& ink) const {
    if (const auto* solid = std::get_if<SolidInk>(&ink)) {
        return blends || solid->argb >> 24 == 255;
    }
    if (const auto* image = std::get_if<ImageInk>(&ink)) {
        return Shows(*image);
    }
    const GradientBrush& b = *std::get<GradientInk>(ink).brush;
    return b.gradient->Kind() != kGradientTriMesh && b.opacity >= 0.0F && b.opacity <= 1.0F && (blends || IsOpaque(b));
}

bool GdipShows::Shows(const ImageInk& image) const {
    // The colour source takes opacities from 0.99 on as 1. An image extended beyond its edge is not supported: no GDI+
    // texture does that with a correct edge.
    if (!(image.opacity >= 0.0F && image.opacity <= 1.0F) || image.edges == ImageInk::Edges::Shown ||
        (!blends && (image.opacity < 0.99F || !Graphics::IsOpaque(image.Pixels())))) {
        return false;
    }
    const Matrix toDevice = Concat(image.transform, transform);
    Matrix inverse;
    if (!Invert(toDevice, inverse)) {
        return false;
    }
    // The filters of GDI+ skip pixels of strongly reduced images.
    constexpr float kLeastScale = 0.5F;
    const bool isLarge =
        std::hypot(toDevice.m00, toDevice.m01) >= kLeastScale && std::hypot(toDevice.m10, toDevice.m11) >= kLeastScale;
    return (image.interpolation == GXInterpolationNearest || isLarge) &&
           (image.edges == ImageInk::Edges::Hidden || Covers(image, toDevice));
}

/// A clamped GDI+ texture is transparent beyond the image and fades at its edges, and one clamped in a single direction
/// is tiled without mirroring; so the image must cover everything painted. A mirrored texture repeats its first pixel
/// before its start, unlike the engine's; nothing may be painted there.
bool GdipShows::Covers(const ImageInk& image, const Matrix& toDevice) const noexcept {
    const auto tiles = [](uint32_t extend) { return extend == GXExtendRepeat || extend == GXExtendMirror; };
    const bool both = tiles(image.extendX) && tiles(image.extendY);
    if (image.extendX == GXExtendRepeat && image.extendY == GXExtendRepeat) {
        return true;
    }
    Matrix toImage;
    if (!Invert(toDevice, toImage)) {
        return false;
    }
    constexpr float kFilterReach = 2.0F;
    const Rect box = MapBox(toImage, ToRect(visible));
    const PixelView pixels = image.Pixels();
    const auto covers = [both](uint32_t extend, float low, float high, int32_t size) {
        return extend == GXExtendRepeat || (low >= kFilterReach && ((both && extend == GXExtendMirror) ||
                                                                    high <= static_cast<float>(size) - kFilterReach));
    };
    return covers(image.extendX, box.left, box.right, pixels.width) &&
           covers(image.extendY, box.top, box.bottom, pixels.height);
}

bool GdipShows::IsOpaque(const GradientBrush& brush) const noexcept {
    const auto& gradient = static_cast<const TwoPointGradientBase&>(*brush.gradient);
    Matrix inverse;
    if (brush.opacity != 1.0F || !GradientSampler(gradient.stops).IsOpaque() ||
        !Invert(Concat(brush.transform, transform), inverse)) {
        return false;
    }
    if (gradient.hasBackground && PackColor(gradient.background) >> 24 == 255) {
        return true;
    }
    if (!gradient.extendStart || !gradient.extendEnd) {
        return false;
    }
    const float distance = std::hypot(gradient.end.x - gradient.start.x, gradient.end.y - gradient.start.y);
    if (gradient.Kind() == kGradientLinear) {
        return distance > 0.0F;
    }
    // The plane is covered if one circle lies inside the other.
    const auto& radial = static_cast<const RadialGradient&>(gradient);
    return distance < std::fabs(radial.endRadius - radial.startRadius);
}

} // namespace Graphics
