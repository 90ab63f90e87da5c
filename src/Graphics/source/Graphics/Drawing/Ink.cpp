// SPDX-License-Identifier: MIT
#include "Ink.h"

#include "../Bitmaps/Bitmap.h"
#include "../Bitmaps/PixelTransfer.h"
#include "../Exception.h"
#include "../Scan/DeviceFigures.h"

namespace Graphics {
namespace {

[[nodiscard]] IntRect WholeOf(const Bitmap& bitmap) noexcept {
    const Size size = bitmap.GetSize();
    return {0, 0, static_cast<int32_t>(size.width), static_cast<int32_t>(size.height)};
}

} // namespace

ImageInk::ImageInk(const BitmapBrush& brush) noexcept
    : bitmap(brush.bitmap.get()), part(WholeOf(*bitmap)), transform(brush.transform),
      interpolation(brush.interpolation), extendX(brush.extendX), extendY(brush.extendY), opacity(brush.opacity) {}

ImageInk::ImageInk(const Bitmap& b, const IntRect& source, const Rect& destination, float alpha, uint32_t mode) noexcept
    : bitmap(&b), interpolation(mode), opacity(alpha) {
    const IntRect whole = WholeOf(b);
    part = Intersect(source, whole);
    transform = PlaceImage(part, source, destination);
    isWhole = part == whole;
    edges = part == source ? Edges::Hidden : Edges::Shown;
}

ImageInk::ImageInk(const Bitmap& b, const Rect& destination, float alpha, uint32_t mode) noexcept
    : bitmap(&b), part(WholeOf(b)), transform(PlaceImage(part, part, destination)), interpolation(mode), opacity(alpha),
      edges(Edges::Hidden) {}

PixelView ImageInk::Pixels() const noexcept {
    return isWhole ? bitmap->View() : PixelTransfer::Part(bitmap->View(), part);
}

PlacedImage ImageInk::Place(const Matrix& userToDevice, bool asMask) const noexcept {
    return {Pixels(), isWhole ? bitmap->DerivedToKeep() : nullptr, interpolation, extendX, extendY,
            opacity,  PaintToDevice(transform, userToDevice),      asMask};
}

Ink PatternOf(const Brush& brush) {
    switch (brush.Kind()) {
    case kBrushBitmap:
        return ImageInk(static_cast<const BitmapBrush&>(brush));
    case kBrushGradient:
        return GradientInk{&static_cast<const GradientBrush&>(brush)};
    default:
        GX_RAISE("Graphics::PatternOf", "Not implemented");
    }
}

} // namespace Graphics
