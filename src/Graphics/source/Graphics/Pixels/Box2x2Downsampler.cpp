// SPDX-License-Identifier: MIT
#include "Box2x2Downsampler.h"

#include <algorithm>
#include <cstring>

#include "../Exception.h"

namespace Graphics {
namespace {

template <class T> [[nodiscard]] T Load(const uint8_t* p) noexcept {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

// Channels two bytes apart share a word: four bytes plus the rounding term stay below 2^10, so none carries into
// another.
constexpr uint64_t kEven = 0x00FF00FF00FF00FFU;

/// Means of the two whole blocks in eight bytes of two rows; for 32-bit pixels this is one result.
[[nodiscard]] uint32_t Mean32(uint64_t top, uint64_t bottom) noexcept {
    const uint64_t even = (top & kEven) + (bottom & kEven);
    const uint64_t odd = (top >> 8 & kEven) + (bottom >> 8 & kEven);
    const auto evenSum = static_cast<uint32_t>(even) + static_cast<uint32_t>(even >> 32) + 0x00020002U;
    const auto oddSum = static_cast<uint32_t>(odd) + static_cast<uint32_t>(odd >> 32) + 0x00020002U;
    return (evenSum >> 2 & 0x00FF00FFU) | (oddSum << 6 & 0xFF00FF00U);
}

/// `whole` blocks of two columns, then a single column if `lone`. A missing row is passed as the first one again, and a
/// missing column counts as its neighbour: (2 a + 2 b + 2) / 4 is the rounded mean of the two existing pixels.
void Row32(uint8_t* dst, const uint8_t* top, const uint8_t* bottom, size_t whole, bool lone) noexcept {
    for (size_t i = 0; i < whole; ++i) {
        const uint32_t mean = Mean32(Load<uint64_t>(top + i * 8), Load<uint64_t>(bottom + i * 8));
        std::memcpy(dst + i * 4, &mean, 4);
    }
    if (lone) {
        const uint64_t t = Load<uint32_t>(top + whole * 8);
        const uint64_t b = Load<uint32_t>(bottom + whole * 8);
        const uint32_t mean = Mean32(t << 32 | t, b << 32 | b);
        std::memcpy(dst + whole * 4, &mean, 4);
    }
}

void Row8(uint8_t* dst, const uint8_t* top, const uint8_t* bottom, size_t whole, bool lone) noexcept {
    // Pairs as 16-bit words: the low byte is one column, the high byte the other.
    for (size_t i = 0; i < whole; ++i) {
        const uint32_t t = Load<uint16_t>(top + i * 2);
        const uint32_t b = Load<uint16_t>(bottom + i * 2);
        dst[i] = static_cast<uint8_t>(((t & 255U) + (t >> 8) + (b & 255U) + (b >> 8) + 2) >> 2);
    }
    if (lone) {
        dst[whole] = static_cast<uint8_t>((2U * top[whole * 2] + 2U * bottom[whole * 2] + 2) >> 2);
    }
}

} // namespace

void Box2x2Downsampler::Downsample(const PixelView& dst, const PixelView& src) {
    if (!Accepts(src.format) || dst.format != src.format) {
        GX_RAISE("Graphics::Box2x2Downsampler::Downsample", "Bad format for downsampling");
    }
    const int32_t width = std::min(dst.width, Half(src.width));
    const int32_t height = std::min(dst.height, Half(src.height));
    if (width <= 0 || height <= 0) {
        return;
    }
    const int32_t whole = std::min(width, src.width / 2);
    const auto row = src.format == GXPixelFormatPBGRA32 ? Row32 : Row8;
    for (int32_t y = 0; y < height; ++y) {
        const uint8_t* top = src.data + static_cast<ptrdiff_t>(y) * 2 * src.strideBytes;
        const uint8_t* bottom = static_cast<int64_t>(y) * 2 + 1 < src.height ? top + src.strideBytes : top;
        row(dst.data + static_cast<ptrdiff_t>(y) * dst.strideBytes, top, bottom, static_cast<size_t>(whole),
            whole < width);
    }
}

} // namespace Graphics
