// SPDX-License-Identifier: MIT
// What colours the pixels of a draw, before it is known who draws it. Inks lie in user space; the matrix of a draw is
// applied by the back end. They refer to bitmaps and brushes, which outlive the draw.
#pragma once

#include <variant>

#include "../Matrix.h"
#include "../Paint/Brush.h"
#include "../Pixels/PixelView.h"

namespace Graphics {

class Bitmap;
class CacheHolder;

/// The pixels of an image and where they lie on the device. As a mask an image's opacity does not count.
struct PlacedImage {
    PixelView pixels;
    CacheHolder* derived = nullptr;   ///< keeps what is derived from all of the image; null where nothing is to be kept
    uint32_t interpolation = 0;       ///< unknown values count as nearest
    uint32_t extendX = GXExtendClamp; ///< unknown values count as clamp
    uint32_t extendY = GXExtendClamp;
    float opacity = 1.0F;
    Matrix toDevice = kIdentity;
    bool asMask = false;
};

/// A bitmap, or a part of one.
struct ImageInk {
    enum class Edges : uint8_t {
        Extended, ///< by the modes of a brush
        Hidden,   ///< the path is the image's own rectangle
        Shown,    ///< the path is a rectangle around the image: its edge pixels go on
    };

    explicit ImageInk(const BitmapBrush& brush) noexcept;
    /// `source` (pixels of the bitmap) lies exactly on `destination`; a reversed rectangle mirrors. Where it is larger
    /// than the bitmap, edge pixels go on.
    ImageInk(const Bitmap& b, const IntRect& source, const Rect& destination, float alpha, uint32_t mode) noexcept;
    /// All of the bitmap lies on `destination`.
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
    bool isWhole = true; ///< the part is all of the bitmap
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
    // Most draws have one colour.
    return brush.Kind() == kBrushSolid ? Ink(SolidInk{static_cast<const SolidBrush&>(brush).argb}) : PatternOf(brush);
}

/// Maps a paint's own space to the device: `paint` and then `userToDevice`.
[[nodiscard]] inline Matrix PaintToDevice(const Matrix& paint, const Matrix& userToDevice) noexcept {
    return IsIdentity(userToDevice) ? paint : Concat(paint, userToDevice);
}

} // namespace Graphics
