// SPDX-License-Identifier: MIT
// A surface for a part of a device context: a back buffer in memory. A frame starts with the device's present pixels
// (white if the device cannot be read) and is copied to the device at its end.
#pragma once

#include "../SwSurface.h"
#include "SwSystemBitmap.h"

namespace Graphics {

class SwDeviceSurface final : public SwSurface {
public:
    /// `area` in device pixels; an empty one is the whole device. The context must outlive the surface. Raises what
    /// SwSystemBitmap raises.
    SwDeviceSurface(HDC dc, const IntRect& area);

    [[nodiscard]] Size GetSize() const override;
    [[nodiscard]] GXPixelFormat GetPixelFormat() const override { return GXPixelFormatBGRX32; }
    /// Raises "The DC does not exist".
    [[nodiscard]] PixelView BeginPaint() override;
    void EndPaint() override { Present(); }

private:
    [[nodiscard]] static IntRect Resolve(HDC dc, const IntRect& area) noexcept;
    [[nodiscard]] bool ReadDevice();
    /// Raises "The DC does not exist", "CreateCompatibleDC is failed.", "CreateCompatibleBitmap is failed.", "BitBlt is
    /// failed."
    void Present();
    void PresentConverted(int width, int height);

    HDC m_dc;
    IntRect m_area;
    SwSystemBitmap m_backBuffer;
};

} // namespace Graphics
