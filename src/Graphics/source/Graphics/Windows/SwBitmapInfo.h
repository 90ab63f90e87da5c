// SPDX-License-Identifier: MIT
// The header that describes a pixel layout to GDI.
#pragma once

#include <cmath>

#include "SystemCalls.h"

namespace Graphics {

struct SwBitmapInfo {
    BITMAPINFOHEADER header{};
    RGBQUAD colors[256]{}; // for formats with up to 8 bits

    /// `bits` per pixel, rows from the top down; `rowPixels` includes the padding of rows.
    SwBitmapInfo(int32_t rowPixels, int32_t height, uint32_t bits) noexcept {
        header.biSize = sizeof header;
        header.biWidth = rowPixels;
        header.biHeight = -height;
        header.biPlanes = 1;
        header.biBitCount = static_cast<WORD>(bits);
        header.biCompression = BI_RGB;
    }

    void SetResolution(float dpiX, float dpiY) noexcept {
        header.biXPelsPerMeter = PerMetre(dpiX);
        header.biYPelsPerMeter = PerMetre(dpiY);
    }

    [[nodiscard]] BITMAPINFO* Get() noexcept { return reinterpret_cast<BITMAPINFO*>(this); }

    /// Dots per inch; `otherwise` if the count is not positive. An integer that PerMetre has written is read back
    /// exactly.
    [[nodiscard]] static float PerInch(LONG perMetre, float otherwise) noexcept {
        if (perMetre <= 0) {
            return otherwise;
        }
        const auto dpi = static_cast<float>(static_cast<double>(perMetre) * 0.0254);
        const float whole = std::round(dpi);
        return PerMetre(whole) == perMetre ? whole : dpi;
    }

private:
    /// Dots per metre; 0, "not known", for invalid resolutions.
    [[nodiscard]] static LONG PerMetre(float dpi) noexcept {
        return dpi > 0.0F && dpi < 1.0e6F ? static_cast<LONG>(std::lround(static_cast<double>(dpi) / 0.0254)) : 0;
    }
};

} // namespace Graphics
