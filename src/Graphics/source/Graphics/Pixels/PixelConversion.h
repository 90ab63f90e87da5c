// SPDX-License-Identifier: MIT
// Conversion of pixel rows between formats: a table of row functions by source and destination format, one table for
// each instruction set. All sets give the same bits.
#pragma once

#include <cstddef>

#include "../Simd/KernelTable.h"
#include "PixelFormat.h"

namespace Graphics {

/// Converts `count` pixels, any alignment. In one-bit formats the first pixel is bit `srcBit` or `dstBit` (0 to 7,
/// counted from the most significant bit) of the first byte, and only the row's own bits are written; other formats
/// ignore the offsets. Both rows may be the same if both formats have the same width; rows that overlap otherwise are
/// processed pixel by pixel from the left.
using RowConverter = void (*)(uint8_t* dst, uint32_t dstBit, const uint8_t* src, uint32_t srcBit, size_t count);

struct ConversionKernels {
    /// [source][destination]; null at Unknown, and for pairs that the set does not vectorise.
    RowConverter rows[kPixelFormatCount][kPixelFormatCount];
};
GX_DECLARE_KERNEL_TABLES(ConversionKernels, kConversions)

class PixelConversion {
public:
    /// The set's converter, or else the scalar one; null if a format is outside 1..10. For a pair that cannot be
    /// converted, the converter raises "Bad format conversion".
    [[nodiscard]] static RowConverter
    Find(GXPixelFormat from, GXPixelFormat to,
         const ConversionKernels& kernels = KernelTable<ConversionKernels>::Active()) noexcept;

    /// Whether the pair can be converted.
    [[nodiscard]] static bool Converts(GXPixelFormat from, GXPixelFormat to) noexcept;

    /// Copies bits between one-bit rows, whatever their formats.
    static void CopyBits(uint8_t* dst, uint32_t dstBit, const uint8_t* src, uint32_t srcBit, size_t count) noexcept;
};

} // namespace Graphics
