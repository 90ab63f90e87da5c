// SPDX-License-Identifier: MIT
// A surface for a window: a back buffer in memory of the client area's size, copied to the window at the end of a
// frame.
#pragma once

#include <memory>

#include "../../../Bitmaps/SysMemBitmap.h"
#include "../../../Windows/SystemCalls.h"
#include "../SwSurface.h"

namespace Graphics {

class SwWindowSurface final : public SwSurface {
public:
    /// Raises "The window does not exist" and what UpdateSurface raises.
    explicit SwWindowSurface(HWND window);

    /// The client area as of creation or the last BeginPaint; 0 by 0 while the window is minimised.
    [[nodiscard]] Size GetSize() const override { return m_size; }
    [[nodiscard]] GXPixelFormat GetPixelFormat() const override { return m_format; }

    /// Follows the client area, the display's depth and its resolution. The common part of both sizes keeps its pixels,
    /// the rest is black. Raises "The window does not exist", "The DC does not exist", "Unsupported pixel format." and
    /// what a bitmap of that size raises; the back buffer is then unchanged.
    void UpdateSurface() override;
    [[nodiscard]] PixelView BeginPaint() override;
    void EndPaint() override { Present(); }

private:
    /// Raises "The window does not exist", "The DC does not exist", "SetDIBitsToDevice is failed."
    void Present();

    HWND m_window;
    Size m_size{};
    int m_bitsPerPixel = 0; // of the display
    GXPixelFormat m_format = GXPixelFormatBGRX32;
    std::shared_ptr<SysMemBitmap> m_backBuffer; // null while the window has no area
};

} // namespace Graphics
