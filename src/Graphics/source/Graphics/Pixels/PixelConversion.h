// SPDX-License-Identifier: MIT
// Conversion of pixel rows between formats: a table of row functions by source and destination format, one table for
// each instruction set. All sets give the same bits.
#pragma once

#include <cstddef>

#include "PixelFormat.h"

namespace Graphics {

/// Converts `count` pixels, any alignment. In one-bit formats the first pixel is bit `srcBit` or `dstBit` (0 to 7,
/// counted from the most significant bit) of the first byte, and only the bits of the row's own pixels are written;
/// other formats ignore the offsets. Rows may be the same where both formats have the same width; rows that overlap
/// otherwise are read and written pixel by pixel from the left.
using RowConverter = void (*)(uint8_t* dst, uint32_t dstBit, const uint8_t* src, uint32_t srcBit, size_t count);

struct ConversionTable {
    const char* name;                                        ///< "scalar", "sse2" or "avx2"
    RowConverter rows[kPixelFormatCount][kPixelFormatCount]; ///< [source][destination]; null at Unknown
};

class PixelConversion {
public:
    /// The converter of the best set; null when a format is outside 1..10. A pair that does not convert has a converter
    /// that raises "Bad format conversion".
    [[nodiscard]] static RowConverter Find(GXPixelFormat from, GXPixelFormat to) noexcept;

    /// Whether the pair has a converter that converts.
    [[nodiscard]] static bool Converts(GXPixelFormat from, GXPixelFormat to) noexcept;

    /// Copies bits between one-bit rows whatever their formats are.
    static void CopyBits(uint8_t* dst, uint32_t dstBit, const uint8_t* src, uint32_t srcBit, size_t count) noexcept;

    /// Tables by number: 0 scalar, 1 SSE2, 2 AVX2; null where the processor or the build lacks the set.
    [[nodiscard]] static const ConversionTable* Set(int index) noexcept;
};

} // namespace Graphics
