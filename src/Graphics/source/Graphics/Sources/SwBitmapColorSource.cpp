// SPDX-License-Identifier: MIT
// The map of a sampler is the inverse of the placement, evaluated at device pixel centres.
#include "SwBitmapColorSource.h"

#include <algorithm>
#include <memory>

#include "../Bitmaps/CacheHolder.h"
#include "../Exception.h"
#include "../Pixels/Opacity.h"
#include "../Pixels/PixelFormat.h"
#include "ReducedImage.h"
#include "StillPixels.h"
#include "SwBitmapSampler.h"
#include "SwSolidColorSource.h"

namespace Graphics {

namespace {

/// Keys of reduced images among a bitmap's derived objects; the numbers of halvings determine the size.
constexpr uint32_t kReducedKey = 0x52440000U;
constexpr uint32_t kReducedMask = 0x8000U;

int32_t TargetSize(int32_t size, double scale) noexcept {
    const double target = std::ceil(size / scale);
    return target >= 1.0 ? static_cast<int32_t>(std::min(target, static_cast<double>(size))) : 1;
}

} // namespace

ImageReduction ImageReduction::For(int32_t width, int32_t height, const Matrix& inverse) noexcept {
    const double m0 = inverse.m00, m1 = inverse.m01, m2 = inverse.m10, m3 = inverse.m11;
    const double sx = std::sqrt(m0 * m0 + m1 * m1);
    const double sy = std::fabs(m0 * m3 - m1 * m2) / sx;
    return {ReducedImage::Halvings(width, TargetSize(width, sy)),
            ReducedImage::Halvings(height, TargetSize(height, sx))};
}

std::shared_ptr<const ReducedImage> ReduceImage(const PixelReader& reader, int32_t width, int32_t height,
                                                const ImageReduction& reduction, CacheHolder* derived, bool asMask) {
    const uint32_t key = kReducedKey | (asMask ? kReducedMask : 0U) | reduction.halvingsX << 8 | reduction.halvingsY;
    std::shared_ptr<void> kept = derived != nullptr ? derived->Get(key) : nullptr;
    if (kept == nullptr) {
        kept = std::make_shared<ReducedImage>(reader, width, height, reduction.halvingsX, reduction.halvingsY);
        if (derived != nullptr) {
            derived->Put(key, kept);
        }
    }
    return std::static_pointer_cast<const ReducedImage>(std::move(kept));
}

SwColorSource* CreateBitmapSource(Arena& arena, const PlacedImage& image, const WrittenPixels* written) {
    PixelView view = image.pixels;
    if (!IsValidFormat(view.format)) {
        GX_RAISE("Graphics::`anonymous-namespace'::CreateBitmapSampler", "Not implemented");
    }
    Matrix inverse;
    if (view.data == nullptr || view.width <= 0 || view.height <= 0 || !Invert(image.toDevice, inverse)) {
        return arena.Make<SwSolidColorSource>(0U);
    }
    CacheHolder* derived = image.derived;
    if (written != nullptr && written->Overlaps(view)) {
        const bool clamps = image.extendX != GXExtendRepeat && image.extendX != GXExtendMirror &&
                            image.extendY != GXExtendRepeat && image.extendY != GXExtendMirror;
        view =
            CopyStillPixels(arena, view, *written, inverse, !clamps || image.interpolation == GXInterpolationAverage);
        derived = nullptr;
    }
    PixelReader reader(arena, view, image.asMask);
    SwSamplerSetup setup{};
    setup.width = view.width;
    setup.height = view.height;
    setup.linear = image.interpolation == GXInterpolationLinear || image.interpolation == GXInterpolationAverage;
    setup.tilingX = image.extendX > GXExtendMirror ? 0U : image.extendX;
    setup.tilingY = image.extendY > GXExtendMirror ? 0U : image.extendY;
    setup.opacityFactor = image.asMask ? 256 : OpacityFactor(image.opacity);
    setup.opaque = reader.IsOpaque() && setup.opacityFactor == 256;

    double scaleX = 1.0; // pixels of the sampled image for each of the bitmap
    double scaleY = 1.0;
    std::shared_ptr<const ReducedImage> keep;
    if (image.interpolation == GXInterpolationAverage) {
        const ImageReduction reduction = ImageReduction::For(view.width, view.height, inverse);
        if (reduction.Any()) {
            keep = ReduceImage(reader, view.width, view.height, reduction, derived, image.asMask);
            const PixelView reduced = keep->View();
            scaleX = static_cast<double>(reduced.width) / view.width;
            scaleY = static_cast<double>(reduced.height) / view.height;
            setup.width = reduced.width;
            setup.height = reduced.height;
            reader = PixelReader(arena, reduced, false);
        }
    }
    // Bilinear coordinates count from pixel centres, where the neighbours' weights are 1 and 0.
    const double centre = setup.linear ? 0.5 : 0.0;
    setup.m0 = static_cast<float>(inverse.m00 * scaleX);
    setup.m1 = static_cast<float>(inverse.m01 * scaleY);
    setup.m2 = static_cast<float>(inverse.m10 * scaleX);
    setup.m3 = static_cast<float>(inverse.m11 * scaleY);
    setup.m4 = static_cast<float>((0.5 * inverse.m00 + 0.5 * inverse.m10 + inverse.m20) * scaleX - centre);
    setup.m5 = static_cast<float>((0.5 * inverse.m01 + 0.5 * inverse.m11 + inverse.m21) * scaleY - centre);
    return arena.Make<SwBitmapSampler>(arena, reader, setup, std::move(keep));
}

} // namespace Graphics
