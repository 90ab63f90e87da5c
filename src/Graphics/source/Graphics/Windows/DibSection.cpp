// SPDX-License-Identifier: MIT
#include "DibSection.h"

#include "../Exception.h"
#include "SwBitmapInfo.h"

namespace Graphics {

DibSection::DibSection(const char* raiser, int32_t width, int32_t height, float dpiX, float dpiY)
    : m_width(width), m_height(height) {
    SwBitmapInfo info(width, height, 32);
    info.SetResolution(dpiX, dpiY);
    m_bitmap = GdiBitmap(g_system.createDIBSection(nullptr, info.Get(), DIB_RGB_COLORS, &m_pixels, nullptr, 0));
    if (!m_bitmap || m_pixels == nullptr) {
        GX_RAISE(raiser, "CreateDIBSection fail");
    }
}

PixelView DibSection::View(GXPixelFormat format) const noexcept {
    PixelView view;
    view.data = static_cast<uint8_t*>(m_pixels);
    view.strideBytes = static_cast<ptrdiff_t>(m_width) * 4;
    view.width = m_width;
    view.height = m_height;
    view.format = format;
    return view;
}

} // namespace Graphics
