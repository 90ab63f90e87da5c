// SPDX-License-Identifier: MIT
// Anything that pixels can be read from.
#pragma once

#include <memory>

#include "../Pixels/Palette.h"
#include "../Pixels/PixelView.h"
#include "CacheHolder.h"

namespace Graphics {

class BitmapSource {
public:
    BitmapSource() = default;
    BitmapSource(const BitmapSource&) = delete;
    BitmapSource& operator=(const BitmapSource&) = delete;
    virtual ~BitmapSource() = default;

    [[nodiscard]] virtual GXPixelFormat Format() const noexcept = 0;
    [[nodiscard]] virtual Size GetSize() const noexcept = 0;
    [[nodiscard]] virtual float DpiX() const noexcept = 0;
    [[nodiscard]] virtual float DpiY() const noexcept = 0;
    /// Null when the image has none.
    [[nodiscard]] virtual std::shared_ptr<const Palette> GetPalette() const = 0;

    /// Copies the rectangle (all where null), clipped to the image, to rows `destination.stride` apart: from each row
    /// as many bytes as both it and `destination.rowLength` have. One-bit rows start at the byte that holds the left
    /// pixel.
    virtual void CopyToMemory(const IntRect* rect, const GXBitmapData& destination) const = 0;

    /// Objects derived from the pixels. Filling it is not a change of the image.
    [[nodiscard]] CacheHolder& Derived() const noexcept { return m_derived; }

    /// To be called after every change of pixels or palette: drops what was derived from them.
    void NotifyChanged() const { m_derived.Clear(); }

protected:
    /// `rect` (the whole image where null) without what lies outside the image.
    [[nodiscard]] static IntRect Clip(const IntRect* rect, int32_t width, int32_t height) noexcept {
        const IntRect whole{0, 0, width, height};
        return rect == nullptr ? whole : Intersect(*rect, whole);
    }

private:
    mutable CacheHolder m_derived;
};

} // namespace Graphics
