// SPDX-License-Identifier: MIT
// From a brush to the source of its colours.
#include "SwColorSource.h"

#include "../Bitmaps/Bitmap.h"
#include "../Exception.h"
#include "../Paint/Brush.h"
#include "SwBitmapColorSource.h"
#include "SwGradientColorSource.h"
#include "SwSolidColorSource.h"

namespace Graphics {

SwColorSource* SwColorSource::CreateFromBrush(Arena& arena, const Brush& brush, const Rect& bounds,
                                              const Matrix& transform) {
    switch (brush.Kind()) {
    case kBrushSolid:
        return arena.Make<SwSolidColorSource>(SolidColorOf(static_cast<const SolidBrush&>(brush)));
    case kBrushBitmap: {
        const auto& b = static_cast<const BitmapBrush&>(brush);
        return CreateBitmapSource(arena, b.bitmap->View(), b.bitmap->DerivedToKeep(), b.interpolation, b.extendX,
                                  b.extendY, b.opacity, PaintTransform(b, transform), false);
    }
    case kBrushGradient:
        return SwGradientColorSource::Factory(arena, static_cast<const GradientBrush&>(brush), bounds, transform);
    default:
        GX_RAISE("Graphics::SwColorSource::CreateFromBrush", "Not implemented");
    }
}

} // namespace Graphics
