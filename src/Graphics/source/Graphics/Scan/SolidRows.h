// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

namespace Graphics {

/// Rows that coverage is painted into in one premultiplied colour and the Normal mode.
struct SolidRows {
    /// The limit for runs between a shape's edges, which may lie elsewhere in the next row: from this count of pixels on
    /// the next row's are prefetched.
    static constexpr size_t kPrefetchRun = 256;

    uint32_t* pixels; ///< the first pixel of the first row
    ptrdiff_t strideBytes;
    ptrdiff_t ahead; ///< bytes from a shape's edge to where pixels are prefetched; 0: nowhere
    uint32_t color;
};

} // namespace Graphics
