// SPDX-License-Identifier: MIT
// Properties that follow from a pixel format's number.
#pragma once

#include <cstddef>

#include "../Types.h"

namespace Graphics {

/// One past the largest format number.
inline constexpr uint32_t kPixelFormatCount = 11;

[[nodiscard]] constexpr bool IsValidFormat(GXPixelFormat format) noexcept {
    return format > GXPixelFormatUnknown && format < kPixelFormatCount;
}

/// 1, 8, 24 or 32; -1 for an invalid number.
[[nodiscard]] constexpr int32_t BitsPerPixel(GXPixelFormat format) noexcept {
    constexpr int8_t kBits[kPixelFormatCount] = {-1, 24, 32, 32, 32, 8, 8, 8, 1, 1, 1};
    return format < kPixelFormatCount ? kBits[format] : -1;
}

[[nodiscard]] constexpr bool IsIndexedFormat(GXPixelFormat format) noexcept {
    return format == GXPixelFormatIndexed8 || format == GXPixelFormatIndexed1;
}

/// The bytes of `width` pixels that start at a byte. `format` is valid and `width` is not negative.
[[nodiscard]] constexpr size_t RowBytes(GXPixelFormat format, int32_t width) noexcept {
    return (static_cast<size_t>(width) * static_cast<size_t>(BitsPerPixel(format)) + 7) / 8;
}

} // namespace Graphics
