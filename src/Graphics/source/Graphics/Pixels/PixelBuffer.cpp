// SPDX-License-Identifier: MIT
#include "PixelBuffer.h"

#include "../Exception.h"
#include "../ProcessHeap.h"

namespace Graphics {

PixelBuffer::PixelBuffer(int32_t width, int32_t height, uint32_t bitsPerPixel, bool zeroed)
    : m_bitsPerPixel(bitsPerPixel) {
    // 64 bits, because the magnitude of the smallest int32_t does not fit in one.
    const int64_t w = width < 0 ? -static_cast<int64_t>(width) : width;
    const int64_t h = height < 0 ? -static_cast<int64_t>(height) : height;
    if (w == 0 || h == 0) {
        GX_RAISE("Graphics::PixelBuffer::PixelBuffer", "Invalid bitmap dimensions");
    }
    // A row's bit count, rounded up to bytes, and the whole block both stay below 2^31.
    const int64_t stride = ((w * bitsPerPixel + 7) / 8 + 15) / 16 * 16;
    if (w > 2147483640 / static_cast<int64_t>(bitsPerPixel) || h > 2147483647 / stride) {
        GX_RAISE("Graphics::PixelBuffer::PixelBuffer", "Bitmap is too big");
    }
    const auto bytes = static_cast<size_t>(stride * h);
    void* data = zeroed ? ProcessHeap::AllocZeroed(bytes) : ProcessHeap::AllocAligned(bytes);
    m_data = static_cast<uint8_t*>(data);
    m_width = static_cast<int32_t>(w);
    m_height = static_cast<int32_t>(h);
    m_strideBytes = static_cast<uint32_t>(stride);
}

PixelBuffer::~PixelBuffer() { ProcessHeap::FreeAligned(m_data, ByteCount()); }

} // namespace Graphics
