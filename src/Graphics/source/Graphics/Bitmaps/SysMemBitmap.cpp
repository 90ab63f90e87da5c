// SPDX-License-Identifier: MIT
#include "SysMemBitmap.h"

#include <cstring>
#include <utility>

#include "../Exception.h"

namespace Graphics {
namespace {

[[nodiscard]] uint32_t CheckedBitsPerPixel(GXPixelFormat format) {
    if (!IsValidFormat(format)) {
        GX_RAISE("Graphics::SysMemBitmap::SysMemBitmap", "Unsupported pixel format.");
    }
    return static_cast<uint32_t>(BitsPerPixel(format));
}

} // namespace

SysMemBitmap::SysMemBitmap(int32_t width, int32_t height, GXPixelFormat format, float dpiX, float dpiY, bool zeroed)
    : m_format(format), m_dpiX(dpiX), m_dpiY(dpiY), m_pixels(width, height, CheckedBitsPerPixel(format), zeroed) {}

void SysMemBitmap::SetPalette(std::shared_ptr<const Palette> palette) {
    m_palette = std::move(palette);
    NotifyChanged();
}

PixelView SysMemBitmap::View() const noexcept {
    PixelView view;
    view.data = m_pixels.Data();
    view.strideBytes = static_cast<ptrdiff_t>(m_pixels.StrideBytes());
    view.width = m_pixels.Width();
    view.height = m_pixels.Height();
    view.format = m_format;
    view.ownsGaps = true;
    if (m_palette != nullptr) {
        view.palette = m_palette->Colors();
        view.paletteCount = m_palette->Count();
    }
    return view;
}

void SysMemBitmap::Zero() noexcept { std::memset(m_pixels.Data(), 0, m_pixels.ByteCount()); }

} // namespace Graphics
