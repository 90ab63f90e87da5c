// SPDX-License-Identifier: MIT
#include "GdipBitmap.h"

#include <string>

#include "../../Exception.h"
#include "../../Pixels/PixelFormat.h"
#include "../PixelTransfer.h"

namespace Graphics {
namespace {

/// One-bit and 8-bit grey images are treated as indexed, with an implied palette.
[[nodiscard]] GXPixelFormat AsIndexed(GXPixelFormat format) noexcept {
    switch (format) {
    case GXPixelFormatGray8:
        return GXPixelFormatIndexed8;
    case GXPixelFormatBlackWhite1:
        return GXPixelFormatIndexed1;
    default:
        return format;
    }
}

/// GDI+ requires rows that start at multiples of four bytes, with the first pixel in the first bit.
[[nodiscard]] bool CanShare(const PixelView& pixels) noexcept {
    return pixels.bitOffset == 0 && pixels.strideBytes > 0 && pixels.strideBytes % 4 == 0 &&
           pixels.strideBytes <= INT32_MAX && reinterpret_cast<uintptr_t>(pixels.data) % 4 == 0;
}

/// For other resolutions the file gets its format's default.
[[nodiscard]] bool CanBeSaved(float dpi) noexcept { return dpi >= 0.01F && dpi <= 1e6F; }

} // namespace

Gdiplus::PixelFormat GdipBitmap::FormatOf(GXPixelFormat format) noexcept {
    switch (format) {
    case GXPixelFormatBGR24:
        return PixelFormat24bppRGB;
    case GXPixelFormatPBGRA32:
        return PixelFormat32bppPARGB;
    case GXPixelFormatBGRA32:
        return PixelFormat32bppARGB;
    case GXPixelFormatBGRX32:
        return PixelFormat32bppRGB;
    case GXPixelFormatIndexed8:
        return PixelFormat8bppIndexed;
    case GXPixelFormatIndexed1:
        return PixelFormat1bppIndexed;
    default:
        return 0;
    }
}

GdipBitmap::GdipBitmap(const PixelView& pixels, float dpiX, float dpiY)
    : m_width(pixels.width), m_height(pixels.height) {
    const Gdiplus::PixelFormat same = FormatOf(AsIndexed(pixels.format));
    const bool share = same != 0 && CanShare(pixels);
    const Gdiplus::PixelFormat format = share ? same : PixelFormat32bppPARGB;
    bool made = g_gdip.createBitmapFromScan0(m_width, m_height, share ? static_cast<INT>(pixels.strideBytes) : 0,
                                             format, share ? pixels.data : nullptr, &m_bitmap) == Gdiplus::Ok;
    try {
        made = made &&
               (share ? !IsIndexedFormat(AsIndexed(pixels.format)) || SetPalette(pixels) : CopyConverted(pixels)) &&
               (!(CanBeSaved(dpiX) && CanBeSaved(dpiY)) ||
                g_gdip.bitmapSetResolution(m_bitmap, dpiX, dpiY) == Gdiplus::Ok);
        if (!made) {
            GX_RAISE("Graphics::GdipBitmap::GdipBitmap",
                     "Failed to create Gdiplus bitmap of size - width: {" + std::to_string(m_width) + "}; height: {" +
                         std::to_string(m_height) + "} and format {" + std::to_string(format) + "}");
        }
    } catch (...) {
        if (m_bitmap != nullptr) {
            g_gdip.disposeImage(m_bitmap);
        }
        throw;
    }
}

GdipBitmap::~GdipBitmap() { g_gdip.disposeImage(m_bitmap); }

bool GdipBitmap::SetPalette(const PixelView& pixels) {
    constexpr uint32_t kMost = 256;
    const uint32_t count = BitsPerPixel(pixels.format) == 1 ? 2 : kMost;
    // The colours of all indices by the engine's own rules, with or without a palette.
    uint8_t indices[kMost];
    for (uint32_t i = 0; i < kMost; ++i) {
        indices[i] = static_cast<uint8_t>(count == 2 ? 0x40 : i); // for two colours: the bits 0 and 1
    }
    PixelView format = pixels;
    if (!IsIndexedFormat(pixels.format)) {
        format.palette = nullptr;
    }
    struct { // layout of a ColorPalette, which ends with an array of colours
        uint32_t flags = 0;
        uint32_t count = 0;
        uint32_t colors[kMost];
    } palette;
    palette.count = count;
    PixelTransfer::LookUp(palette.colors, indices, 0, count, format);
    for (uint32_t i = 0; i < count; ++i) {
        palette.flags |= palette.colors[i] >> 24 != 255 ? static_cast<uint32_t>(Gdiplus::PaletteFlagsHasAlpha) : 0U;
    }
    return g_gdip.setImagePalette(m_bitmap, reinterpret_cast<const Gdiplus::ColorPalette*>(&palette)) == Gdiplus::Ok;
}

bool GdipBitmap::CopyConverted(const PixelView& pixels) {
    Gdiplus::BitmapData data{};
    const Gdiplus::GpRect all(0, 0, m_width, m_height);
    if (g_gdip.bitmapLockBits(m_bitmap, &all, Gdiplus::ImageLockModeWrite, PixelFormat32bppPARGB, &data) !=
        Gdiplus::Ok) {
        return false;
    }
    PixelView view;
    view.data = static_cast<uint8_t*>(data.Scan0);
    view.strideBytes = data.Stride;
    view.width = m_width;
    view.height = m_height;
    view.format = GXPixelFormatPBGRA32;
    PixelTransfer::Copy(view, pixels);
    return g_gdip.bitmapUnlockBits(m_bitmap, &data) == Gdiplus::Ok;
}

} // namespace Graphics
