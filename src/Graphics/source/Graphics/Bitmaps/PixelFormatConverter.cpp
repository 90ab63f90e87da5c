// SPDX-License-Identifier: MIT
#include "PixelFormatConverter.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "../Exception.h"
#include "../Pixels/PixelFormat.h"
#include "../ProcessHeap.h"
#include "PixelTransfer.h"

namespace Graphics {

PixelFormatConverter::PixelFormatConverter(std::shared_ptr<const BitmapBase> base, GXPixelFormat format)
    : m_base(std::move(base)), m_format(format) {
    if (!IsValidFormat(format)) {
        GX_RAISE("Graphics::PixelFormatConverter::PixelFormatConverter", "Unsupported pixel format.");
    }
}

std::shared_ptr<const Palette> PixelFormatConverter::GetPalette() const {
    return m_format == m_base->Format() ? m_base->GetPalette() : nullptr;
}

void PixelFormatConverter::CopyToMemory(const IntRect* rect, const GXBitmapData& destination) const {
    const PixelView whole = m_base->View();
    const IntRect clipped = Clip(rect, whole.width, whole.height);
    if (IsEmpty(clipped)) {
        return;
    }
    PixelView from = PixelTransfer::Part(whole, clipped);
    const int32_t rows = from.height;
    from.height = 1;

    // Rows pass through a buffer, because the destination may hold only part of one.
    HeapArray<uint8_t> row;
    row.resize(RowBytes(m_format, from.width));
    row.data()[row.size() - 1] = 0; // the unused bits of a one-bit row's last byte
    PixelView to;
    to.data = row.data();
    to.width = from.width;
    to.height = 1;
    to.format = m_format;
    if (m_format == whole.format) {
        to.palette = whole.palette;
        to.paletteCount = whole.paletteCount;
    }
    const size_t bytes = std::min(row.size(), static_cast<size_t>(destination.rowLength));
    for (int32_t y = 0; y < rows; ++y) {
        PixelTransfer::Copy(to, from);
        std::memcpy(static_cast<uint8_t*>(destination.data) + static_cast<size_t>(y) * destination.stride, row.data(),
                    bytes);
        from.data += from.strideBytes;
    }
}

} // namespace Graphics
