// SPDX-License-Identifier: MIT
// Exports that make brushes.
#include "Bitmaps/Bitmap.h"
#include "Guard.h"
#include "Handles.h"
#include "Paint/Brush.h"

using namespace Graphics;

namespace {

/// Clamps to [0, 1]; NaN gives 0.
float ClampUnit(float v) noexcept {
    const float low = v > 0.0F ? v : 0.0F;
    return low < 1.0F ? low : 1.0F;
}

} // namespace

GX_API GXResult GXCreateBrushSolid(const GXColor* color, GXBrush* out) GX_NOEXCEPT {
    if (AnyNull(color, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] {
        return std::make_shared<SolidBrush>(
            Color{ClampUnit(color->red), ClampUnit(color->green), ClampUnit(color->blue), ClampUnit(color->alpha)});
    });
}

GX_API GXResult GXCreateBrushSolidARGB(uint32_t argb, GXBrush* out) GX_NOEXCEPT {
    if (AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return std::make_shared<SolidBrush>(UnpackColor(argb)); });
}

GX_API GXResult GXCreateBrushBitmap(GXBitmap bitmap, float opacity, const GXBitmapBrushOptions* options,
                                    const GXMatrix* matrix, GXBrush* out) GX_NOEXCEPT {
    if (AnyNull(bitmap, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] {
        auto brush = std::make_shared<BitmapBrush>(bitmap->object);
        brush->opacity = opacity;
        if (options != nullptr) {
            brush->interpolation = options->interpolation;
            brush->extendX = options->extendX;
            brush->extendY = options->extendY;
        }
        if (matrix != nullptr) {
            brush->transform = *matrix;
        }
        return brush;
    });
}

GX_API GXResult GXCreateBrushGradient(GXGradient gradient, float opacity, const GXMatrix* matrix,
                                      GXBrush* out) GX_NOEXCEPT {
    if (AnyNull(gradient, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] {
        auto brush = std::make_shared<GradientBrush>(gradient->object);
        brush->opacity = opacity;
        if (matrix != nullptr) {
            brush->transform = *matrix;
        }
        return brush;
    });
}
