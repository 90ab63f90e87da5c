// SPDX-License-Identifier: MIT
// A GDI+ bitmap for an image of the engine: on the same pixels if both support the format, else on converted ones.
#pragma once

#include "../../Pixels/PixelView.h"
#include "../../Windows/GdipCalls.h"

namespace Graphics {

class GdipBitmap {
public:
    /// The pixels must outlive this object and must not change meanwhile. Raises "Failed to create Gdiplus bitmap of
    /// size - width: {w}; height: {h} and format {f}", where {f} is GDI+'s number of the format.
    GdipBitmap(const PixelView& pixels, float dpiX, float dpiY);
    GdipBitmap(const GdipBitmap&) = delete;
    GdipBitmap& operator=(const GdipBitmap&) = delete;
    ~GdipBitmap();

    [[nodiscard]] Gdiplus::GpBitmap* Get() const noexcept { return m_bitmap; }
    [[nodiscard]] int32_t Width() const noexcept { return m_width; }
    [[nodiscard]] int32_t Height() const noexcept { return m_height; }

    /// GDI+'s number of the same layout; 0 if it has none.
    [[nodiscard]] static Gdiplus::PixelFormat FormatOf(GXPixelFormat format) noexcept;

private:
    [[nodiscard]] bool SetPalette(const PixelView& pixels);
    [[nodiscard]] bool CopyConverted(const PixelView& pixels);

    Gdiplus::GpBitmap* m_bitmap = nullptr;
    int32_t m_width;
    int32_t m_height;
};

} // namespace Graphics
