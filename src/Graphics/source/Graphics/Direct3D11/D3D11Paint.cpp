// SPDX-License-Identifier: MIT
#include "D3D11Paint.h"

#include "../Paint/Gradient.h"
#include "../Pixels/Opacity.h"
#include "../Pixels/PixelFormat.h"
#include "../Scan/DeviceFigures.h"
#include "../Sources/PixelReader.h"
#include "../Sources/ReducedImage.h"
#include "../Sources/SwBitmapColorSource.h"

namespace Graphics {
namespace {

/// Nearest samples exactly between two texels use the second one, as in software; the shift is invisibly small.
constexpr float kNearestShift = 1.0F / 256.0F;

/// Matrix from device pixels to coordinates in [0, 1] of an image.
[[nodiscard]] Matrix Normalized(const Matrix& inverse, double scaleX, double scaleY, float shift, int32_t width,
                                int32_t height) noexcept {
    const double x = scaleX / width;
    const double y = scaleY / height;
    return {static_cast<float>(inverse.m00 * x),
            static_cast<float>(inverse.m01 * y),
            static_cast<float>(inverse.m10 * x),
            static_cast<float>(inverse.m11 * y),
            static_cast<float>(inverse.m20 * x + static_cast<double>(shift) / width),
            static_cast<float>(inverse.m21 * y + static_cast<double>(shift) / height)};
}

[[nodiscard]] uint8_t Extend(uint32_t mode) noexcept {
    return static_cast<uint8_t>(mode > GXExtendMirror ? static_cast<uint32_t>(GXExtendClamp) : mode);
}

} // namespace

void D3D11Paint::SetWord(uint32_t premultiplied) noexcept {
    for (int i = 0; i < 4; ++i) {
        const int shift = i == 3 ? 24 : 16 - 8 * i;
        color[i] = static_cast<float>(premultiplied >> shift & 255U) * (1.0F / 255.0F);
    }
}

SwColorSource& D3D11PaintMaker::Source(const Ink& ink, const Matrix& transform, const IntRect& box) {
    return *SwColorSource::Create(m_arena, ink, ToRect(box), transform);
}

D3D11Paint D3D11PaintMaker::From(D3D11Context& context, const Ink& ink, const Matrix& transform, const IntRect& box) {
    if (const auto* image = std::get_if<ImageInk>(&ink)) {
        return FromImage(context, image->Place(transform, false), box);
    }
    if (const auto* gradient = std::get_if<GradientInk>(&ink)) {
        D3D11Paint paint;
        if (gradient->brush->gradient->Kind() == kGradientLinear &&
            FromLinear(context, *gradient->brush, transform, paint)) {
            return paint;
        }
    }
    return FromSource(context, Source(ink, transform, box), box);
}

D3D11Paint D3D11PaintMaker::FromSource(D3D11Context& context, SwColorSource& source, const IntRect& box) {
    D3D11Paint paint;
    uint32_t word = 0;
    if (source.IsSolid(word)) {
        paint.SetWord(word);
        return paint;
    }
    D3D11SoftwareTextures::Image image = m_textures.Paint(context, source, box);
    paint.texture = std::move(image.texture);
    paint.map = image.map;
    return paint;
}

bool D3D11PaintMaker::FromLinear(D3D11Context& context, const GradientBrush& brush, const Matrix& transform,
                                 D3D11Paint& paint) {
    const auto& gradient = static_cast<const LinearGradient&>(*brush.gradient);
    InverseMap map;
    const double axisX = static_cast<double>(gradient.end.x) - gradient.start.x;
    const double axisY = static_cast<double>(gradient.end.y) - gradient.start.y;
    const double square = axisX * axisX + axisY * axisY;
    if (!(square > 0.0) || !std::isfinite(square) || !map.Set(PaintToDevice(brush.transform, transform))) {
        return false;
    }
    const double dtdx = (map.a * axisX + map.b * axisY) / square;
    const double dtdy = (map.c * axisX + map.d * axisY) / square;
    // The parameter is defined at the pixel's corner, but the GPU samples at its centre.
    const double t0 =
        ((map.e - gradient.start.x) * axisX + (map.f - gradient.start.y) * axisY) / square - 0.5 * (dtdx + dtdy);
    // Both ends of the axis lie slightly inside the texels of their colours.
    constexpr double kInside = 1.0 / 64.0;
    constexpr double kScale = (D3D11GradientCache::kTexels - 2 - 2 * kInside) / D3D11GradientCache::kTexels;
    paint.map = {static_cast<float>(dtdx * kScale),
                 0.0F,
                 static_cast<float>(dtdy * kScale),
                 0.0F,
                 static_cast<float>(t0 * kScale + (1.0 + kInside) / D3D11GradientCache::kTexels),
                 0.5F};
    if (!std::isfinite(paint.map.m00) || !std::isfinite(paint.map.m10) || !std::isfinite(paint.map.m20)) {
        return false;
    }
    paint.texture = context.Gradients().Row(brush);
    return true;
}

D3D11Paint D3D11PaintMaker::FromImage(D3D11Context& context, const PlacedImage& image, const IntRect& box) {
    const auto inSoftware = [&] { return FromSource(context, *CreateBitmapSource(m_arena, image), box); };
    PixelView view = image.pixels;
    Matrix inverse;
    if (!IsValidFormat(view.format) || view.data == nullptr || view.width <= 0 || view.height <= 0 ||
        !Invert(image.toDevice, inverse)) {
        return inSoftware();
    }
    D3D11Paint paint;
    paint.sampling = {image.interpolation == GXInterpolationLinear || image.interpolation == GXInterpolationAverage,
                      Extend(image.extendX), Extend(image.extendY)};
    const bool clamps = image.extendX == GXExtendClamp && image.extendY == GXExtendClamp;
    if (!clamps && !context.Device().TilesAnySize()) {
        return inSoftware();
    }
    // For coordinates left of or above the image, the engine mirrors about the centre of the first pixel, the GPU about
    // its border.
    const Rect asked = MapBox(inverse, {static_cast<float>(box.left), static_cast<float>(box.top),
                                        static_cast<float>(box.right), static_cast<float>(box.bottom)});
    if ((paint.sampling.extendX == GXExtendMirror && !(asked.left >= 0.5F)) ||
        (paint.sampling.extendY == GXExtendMirror && !(asked.top >= 0.5F))) {
        return inSoftware();
    }
    double scaleX = 1.0;
    double scaleY = 1.0;
    uint32_t variant = 0;
    std::shared_ptr<const ReducedImage> reduced;
    if (image.interpolation == GXInterpolationAverage) {
        const ImageReduction reduction = ImageReduction::For(view.width, view.height, inverse);
        if (reduction.Any()) {
            const PixelReader reader(m_arena, view, image.asMask);
            reduced = ReduceImage(reader, view.width, view.height, reduction, image.derived, image.asMask);
            variant = reduction.halvingsX << 8 | reduction.halvingsY;
            const PixelView small = reduced->View();
            scaleX = static_cast<double>(small.width) / view.width;
            scaleY = static_cast<double>(small.height) / view.height;
            view = small; // a mask's words have the mask value in every byte, including alpha
        }
    }
    if (!context.Bitmaps().Fits(view.width, view.height)) {
        return inSoftware();
    }
    paint.texture = context.Bitmaps().GetTexture(view, image.derived, variant, image.asMask);
    paint.map =
        Normalized(inverse, scaleX, scaleY, paint.sampling.linear ? 0.0F : kNearestShift, view.width, view.height);
    if (!image.asMask) {
        const float opacity = static_cast<float>(OpacityFactor(image.opacity)) * (1.0F / 256.0F);
        for (float& c : paint.color) {
            c *= opacity;
        }
    }
    return paint;
}

} // namespace Graphics
