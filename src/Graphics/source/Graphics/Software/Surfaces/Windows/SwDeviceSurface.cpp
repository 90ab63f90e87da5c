// SPDX-License-Identifier: MIT
#include "SwDeviceSurface.h"

#include "../../../Exception.h"

namespace Graphics {
namespace {

constexpr const char* kPresent = "Graphics::SwDeviceSurface::Present";

[[nodiscard]] float Dpi(HDC dc, int index) noexcept { return static_cast<float>(g_system.getDeviceCaps(dc, index)); }

} // namespace

IntRect SwDeviceSurface::Resolve(HDC dc, const IntRect& area) noexcept {
    return !IsEmpty(area) ? area
                          : IntRect{0, 0, g_system.getDeviceCaps(dc, HORZRES), g_system.getDeviceCaps(dc, VERTRES)};
}

SwDeviceSurface::SwDeviceSurface(HDC dc, const IntRect& area)
    : m_dc(dc), m_area(Resolve(dc, area)),
      m_backBuffer(dc, static_cast<int64_t>(m_area.right) - m_area.left,
                   static_cast<int64_t>(m_area.bottom) - m_area.top, Dpi(dc, LOGPIXELSX), Dpi(dc, LOGPIXELSY)) {}

Size SwDeviceSurface::GetSize() const {
    const PixelView view = m_backBuffer.View();
    return {static_cast<uint32_t>(view.width), static_cast<uint32_t>(view.height)};
}

bool SwDeviceSurface::ReadDevice() {
    const DWORD type = g_system.getObjectType(m_dc);
    if ((type != OBJ_DC && type != OBJ_MEMDC) || g_system.getDeviceCaps(m_dc, TECHNOLOGY) != DT_RASDISPLAY) {
        return false; // a printer, a metafile
    }
    const DevicePixels pixels(m_dc);
    const PixelView view = m_backBuffer.View();
    // BitBlt does not write pixels beyond the device.
    m_backBuffer.MakeWhite();
    const bool read = pixels && g_system.bitBlt(m_backBuffer.Context(), 0, 0, view.width, view.height, m_dc,
                                                m_area.left, m_area.top, SRCCOPY) != 0;
    GdiFlush(); // completes GDI's output before the engine accesses the memory
    return read;
}

PixelView SwDeviceSurface::BeginPaint() {
    if (g_system.getObjectType(m_dc) == 0) {
        GX_RAISE("Graphics::SwDeviceSurface::BeginPaint", "The DC does not exist");
    }
    if (!ReadDevice()) {
        m_backBuffer.MakeWhite();
    }
    return m_backBuffer.View();
}

void SwDeviceSurface::Present() {
    if (g_system.getObjectType(m_dc) == 0) {
        GX_RAISE(kPresent, "The DC does not exist");
    }
    const DevicePixels pixels(m_dc);
    const PixelView view = m_backBuffer.View();
    // For devices of low depth the pixels are converted in memory, so that the device receives a plain copy in its own
    // format.
    const bool converted =
        g_system.getObjectType(m_dc) != OBJ_ENHMETADC && g_system.getDeviceCaps(m_dc, BITSPIXEL) < 24;
    if (converted) {
        PresentConverted(view.width, view.height);
    } else if (!pixels || g_system.bitBlt(m_dc, m_area.left, m_area.top, view.width, view.height,
                                          m_backBuffer.Context(), 0, 0, SRCCOPY) == 0) {
        GX_RAISE(kPresent, "BitBlt is failed.");
    }
}

void SwDeviceSurface::PresentConverted(int width, int height) {
    const DCHandle context = DCHandle::Compatible(m_dc);
    if (!context) {
        GX_RAISE(kPresent, "CreateCompatibleDC is failed.");
    }
    const GdiBitmap bitmap(g_system.createCompatibleBitmap(m_dc, width, height));
    if (!bitmap) {
        GX_RAISE(kPresent, "CreateCompatibleBitmap is failed.");
    }
    const GdiSelection selection(context.Get(), bitmap.Get());
    // Halftoning approximates colours that the device lacks.
    SetStretchBltMode(context.Get(), HALFTONE);
    SetBrushOrgEx(context.Get(), 0, 0, nullptr);
    if (!selection ||
        g_system.stretchBlt(context.Get(), 0, 0, width, height, m_backBuffer.Context(), 0, 0, width, height, SRCCOPY) ==
            0 ||
        g_system.bitBlt(m_dc, m_area.left, m_area.top, width, height, context.Get(), 0, 0, SRCCOPY) == 0) {
        GX_RAISE(kPresent, "BitBlt is failed.");
    }
}

} // namespace Graphics
