// SPDX-License-Identifier: MIT
// The object behind a bitmap handle: an image in memory with its attributes.
#pragma once

#include <atomic>

#include "SysMemBitmap.h"

namespace Graphics {

class Bitmap final : public BitmapSource {
public:
    /// `image` is not null.
    explicit Bitmap(std::shared_ptr<SysMemBitmap> image) noexcept;

    /// The pixels are not cleared. Raises what SysMemBitmap raises. Sizes are read as signed numbers and count by
    /// magnitude.
    [[nodiscard]] static std::shared_ptr<Bitmap> Create(const GXBitmapDesc& desc);

    [[nodiscard]] GXPixelFormat Format() const noexcept override { return m_image->Format(); }
    [[nodiscard]] Size GetSize() const noexcept override { return m_image->GetSize(); }
    [[nodiscard]] float DpiX() const noexcept override { return m_image->DpiX(); }
    [[nodiscard]] float DpiY() const noexcept override { return m_image->DpiY(); }
    [[nodiscard]] std::shared_ptr<const Palette> GetPalette() const override { return m_image->GetPalette(); }
    void CopyToMemory(const IntRect* rect, const GXBitmapData& destination) const override;

    [[nodiscard]] PixelView View() const noexcept { return m_image->View(); }
    [[nodiscard]] uint8_t* Data() noexcept { return m_image->Data(); }
    [[nodiscard]] const std::shared_ptr<SysMemBitmap>& Image() const noexcept { return m_image; }

    /// Null removes the palette.
    void SetPalette(std::shared_ptr<const Palette> palette);

    /// Remembers `mode` until Unlock or a later Lock. Returns nulls if the clipped rectangle is empty.
    [[nodiscard]] GXBitmapData Lock(const IntRect* rect, uint32_t mode) noexcept;
    /// Notifies of a change if the last lock was for writing.
    void Unlock();

    void CopyFromMemory(const IntRect* rect, const GXBitmapData& source);
    void CopyFromBitmap(const IntPoint* origin, const Bitmap& source, const IntRect* sourceRect);
    void ColorFill(const IntRect* rect, const Color& color);

    /// Between these two calls a target may change pixels without notification; several targets may at once.
    void StartPainting() noexcept { m_painters.fetch_add(1, std::memory_order_relaxed); }
    void EndPainting();
    /// The cache for objects derived from the pixels; null while a target paints, since they would soon be stale.
    [[nodiscard]] CacheHolder* DerivedToKeep() const noexcept {
        return m_painters.load(std::memory_order_relaxed) == 0 ? &Derived() : nullptr;
    }

private:
    const std::shared_ptr<SysMemBitmap> m_image;
    std::atomic<uint32_t> m_lockMode{0}; // several threads may lock one bitmap for reading
    std::atomic<uint32_t> m_painters{0};
};

} // namespace Graphics
