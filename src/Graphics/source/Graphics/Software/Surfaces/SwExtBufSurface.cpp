// SPDX-License-Identifier: MIT
#include "SwExtBufSurface.h"

#include <cmath>
#include <cstring>

#include "../../Exception.h"
#include "../../Pixels/PixelFormat.h"

namespace Graphics {
namespace {

/// True for a float that is an integer from 1 to 2^31 - 1.
[[nodiscard]] bool IsCount(float v) noexcept { return v >= 1.0F && v < 2147483648.0F && std::trunc(v) == v; }

constexpr const char* kFunction = "Graphics::SwExtBufSurface::SwExtBufSurface";

} // namespace

SwExtBufSurface::SwExtBufSurface(void* pixels, GXPixelFormat format, const GXExtBufLayout& layout) {
    if (format < GXPixelFormatBGR24 || format > GXPixelFormatBlackWhite1) {
        GX_RAISE(kFunction, "Unsupported pixel format.");
    }
    if (!IsCount(layout.width) || !IsCount(layout.height)) {
        GX_RAISE(kFunction, "Invalid bitmap dimensions");
    }
    const auto width = static_cast<int64_t>(layout.width);
    const auto height = static_cast<int64_t>(layout.height);
    const int64_t bits = BitsPerPixel(format);
    // The limit of the library's own bitmaps: a row's bits fit in 31 bits.
    if (width > 2147483640 / bits) {
        GX_RAISE(kFunction, "Bitmap is too big");
    }
    if (!IsCount(layout.stride) || static_cast<int64_t>(layout.stride) < (width * bits + 7) / 8) {
        GX_RAISE(kFunction, "Invalid stride");
    }
    m_view.data = static_cast<uint8_t*>(pixels);
    m_view.strideBytes = static_cast<ptrdiff_t>(layout.stride);
    m_view.width = static_cast<int32_t>(width);
    m_view.height = static_cast<int32_t>(height);
    m_view.format = format;
}

Size SwExtBufSurface::GetSize() const {
    return {static_cast<uint32_t>(m_view.width), static_cast<uint32_t>(m_view.height)};
}

bool SwExtBufSurface::IsAligned() const noexcept {
    return BitsPerPixel(m_view.format) != 32 ||
           (reinterpret_cast<uintptr_t>(m_view.data) % 4 == 0 && m_view.strideBytes % 4 == 0);
}

PixelView SwExtBufSurface::BeginPaint() {
    if (IsAligned()) {
        return m_view;
    }
    const size_t rowBytes = static_cast<size_t>(m_view.width) * 4;
    m_aligned.resize(rowBytes * static_cast<size_t>(m_view.height));
    PixelView view = m_view;
    view.data = m_aligned.data();
    view.strideBytes = static_cast<ptrdiff_t>(rowBytes);
    for (int32_t y = 0; y < m_view.height; ++y) {
        std::memcpy(view.data + y * view.strideBytes, m_view.data + y * m_view.strideBytes, rowBytes);
    }
    return view;
}

void SwExtBufSurface::EndPaint() {
    const size_t rowBytes = static_cast<size_t>(m_view.width) * 4;
    for (int32_t y = 0; !m_aligned.empty() && y < m_view.height; ++y) {
        std::memcpy(m_view.data + y * m_view.strideBytes, m_aligned.data() + static_cast<size_t>(y) * rowBytes,
                    rowBytes);
    }
    m_aligned = HeapArray<uint8_t>();
}

} // namespace Graphics
