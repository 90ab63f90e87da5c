// SPDX-License-Identifier: MIT
// The paint of a draw, independent of the back end. Inks lie in user space; the back end applies the draw's matrix.
// They refer to bitmaps and brushes, which must outlive the draw.
#pragma once

#include <variant>

#include "../Matrix.h"
#include "../Paint/Brush.h"
#include "../Pixels/PixelView.h"

namespace Graphics {

class Bitmap;
class CacheHolder;

/// The pixels of an image and their place on the device. In a mask the image's opacity is ignored.
struct PlacedImage {
    PixelView pixels;
    CacheHolder* derived = nullptr;   ///< caches objects derived from the whole image; null: do not cache
    uint32_t interpolation = 0;       ///< unknown values count as nearest
    uint32_t extendX = GXExtendClamp; ///< unknown values count as clamp
    uint32_t extendY = GXExtendClamp;
    float opacity = 1.0F;
    Matrix toDevice = kIdentity;
    bool asMask = false;
};

/// A bitmap, or a part of one, and how its edges meet the path.
struct ImageInk {
    enum class Edges : uint8_t {
        Extended, ///< extended by the modes of a brush
        Hidden,   ///< the path is the image's own rectangle
        Shown,    ///< the path is a rectangle around the image: its edge pixels are extended
    };

    explicit ImageInk(const BitmapBrush& brush) noexcept;
    /// Maps `source` (pixels of the bitmap) onto `destination`; a reversed rectangle mirrors. Where `source` exceeds
    /// the bitmap, edge pixels are repeated.
    ImageInk(const Bitmap& b, const IntRect& source, const Rect& destination, float alpha, uint32_t mode) noexcept;
    /// Maps the whole bitmap onto `destination`.
    ImageInk(const Bitmap& b, const Rect& destination, float alpha, uint32_t mode) noexcept;

    [[nodiscard]] PixelView Pixels() const noexcept;
    [[nodiscard]] PlacedImage Place(const Matrix& userToDevice, bool asMask) const noexcept;

    const Bitmap* bitmap;
    IntRect part{};               ///< inside the bitmap; empty: nothing to draw
    Matrix transform = kIdentity; ///< pixels of the part to user space
    uint32_t interpolation;
    uint32_t extendX = GXExtendClamp;
    uint32_t extendY = GXExtendClamp;
    float opacity;
    bool isWhole = true; ///< the part is the whole bitmap
    Edges edges = Edges::Extended;
};

/// One straight colour.
struct SolidInk {
    uint32_t argb;
};

struct GradientInk {
    const GradientBrush* brush;
};

using Ink = std::variant<SolidInk, ImageInk, GradientInk>;

/// Raises "Not implemented" for an unknown kind of brush.
[[nodiscard]] Ink PatternOf(const Brush& brush);
[[nodiscard]] inline Ink InkOf(const Brush& brush) {
    // Fast path: most draws have one colour.
    return brush.Kind() == kBrushSolid ? Ink(SolidInk{static_cast<const SolidBrush&>(brush).argb}) : PatternOf(brush);
}

/// The map from a paint's own space to the device: `paint`, then `userToDevice`.
[[nodiscard]] inline Matrix PaintToDevice(const Matrix& paint, const Matrix& userToDevice) noexcept {
    return IsIdentity(userToDevice) ? paint : Concat(paint, userToDevice);
}

} // namespace Graphics
