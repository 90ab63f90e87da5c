// SPDX-License-Identifier: MIT
// An image that owns its memory.
#pragma once

#include "../Pixels/PixelBuffer.h"
#include "BitmapBase.h"

namespace Graphics {

class SysMemBitmap final : public BitmapBase {
public:
    /// Width and height count by their magnitudes; the pixels are cleared only if `zeroed`. Raises "Unsupported pixel
    /// format." and what PixelBuffer raises.
    SysMemBitmap(int32_t width, int32_t height, GXPixelFormat format, float dpiX = 96.0F, float dpiY = 96.0F,
                 bool zeroed = false);

    [[nodiscard]] GXPixelFormat Format() const noexcept override { return m_format; }
    [[nodiscard]] float DpiX() const noexcept override { return m_dpiX; }
    [[nodiscard]] float DpiY() const noexcept override { return m_dpiY; }
    [[nodiscard]] std::shared_ptr<const Palette> GetPalette() const override { return m_palette; }
    void SetPalette(std::shared_ptr<const Palette> palette) override;
    [[nodiscard]] PixelView View() const noexcept override;

    [[nodiscard]] uint8_t* Data() const noexcept { return m_pixels.Data(); }
    [[nodiscard]] uint32_t StrideBytes() const noexcept { return m_pixels.StrideBytes(); }

    /// Sets every byte to 0, including the padding of the rows.
    void Zero() noexcept;

private:
    const GXPixelFormat m_format;
    const float m_dpiX;
    const float m_dpiY;
    PixelBuffer m_pixels;
    std::shared_ptr<const Palette> m_palette;
};

} // namespace Graphics
