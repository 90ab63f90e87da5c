// SPDX-License-Identifier: MIT
// An image with writable pixels in memory.
#pragma once

#include "BitmapSource.h"

namespace Graphics {

/// A locked rectangle. In one-bit formats `data` is the byte that holds the left pixel.
struct LockedPixels {
    uint8_t* data = nullptr;
    uint32_t strideBytes = 0;
    uint32_t rowBytes = 0;
};

class BitmapBase : public BitmapSource {
public:
    /// The pixels with the present palette; valid until the palette is replaced or the image ends.
    [[nodiscard]] virtual PixelView View() const noexcept = 0;

    virtual void SetPalette(std::shared_ptr<const Palette> palette) = 0;

    [[nodiscard]] Size GetSize() const noexcept final;
    void CopyToMemory(const IntRect* rect, const GXBitmapData& destination) const final;

    /// The rectangle (null: all) clipped to the image; nulls if it is empty. Locks are neither counted nor exclusive.
    [[nodiscard]] LockedPixels Lock(const IntRect* rect) const noexcept;

    /// The inverse of CopyToMemory.
    void CopyFromMemory(const IntRect* rect, const GXBitmapData& source);

    /// Copies `sourceRect` (null: all) to `origin` with conversion, clipped to both images, which may be the same.
    /// Raises "Bad format conversion".
    void CopyFromBitmap(const IntPoint& origin, const BitmapBase& source, const IntRect* sourceRect);

    void ColorFill(const IntRect* rect, const Color& color);
};

} // namespace Graphics
