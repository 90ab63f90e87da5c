// SPDX-License-Identifier: MIT
// What the tests of printing share: a picture that passes for a printer, and a measure of two pictures' difference.
#pragma once

#include <cmath>
#include <memory>

#include "Bitmaps/Bitmap.h"
#include "Gdiplus/GdipFlattener.h"
#include "Software/Surfaces/SwBitmapSurface.h"
#include "Software/SwRenderTarget.h"
#include "WindowsSupport.h"

namespace PrintSupport {

/// White paper of a size; the calls of the system say that it is a device of that size, with or without alpha.
class Printer {
public:
    Printer(int width, int height, bool blends) : m_picture(width, height) {
        Size() = {width, height, blends ? SB_CONST_ALPHA | SB_PIXEL_ALPHA : SB_NONE};
        Graphics::g_system.getDeviceCaps = [](HDC dc, int index) -> int {
            const Caps& caps = Size();
            return index == HORZRES          ? caps.width
                   : index == VERTRES        ? caps.height
                   : index == SHADEBLENDCAPS ? caps.blending
                                             : ::GetDeviceCaps(dc, index);
        };
        m_picture.Fill(0xFFFFFF);
    }

    [[nodiscard]] HDC Context() const { return m_picture.Context(); }
    [[nodiscard]] WindowsSupport::GdiPicture& Picture() const { return m_picture; }

private:
    struct Caps {
        int width, height, blending;
    };
    static Caps& Size() {
        static Caps caps{};
        return caps;
    }
    mutable WindowsSupport::GdiPicture m_picture;
};

inline std::unique_ptr<Graphics::RenderTargetBase> SoftwareTarget(std::shared_ptr<Graphics::Bitmap> bitmap) {
    return std::make_unique<Graphics::SwRenderTarget>(std::make_unique<Graphics::SwBitmapSurface>(std::move(bitmap)));
}

/// Colours of a 32-bit bitmap, the fourth byte 0.
inline std::vector<uint32_t> ColorsOf(GXBitmap bitmap, uint32_t width, uint32_t height) {
    std::vector<uint32_t> colors(static_cast<size_t>(width) * height);
    const GXBitmapData data{colors.data(), width * 4, width * 4};
    EXPECT_EQ(GXBitmapCopyToMemory(bitmap, nullptr, &data), GXResultSuccess);
    for (uint32_t& c : colors) {
        c &= 0xFFFFFF;
    }
    return colors;
}

/// Four by four opaque pixels, light and dark.
inline TargetSupport::Owned<GXBitmap> Checks() {
    TargetSupport::Owned<GXBitmap> bitmap = TargetSupport::MakeBitmap(4, 4, GXPixelFormatBGRX32);
    for (int32_t i = 0; i < 16; ++i) {
        const GXIntRect pixel{i % 4, i / 4, i % 4 + 1, i / 4 + 1};
        EXPECT_EQ(GXBitmapColorFill(bitmap, &pixel, (i + i / 4) % 2 != 0 ? 0xFFF0D060U : 0xFF204080U), GXResultSuccess);
    }
    return bitmap;
}

struct Difference {
    double mean = 0;  ///< of all channels of all cells
    double worst = 0; ///< of one channel of a cell
};

/// Of the mean colours of cells of `cell` x `cell` pixels.
inline Difference Compare(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b, size_t width, size_t height,
                          size_t cell) {
    Difference result;
    size_t count = 0;
    for (size_t top = 0; top < height; top += cell) {
        for (size_t left = 0; left < width; left += cell) {
            double sum[3] = {};
            size_t pixels = 0;
            for (size_t y = top; y < std::min(top + cell, height); ++y) {
                for (size_t x = left; x < std::min(left + cell, width); ++x, ++pixels) {
                    for (int c = 0; c < 3; ++c) {
                        sum[c] += static_cast<int>(a[y * width + x] >> (8 * c) & 255U) -
                                  static_cast<int>(b[y * width + x] >> (8 * c) & 255U);
                    }
                }
            }
            for (const double s : sum) {
                const double d = std::fabs(s) / static_cast<double>(pixels);
                result.mean += d;
                result.worst = std::max(result.worst, d);
                ++count;
            }
        }
    }
    result.mean /= static_cast<double>(count);
    return result;
}

} // namespace PrintSupport
