// SPDX-License-Identifier: MIT
// The object behind a bitmap handle: an image in memory, and what the host has said about it.
#pragma once

#include <atomic>

#include "SysMemBitmap.h"

namespace Graphics {

class Bitmap final : public BitmapSource {
public:
    /// `image` is not null.
    explicit Bitmap(std::shared_ptr<SysMemBitmap> image) noexcept;

    /// Pixels not cleared. Raises what SysMemBitmap raises. Sizes are taken as signed numbers, by their magnitude.
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

    /// Remembers `mode`; a later lock before the unlock takes its place. All nulls when nothing of the rectangle is
    /// left.
    [[nodiscard]] GXBitmapData Lock(const IntRect* rect, uint32_t mode) noexcept;
    /// Notifies of a change when the last lock was for writing.
    void Unlock();

    void CopyFromMemory(const IntRect* rect, const GXBitmapData& source);
    void CopyFromBitmap(const IntPoint* origin, const Bitmap& source, const IntRect* sourceRect);
    void ColorFill(const IntRect* rect, const Color& color);

    /// Between these two somebody changes pixels without saying so each time; several may at once.
    void StartPainting() noexcept { m_painters.fetch_add(1, std::memory_order_relaxed); }
    void EndPainting();
    /// Where objects derived from the pixels are kept; null while somebody paints, when they would soon be stale.
    [[nodiscard]] CacheHolder* DerivedToKeep() const noexcept {
        return m_painters.load(std::memory_order_relaxed) == 0 ? &Derived() : nullptr;
    }

private:
    const std::shared_ptr<SysMemBitmap> m_image;
    std::atomic<uint32_t> m_lockMode{0}; // several threads may lock one bitmap for reading
    std::atomic<uint32_t> m_painters{0};
};

} // namespace Graphics
