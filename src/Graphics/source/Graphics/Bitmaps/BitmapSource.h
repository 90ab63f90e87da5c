// SPDX-License-Identifier: MIT
// The interface for reading pixels.
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
    /// Null if the image has none.
    [[nodiscard]] virtual std::shared_ptr<const Palette> GetPalette() const = 0;

    /// Copies the rectangle (null: all), clipped to the image, to rows `destination.stride` apart. From each row it
    /// copies the smaller of the row's bytes and `destination.rowLength`. One-bit rows start at the byte that holds the
    /// left pixel.
    virtual void CopyToMemory(const IntRect* rect, const GXBitmapData& destination) const = 0;

    /// Cached objects derived from the pixels. Adding one does not change the image.
    [[nodiscard]] CacheHolder& Derived() const noexcept { return m_derived; }

    /// Call after every change of pixels or palette: drops the derived objects.
    void NotifyChanged() const { m_derived.Clear(); }

protected:
    /// `rect` (null: the whole image) clipped to the image.
    [[nodiscard]] static IntRect Clip(const IntRect* rect, int32_t width, int32_t height) noexcept {
        const IntRect whole{0, 0, width, height};
        return rect == nullptr ? whole : Intersect(*rect, whole);
    }

private:
    mutable CacheHolder m_derived;
};

} // namespace Graphics
