// SPDX-License-Identifier: MIT
// What follows from a pixel format's number alone.
#pragma once

#include <cstddef>

#include "../Types.h"

namespace Graphics {

/// One past the largest format number.
inline constexpr uint32_t kPixelFormatCount = 11;

[[nodiscard]] constexpr bool IsValidFormat(GXPixelFormat format) noexcept {
    return format > GXPixelFormatUnknown && format < kPixelFormatCount;
}

/// 1, 8, 24 or 32; -1 for a number that is no format.
[[nodiscard]] constexpr int32_t BitsPerPixel(GXPixelFormat format) noexcept {
    constexpr int8_t kBits[kPixelFormatCount] = {-1, 24, 32, 32, 32, 8, 8, 8, 1, 1, 1};
    return format < kPixelFormatCount ? kBits[format] : -1;
}

[[nodiscard]] constexpr bool IsIndexedFormat(GXPixelFormat format) noexcept {
    return format == GXPixelFormatIndexed8 || format == GXPixelFormatIndexed1;
}

/// Bytes that hold `width` pixels starting at a byte. `format` is valid and `width` not negative.
[[nodiscard]] constexpr size_t RowBytes(GXPixelFormat format, int32_t width) noexcept {
    return (static_cast<size_t>(width) * static_cast<size_t>(BitsPerPixel(format)) + 7) / 8;
}

} // namespace Graphics
