// SPDX-License-Identifier: MIT
// The row kernels of the software renderer: one table for each instruction set; the best one is chosen once.
//
// Pixels are 32-bit premultiplied ARGB words; shape and mask values are bytes, 255 full. Scaling by a byte v is
// (channel * (v + 1)) >> 8, by its complement (channel * (256 - v)) >> 8. Every entry accepts any count from 0 and any
// alignment, accesses nothing outside its rows, and gives the same bits in every set. A null `shape` means 255
// throughout. `dst` does not overlap `src`, `shape` or `mask` unless the entry allows it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "../Scan/RasterizationSink.h"
#include "../Simd/KernelTable.h"

namespace Graphics {

/// Number of blend functions: the sixteen modes, and one entry for Normal by the general formula.
inline constexpr size_t kBlendCount = 17;
inline constexpr size_t kMaskTypeCount = 4;

/// One row of a transparency group, all planes at the same column.
struct LayerRowPlanes {
    uint32_t* color;          ///< group colour composited over its backdrop
    uint8_t* alpha;           ///< group alpha alone
    uint8_t* shape;           ///< group shape
    const uint32_t* backdrop; ///< initial backdrop; null stands for transparent
    bool knockout;
};

/// The samples of an upright rectangle: pixels have columns * rows of them.
struct SampleFrame {
    struct Rows {
        uint32_t samples; ///< 1 to 8 in each pixel of a column
        size_t count;     ///< pixel rows, may be 0
    };
    uint32_t left;  ///< sample columns of the first pixel, 1 to 8; those between have eight
    uint32_t right; ///< of the last pixel; the same if it is the first
    Rows rows[3];   ///< downward
};

struct RowKernels {
    /// dst = value
    void (*fill32)(uint32_t* dst, uint32_t value, size_t count);
    /// fill32 in each of `rows` rows, `strideBytes` apart.
    void (*fillBlock)(uint32_t* dst, ptrdiff_t strideBytes, uint32_t value, size_t count, size_t rows);
    /// Prefetches a row that will be painted soon; changes nothing. The rows of a block lie further apart than the
    /// hardware prefetcher reaches: outside the second cache, a block of 128 x 128 pixels takes half the time if each
    /// row is prefetched while the row before is painted.
    void (*prefetch)(const uint32_t* dst, size_t count);
    /// dst |= 0xFF000000 where shape is not 0
    void (*setOpaque)(uint32_t* dst, const uint8_t* shape, size_t count);
    /// dst = src | 0xFF000000; `src` needs no alignment.
    void (*copyOpaque)(uint32_t* dst, const uint8_t* src, size_t count);

    /// Normal over a basic target. Skips pixels whose shape or source alpha is 0; scales the source by shape when it
    /// is below 255; a transparent destination takes the source, otherwise d = d * (256 - as) >> 8 + c.
    void (*normalSolid)(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count);
    /// normalSolid for each run of a row, at least one; `first` is the first run's first pixel. Long runs go to the
    /// kernels of `all`, the active table.
    void (*solidRuns)(const RowKernels& all, uint32_t* first, uint32_t color, const CoverageRun* runs, size_t count);
    /// normalSolid with shape in each of `rows` rows; both strides are in bytes.
    void (*normalSolidBlock)(uint32_t* dst, ptrdiff_t strideBytes, uint32_t color, const uint8_t* shape,
                             ptrdiff_t shapeStride, size_t count, size_t rows);
    /// Normal over `rows` rows of `count` pixels, at least one: the first pixel of each row takes `left`, the last
    /// `right` (a single pixel takes `left`), those between `inner`. The colours are already scaled by their coverage.
    /// A colour without alpha clears transparent pixels and leaves others, as coverage above 0 does in normalSolid.
    void (*solidRectangle)(uint32_t* dst, ptrdiff_t strideBytes, uint32_t left, uint32_t inner, uint32_t right,
                           size_t count, size_t rows);
    /// Normal over an upright rectangle of samples, `count` > 0 pixels wide. A pixel with n samples takes the colour
    /// scaled by 4 n / 256; solidRectangle says what a colour without alpha does.
    void (*solidSamples)(uint32_t* dst, ptrdiff_t strideBytes, uint32_t color, const SampleFrame& frame, size_t count);
    void (*normalVarying)(uint32_t* dst, const uint32_t* src, const uint8_t* shape, size_t count);
    /// The other modes over a basic target, by blend mode number. The renderer does not use entry 0; entry 16 serves
    /// every number above 15.
    void (*blend[kBlendCount])(uint32_t* dst, const uint32_t* src, const uint8_t* shape, size_t count);
    /// blend with one colour for all pixels; the terms that depend on it alone are computed once per row.
    void (*blendSolid[kBlendCount])(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count);

    /// Painting into a group: Normal, and the other modes by number as above.
    void (*layerNormal)(const LayerRowPlanes& row, const uint32_t* src, const uint8_t* shape, size_t count);
    void (*layerBlend[kBlendCount])(const LayerRowPlanes& row, const uint32_t* src, const uint8_t* shape, size_t count);
    /// Turns a group's colour row into its result: alpha and colour divided by shape. `backdrop` null: isolated.
    void (*groupResult)(uint32_t* color, const uint8_t* alpha, const uint8_t* shape, const uint32_t* backdrop,
                        size_t count);

    /// values = mask value of each pixel, by type: alpha, 255 - alpha, luminosity, 255 - luminosity.
    void (*maskValues[kMaskTypeCount])(uint8_t* values, const uint32_t* pixels, size_t count);
    /// shape = shape * (mask + 1) >> 8 where mask < 255. `shape` and `mask` may be the same row.
    void (*scaleShape)(uint8_t* shape, const uint8_t* mask, size_t count);
    /// All four channels of each pixel scaled by its mask byte.
    void (*scaleColor)(uint32_t* color, const uint8_t* mask, size_t count);
    /// All four channels scaled by factor / 256; factor is 1 to 256, 256 leaves the row.
    void (*scaleColorBy)(uint32_t* color, uint32_t factor, size_t count);
    /// Straight to premultiplied: colour * (a + 1) >> 8 where a < 255. In place.
    void (*premultiply)(uint32_t* color, size_t count);
    /// dst = scale(dst, 255 - shape) + scale(color, shape), shape 255 replaces: clears a pixel that the clip covers
    /// partly.
    void (*replaceSolid)(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count);
    /// Inverts the colours of each pixel, c = a - c, and keeps alpha: this is 255 - c on straight channels.
    void (*invert)(uint32_t* dst, size_t count);
};

GX_DECLARE_KERNEL_TABLES(RowKernels, kRowKernels)

[[nodiscard]] inline const RowKernels& ActiveKernels() noexcept { return KernelTable<RowKernels>::Active(); }

} // namespace Graphics
