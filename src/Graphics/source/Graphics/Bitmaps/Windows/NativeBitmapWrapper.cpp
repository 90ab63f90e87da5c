// SPDX-License-Identifier: MIT
#include "NativeBitmapWrapper.h"

#include <cstring>
#include <vector>

#include "../../Exception.h"
#include "../../Pixels/PixelFormat.h"
#include "../../ProcessHeap.h"
#include "../../Windows/DibSection.h"
#include "../../Windows/SwBitmapInfo.h"
#include "../Bitmap.h"
#include "../NativeBitmap.h"
#include "../PixelTransfer.h"

namespace Graphics {
namespace {

[[noreturn]] void FailedToLoad() { GX_RAISE("Graphics::SwNativeBitmapWrapper::Load", "Failed to load"); }

[[nodiscard]] GXPixelFormat FormatOf(uint32_t bits) noexcept {
    switch (bits) {
    case 1:
        return GXPixelFormatIndexed1;
    case 8:
        return GXPixelFormatIndexed8;
    case 24:
        return GXPixelFormatBGR24;
    default:
        return GXPixelFormatBGRX32; // GDI converts other depths
    }
}

[[nodiscard]] bool HasAlpha(const uint8_t* pixels, size_t count) noexcept {
    bool partial = false;
    for (const uint8_t* p = pixels; count > 0; --count, p += 4) {
        if (p[0] > p[3] || p[1] > p[3] || p[2] > p[3]) {
            return false;
        }
        partial |= p[3] != 0 && p[3] != 255;
    }
    return partial;
}

} // namespace

GdiBitmap NativeBitmapWrapper::CreateBitmap(const Bitmap& bitmap) {
    const PixelView source = bitmap.View();
    DibSection section("Graphics::SwNativeBitmapWrapper::CreateBitmap", source.width, source.height, bitmap.DpiX(),
                       bitmap.DpiY());
    PixelTransfer::Copy(section.View(GXPixelFormatPBGRA32), source);
    return GdiBitmap(section.Release());
}

std::shared_ptr<Bitmap> NativeBitmapWrapper::Load(HBITMAP native) {
    DIBSECTION description{};
    const int known = g_system.getObject(native, sizeof description, &description);
    if (known < static_cast<int>(sizeof(BITMAP)) || g_system.getObjectType(native) != OBJ_BITMAP) {
        FailedToLoad();
    }
    const BITMAP& bitmap = description.dsBm;
    const bool isSection = known == static_cast<int>(sizeof description);
    const auto bits = static_cast<uint32_t>(bitmap.bmBitsPixel) * bitmap.bmPlanes;
    GXPixelFormat format = FormatOf(bits);
    const auto depth = static_cast<uint32_t>(BitsPerPixel(format));
    if (bitmap.bmWidth <= 0 || bitmap.bmHeight <= 0 || bitmap.bmWidth > INT32_MAX / 32) {
        FailedToLoad();
    }

    // Rows of a GDI bitmap are padded to multiples of four bytes.
    const size_t stride = (static_cast<size_t>(bitmap.bmWidth) * depth + 31) / 32 * 4;
    if (stride > static_cast<size_t>(INT32_MAX) / static_cast<size_t>(bitmap.bmHeight)) {
        FailedToLoad();
    }
    HeapArray<uint8_t> pixels;
    pixels.resize(stride * static_cast<size_t>(bitmap.bmHeight));
    SwBitmapInfo info(bitmap.bmWidth, bitmap.bmHeight, depth);
    const DCHandle context = DCHandle::Compatible(nullptr);
    if (!context || g_system.getDIBits(context.Get(), native, 0, static_cast<UINT>(bitmap.bmHeight), pixels.data(),
                                       info.Get(), DIB_RGB_COLORS) != bitmap.bmHeight) {
        FailedToLoad();
    }

    if (bits == 32 && HasAlpha(pixels.data(), pixels.size() / 4)) {
        format = GXPixelFormatPBGRA32;
    }
    const auto dpi = [&](LONG perMetre) { return isSection ? SwBitmapInfo::PerInch(perMetre, 96.0F) : 96.0F; };
    auto loaded = Bitmap::Create({static_cast<uint32_t>(bitmap.bmWidth), static_cast<uint32_t>(bitmap.bmHeight), format,
                                  dpi(description.dsBmih.biXPelsPerMeter), dpi(description.dsBmih.biYPelsPerMeter)});
    const PixelView view = loaded->View();
    for (int32_t y = 0; y < view.height; ++y) {
        std::memcpy(view.data + y * view.strideBytes, pixels.data() + static_cast<size_t>(y) * stride,
                    RowBytes(format, view.width));
    }
    if (IsIndexedFormat(format)) {
        std::vector<uint32_t> colors;
        for (size_t i = 0; i < size_t{1} << depth; ++i) {
            const RGBQUAD& c = info.colors[i];
            colors.push_back(0xFF000000U | static_cast<uint32_t>(c.rgbRed << 16 | c.rgbGreen << 8 | c.rgbBlue));
        }
        loaded->SetPalette(std::make_shared<Palette>(colors.data(), colors.size()));
    }
    return loaded;
}

std::shared_ptr<Bitmap> BitmapFromNative(void* nativeBitmap) {
    return NativeBitmapWrapper::Load(static_cast<HBITMAP>(nativeBitmap));
}

void* BitmapToNative(const Bitmap& bitmap) { return NativeBitmapWrapper::CreateBitmap(bitmap).Release(); }

} // namespace Graphics
