// SPDX-License-Identifier: MIT
#include "SwWindowSurface.h"

#include <algorithm>

#include "../../../Bitmaps/PixelTransfer.h"
#include "../../../Exception.h"
#include "../../../Windows/DCHandle.h"
#include "../../../Windows/SwBitmapInfo.h"

namespace Graphics {
namespace {

constexpr const char* kNoWindow = "The window does not exist";
constexpr const char* kNoContext = "The DC does not exist";

} // namespace

SwWindowSurface::SwWindowSurface(HWND window) : m_window(window) {
    if (g_system.isWindow(window) == 0) {
        GX_RAISE("Graphics::SwWindowSurface::SwWindowSurface", kNoWindow);
    }
    UpdateSurface();
}

void SwWindowSurface::UpdateSurface() {
    static constexpr const char* kFunction = "Graphics::SwWindowSurface::UpdateSurface";
    RECT client{};
    if (g_system.getClientRect(m_window, &client) == 0) {
        GX_RAISE(kFunction, kNoWindow);
    }
    const DCHandle display = DCHandle::DisplayInformation();
    if (!display) {
        GX_RAISE(kFunction, kNoContext);
    }
    const auto dpiX = static_cast<float>(g_system.getDeviceCaps(display.Get(), LOGPIXELSX));
    const auto dpiY = static_cast<float>(g_system.getDeviceCaps(display.Get(), LOGPIXELSY));
    const int bitsPerPixel = g_system.getDeviceCaps(display.Get(), BITSPIXEL);
    const GXPixelFormat format = GetCompatibleFormat(bitsPerPixel);
    const auto width = std::max<int32_t>(client.right - client.left, 0);
    const auto height = std::max<int32_t>(client.bottom - client.top, 0);

    if (width > 0 && height > 0) {
        const std::shared_ptr<SysMemBitmap>& old = m_backBuffer;
        const Size had = old != nullptr ? old->GetSize() : Size{};
        if (old == nullptr || had.width != static_cast<uint32_t>(width) ||
            had.height != static_cast<uint32_t>(height) || old->Format() != format || old->DpiX() != dpiX ||
            old->DpiY() != dpiY) {
            auto fresh = std::make_shared<SysMemBitmap>(width, height, format, dpiX, dpiY, true);
            if (old != nullptr) {
                PixelTransfer::Copy(fresh->View(), old->View());
            }
            m_backBuffer = std::move(fresh);
        }
        m_size = {static_cast<uint32_t>(width), static_cast<uint32_t>(height)};
    } else {
        // Minimised: the pixels are kept until the window is restored.
        m_size = {};
    }
    m_bitsPerPixel = bitsPerPixel;
    m_format = format;
}

PixelView SwWindowSurface::BeginPaint() {
    PixelView view;
    if (m_backBuffer != nullptr) {
        view = m_backBuffer->View();
    }
    view.format = m_format;
    view.width = static_cast<int32_t>(m_size.width);
    view.height = static_cast<int32_t>(m_size.height);
    return view;
}

void SwWindowSurface::Present() {
    static constexpr const char* kFunction = "Graphics::SwWindowSurface::Present";
    if (m_size.width == 0) {
        return;
    }
    if (g_system.isWindow(m_window) == 0) {
        GX_RAISE(kFunction, kNoWindow);
    }
    if (g_system.isIconic(m_window) != 0) {
        return;
    }
    const DCHandle context = DCHandle::OfWindow(m_window);
    if (!context) {
        GX_RAISE(kFunction, kNoContext);
    }
    const DevicePixels pixels(context.Get());
    const auto bits = static_cast<uint32_t>(BitsPerPixel(m_format));
    SwBitmapInfo info(static_cast<int32_t>(m_backBuffer->StrideBytes() * 8 / bits), static_cast<int32_t>(m_size.height),
                      bits);
    info.colors[1] = {255, 255, 255, 0}; // for a display with one bit: 0 black, 1 white
    const int rows = g_system.setDIBitsToDevice(context.Get(), 0, 0, m_size.width, m_size.height, 0, 0, 0,
                                                m_size.height, m_backBuffer->Data(), info.Get(), DIB_RGB_COLORS);
    RECT visible;
    // If no part of the window is visible, copying no rows is no failure.
    if (!pixels || (rows == 0 && GetClipBox(context.Get(), &visible) != NULLREGION)) {
        GX_RAISE(kFunction, "SetDIBitsToDevice is failed.");
    }
}

} // namespace Graphics
