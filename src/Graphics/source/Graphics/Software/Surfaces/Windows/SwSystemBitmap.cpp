// SPDX-License-Identifier: MIT
#include "SwSystemBitmap.h"

#include <cstring>

#include "../../../Exception.h"

namespace Graphics {

SwSystemBitmap::SwSystemBitmap(HDC like, int64_t width, int64_t height, float dpiX, float dpiY)
    : m_context(DCHandle::Compatible(like)) {
    if (!m_context) {
        GX_RAISE("Graphics::SwSystemBitmap::SwSystemBitmap", "CreateCompatibleDC is failed.");
    }
    m_bitmap = CreateNativeBitmap(width, height, dpiX, dpiY);
    m_selection.emplace(m_context.Get(), m_bitmap.Get());
    if (!*m_selection) {
        GX_RAISE("Graphics::SwSystemBitmap::SwSystemBitmap", "SelectObject is failed.");
    }
    MakeWhite();
}

DibSection SwSystemBitmap::CreateNativeBitmap(int64_t width, int64_t height, float dpiX, float dpiY) {
    static constexpr const char* kFunction = "Graphics::SwSystemBitmap::CreateNativeBitmap";
    if (width <= 0 || height <= 0) {
        GX_RAISE(kFunction, "Invalid bitmap dimensions");
    }
    // The limit of the engine's own bitmaps: less than 2 GiB. Neither factor exceeds 32 bits.
    if (width > INT32_MAX / 4 || height > INT32_MAX / (width * 4)) {
        GX_RAISE(kFunction, "Bitmap is too big");
    }
    return {kFunction, static_cast<int32_t>(width), static_cast<int32_t>(height), dpiX, dpiY};
}

void SwSystemBitmap::MakeWhite() noexcept {
    const PixelView view = View();
    std::memset(view.data, 255, static_cast<size_t>(view.strideBytes) * static_cast<size_t>(view.height));
}

} // namespace Graphics
