// SPDX-License-Identifier: MIT
#include "PixelTransfer.h"

#include <algorithm>
#include <cstring>

#include "../Pixels/PixelConversion.h"

namespace Graphics {
namespace {

/// Pixels per chunk in conversions of two steps; a multiple of 8, which preserves bit offsets.
constexpr size_t kChunk = 256;

[[nodiscard]] bool SamePixels(const PixelView& a, const PixelView& b) noexcept {
    if (a.format != b.format) {
        return false;
    }
    if (!IsIndexedFormat(a.format) || (a.palette == b.palette && a.paletteCount == b.paletteCount)) {
        return true;
    }
    return a.palette != nullptr && b.palette != nullptr && a.paletteCount == b.paletteCount &&
           std::equal(a.palette, a.palette + a.paletteCount, b.palette);
}

/// Copies the bits of a row, also within the same row: chunks are read as a whole before they are written, and
/// processed from the end if the destination lies behind the source, as memmove does.
void MoveBits(uint8_t* dst, uint32_t dstBit, const uint8_t* src, uint32_t srcBit, size_t count, bool fromEnd) noexcept {
    uint8_t piece[kChunk / 8 + 1];
    const size_t pieces = (count + kChunk - 1) / kChunk;
    for (size_t k = 0; k < pieces; ++k) {
        const size_t first = (fromEnd ? pieces - 1 - k : k) * kChunk;
        const size_t n = std::min(kChunk, count - first);
        std::memcpy(piece, src + first / 8, (srcBit + n + 7) / 8);
        PixelConversion::CopyBits(dst + first / 8, dstBit, piece, srcBit, n);
    }
}

void CopySame(const PixelView& dst, const PixelView& src, int32_t width, int32_t height) noexcept {
    const bool oneBit = BitsPerPixel(src.format) == 1;
    const bool behind = reinterpret_cast<uintptr_t>(dst.data) > reinterpret_cast<uintptr_t>(src.data) ||
                        (dst.data == src.data && dst.bitOffset > src.bitOffset);
    const bool upwards = behind == (dst.strideBytes > 0);
    for (int32_t k = 0; k < height; ++k) {
        const ptrdiff_t y = upwards ? height - 1 - k : k;
        uint8_t* d = dst.data + y * dst.strideBytes;
        const uint8_t* s = src.data + y * src.strideBytes;
        if (oneBit) {
            MoveBits(d, dst.bitOffset, s, src.bitOffset, static_cast<size_t>(width), behind);
        } else {
            std::memmove(d, s, RowBytes(src.format, width));
        }
    }
}

/// Writes straight colours in any format.
class StraightWriter {
public:
    explicit StraightWriter(GXPixelFormat format) noexcept
        : m_direct(PixelConversion::Converts(GXPixelFormatBGRA32, format)),
          m_premultiply(PixelConversion::Find(GXPixelFormatBGRA32, GXPixelFormatPBGRA32)),
          m_write(PixelConversion::Find(m_direct ? GXPixelFormatBGRA32 : GXPixelFormatPBGRA32, format)) {}

    /// At most kChunk pixels; `colors` may be overwritten with premultiplied colours.
    void operator()(uint8_t* dst, uint32_t dstBit, uint32_t* colors, size_t count) const {
        auto* bytes = reinterpret_cast<uint8_t*>(colors);
        if (!m_direct) {
            m_premultiply(bytes, 0, bytes, 0, count);
        }
        m_write(dst, dstBit, bytes, 0, count);
    }

private:
    bool m_direct;
    RowConverter m_premultiply;
    RowConverter m_write;
};

void CopyIndexed(const PixelView& dst, const PixelView& src, int32_t width, int32_t height) {
    const StraightWriter write(dst.format);
    const auto srcBits = static_cast<size_t>(BitsPerPixel(src.format));
    const auto dstBits = static_cast<size_t>(BitsPerPixel(dst.format));
    uint32_t colors[kChunk];
    for (int32_t y = 0; y < height; ++y) {
        for (size_t x = 0; x < static_cast<size_t>(width); x += kChunk) {
            const size_t n = std::min(kChunk, static_cast<size_t>(width) - x);
            PixelTransfer::LookUp(colors, src.data + y * src.strideBytes + x * srcBits / 8, src.bitOffset, n, src);
            write(dst.data + y * dst.strideBytes + x * dstBits / 8, dst.bitOffset, colors, n);
        }
    }
}

} // namespace

void PixelTransfer::LookUp(uint32_t* colors, const uint8_t* src, uint32_t srcBit, size_t count,
                           const PixelView& format) noexcept {
    const bool oneBit = BitsPerPixel(format.format) == 1;
    for (size_t i = 0; i < count; ++i) {
        const size_t bit = srcBit + i;
        const uint32_t index = oneBit ? src[bit >> 3] >> (7 - (bit & 7)) & 1U : src[i];
        if (format.palette == nullptr) {
            colors[i] = 0xFF000000U | (oneBit ? index * 0xFFFFFFU : index * 0x010101U);
        } else {
            colors[i] = index < format.paletteCount ? format.palette[index] : 0xFF000000U;
        }
    }
}

PixelView PixelTransfer::Part(const PixelView& view, const IntRect& rect) noexcept {
    const size_t bit = view.bitOffset + static_cast<size_t>(rect.left) * static_cast<size_t>(BitsPerPixel(view.format));
    PixelView part = view;
    part.data = view.data + rect.top * view.strideBytes + static_cast<ptrdiff_t>(bit >> 3);
    part.bitOffset = static_cast<uint32_t>(bit & 7);
    part.width = rect.right - rect.left;
    part.height = rect.bottom - rect.top;
    part.ownsGaps = false; // they belong to the whole view
    return part;
}

void PixelTransfer::Copy(const PixelView& dst, const PixelView& src) {
    const int32_t width = std::min(dst.width, src.width);
    const int32_t height = std::min(dst.height, src.height);
    if (width <= 0 || height <= 0) {
        return;
    }
    if (SamePixels(dst, src)) {
        CopySame(dst, src, width, height);
    } else if (IsIndexedFormat(src.format)) {
        CopyIndexed(dst, src, width, height);
    } else {
        const RowConverter convert = PixelConversion::Find(src.format, dst.format);
        for (int32_t y = 0; y < height; ++y) {
            convert(dst.data + y * dst.strideBytes, dst.bitOffset, src.data + y * src.strideBytes, src.bitOffset,
                    static_cast<size_t>(width));
        }
    }
}

void PixelTransfer::Fill(const PixelView& dst, uint32_t argb) {
    if (dst.width <= 0 || dst.height <= 0) {
        return;
    }
    // Converts the first chunk of one row and copies everything else from it.
    const StraightWriter write(dst.format);
    uint32_t colors[kChunk];
    std::fill(colors, colors + kChunk, argb);
    uint8_t pattern[kChunk * 4];
    write(pattern, 0, colors, kChunk);
    const auto bits = static_cast<size_t>(BitsPerPixel(dst.format));
    for (int32_t y = 0; y < dst.height; ++y) {
        uint8_t* row = dst.data + y * dst.strideBytes;
        for (size_t x = 0; x < static_cast<size_t>(dst.width); x += kChunk) {
            const size_t n = std::min(kChunk, static_cast<size_t>(dst.width) - x);
            if (bits == 1) {
                PixelConversion::CopyBits(row + x / 8, dst.bitOffset, pattern, 0, n);
            } else {
                std::memcpy(row + x * bits / 8, pattern, n * bits / 8);
            }
        }
    }
}

} // namespace Graphics
