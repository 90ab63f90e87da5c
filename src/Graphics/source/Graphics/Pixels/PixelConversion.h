// SPDX-License-Identifier: MIT
// Conversion of pixel rows between formats: a table of row functions by source and destination format, one table for
// each instruction set. All sets give the same bits.
#pragma once

#include <cstddef>

#include "../Simd/KernelTable.h"
#include "PixelFormat.h"

namespace Graphics {

/// Converts `count` pixels, any alignment. In one-bit formats the first pixel is bit `srcBit` or `dstBit` (0 to 7,
/// counted from the most significant bit) of the first byte, and only the bits of the row's own pixels are written;
/// other formats ignore the offsets. Rows may be the same where both formats have the same width; rows that overlap
/// otherwise are read and written pixel by pixel from the left.
using RowConverter = void (*)(uint8_t* dst, uint32_t dstBit, const uint8_t* src, uint32_t srcBit, size_t count);

struct ConversionKernels {
    /// [source][destination]; null where the set has no row of its own, and at Unknown.
    RowConverter rows[kPixelFormatCount][kPixelFormatCount];
};
GX_DECLARE_KERNEL_TABLES(ConversionKernels, kConversions)

class PixelConversion {
public:
    /// A set's converter, or the plain one; null when a format is outside 1..10. A pair that does not convert has a
    /// converter that raises "Bad format conversion".
    [[nodiscard]] static RowConverter
    Find(GXPixelFormat from, GXPixelFormat to,
         const ConversionKernels& kernels = KernelTable<ConversionKernels>::Active()) noexcept;

    /// Whether the pair has a converter that converts.
    [[nodiscard]] static bool Converts(GXPixelFormat from, GXPixelFormat to) noexcept;

    /// Copies bits between one-bit rows whatever their formats are.
    static void CopyBits(uint8_t* dst, uint32_t dstBit, const uint8_t* src, uint32_t srcBit, size_t count) noexcept;
};

} // namespace Graphics
