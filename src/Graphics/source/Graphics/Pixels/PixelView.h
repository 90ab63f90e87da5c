// SPDX-License-Identifier: MIT
// A rectangle of pixels in memory owned by the caller.
#pragma once

#include <cstddef>

#include "../Types.h"

namespace Graphics {

/// Rows run top-down, `strideBytes` apart (any number, also negative). In one-bit formats the leftmost pixel of a byte
/// is its most significant bit, and the first pixel is bit `bitOffset` (0 to 7, counted from that end) of `data`.
/// `palette` has `paletteCount` straight ARGB colours, or is null.
struct PixelView {
    uint8_t* data = nullptr;
    ptrdiff_t strideBytes = 0;
    int32_t width = 0;
    int32_t height = 0;
    GXPixelFormat format = GXPixelFormatUnknown;
    uint32_t bitOffset = 0;
    const uint32_t* palette = nullptr;
    size_t paletteCount = 0;
    bool ownsGaps = false; ///< bytes between the rows may be written
};

} // namespace Graphics
