// SPDX-License-Identifier: MIT
// An image whose pixels lie in memory and can be written.
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
    /// The pixels with the present palette; good until the palette is set anew or the image ends.
    [[nodiscard]] virtual PixelView View() const noexcept = 0;

    virtual void SetPalette(std::shared_ptr<const Palette> palette) = 0;

    [[nodiscard]] Size GetSize() const noexcept final;
    void CopyToMemory(const IntRect* rect, const GXBitmapData& destination) const final;

    /// The rectangle (all where null) clipped to the image; nulls when nothing is left. Locks do not count or exclude.
    [[nodiscard]] LockedPixels Lock(const IntRect* rect) const noexcept;

    /// The counterpart of CopyToMemory.
    void CopyFromMemory(const IntRect* rect, const GXBitmapData& source);

    /// Copies `sourceRect` (all where null) to `origin`, converting; what lies outside either image is left out. Both
    /// may be the same image. Raises "Bad format conversion".
    void CopyFromBitmap(const IntPoint& origin, const BitmapBase& source, const IntRect* sourceRect);

    void ColorFill(const IntRect* rect, const Color& color);
};

} // namespace Graphics
