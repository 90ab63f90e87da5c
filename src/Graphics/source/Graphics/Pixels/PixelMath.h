// SPDX-License-Identifier: MIT
// 8-bit operations on one ARGB word, two 16-bit lanes at a time. They have internal linkage because this header is also
// compiled with the flags of wider instruction sets: the linker must not use such a copy for the rest of the program.
#pragma once

#include <cstdint>

namespace Graphics {

/// Every channel times factor / 256; 256 leaves the pixel.
[[nodiscard]] static inline uint32_t ScalePixel(uint32_t c, uint32_t factor) noexcept {
    const uint32_t rb = ((c & 0x00FF00FFU) * factor >> 8) & 0x00FF00FFU;
    const uint32_t ag = ((c >> 8) & 0x00FF00FFU) * factor & 0xFF00FF00U;
    return ag | rb;
}

/// c over d, premultiplied: d * (256 - alpha of c) / 256 + c; c if d is transparent.
[[nodiscard]] static inline uint32_t OverPixel(uint32_t d, uint32_t c) noexcept {
    return d >> 24 == 0 ? c : ScalePixel(d, 256 - (c >> 24)) + c;
}

/// Red, green and blue times (alpha + 1) / 256; alpha is kept. Opaque pixels do not change.
[[nodiscard]] static inline uint32_t PremultiplyPixel(uint32_t c) noexcept {
    return (c & 0xFF000000U) | (ScalePixel(c, (c >> 24) + 1) & 0x00FFFFFFU);
}

/// Straight colours of a premultiplied pixel: min(c, a) * 255 / a, truncated; a pixel of alpha 0 does not change.
[[nodiscard]] static inline uint32_t UnpremultiplyPixel(uint32_t x) noexcept {
    const uint32_t a = x >> 24;
    if (a == 0 || a == 255) {
        return x;
    }
    const auto straight = [=](int shift) {
        const uint32_t c = x >> shift & 255U;
        return (c < a ? c : a) * 255U / a << shift;
    };
    return (x & 0xFF000000U) | straight(16) | straight(8) | straight(0);
}

} // namespace Graphics
