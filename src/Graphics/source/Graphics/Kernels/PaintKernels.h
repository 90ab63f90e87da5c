// SPDX-License-Identifier: MIT
// The row loops of gradients and bitmap samplers, one table for each instruction set. All sets give the same bits.
#pragma once

#include <cstddef>
#include <cstdint>

#include "../Paint/GradientSampler.h"
#include "../Simd/KernelTable.h"

namespace Graphics {

/// Colours of gradient parameters. `interval` is the one used last.
struct GradientShade {
    const GradientSampler* sampler;
    GradientInterval interval;
    uint32_t before;        ///< t < 0
    uint32_t after;         ///< t > 1
    uint32_t notANumber;    ///< t is NaN
    uint32_t opacityFactor; ///< 1 to 256
};

/// Coefficients of the two-circle equation; see SwRadialGradientColorSource.
struct RadialEquation {
    float g2, qa4, qinv;
};

/// How a pixel lies in memory.
enum class PixelLayout : uint8_t {
    Premultiplied, ///< words
    Straight,      ///< words with the alpha not yet multiplied in
    Opaque,        ///< words whose fourth byte says nothing
    Triples,       ///< three bytes: blue, green, red
};
inline constexpr size_t kPixelLayoutCount = 4;

/// An image of one of these layouts, with any alignment.
struct PixelGrid {
    const uint8_t* pixels;
    ptrdiff_t strideBytes;
    int32_t width;
    int32_t height;

    /// True when the offset of every pixel's byte fits in 32 bits.
    [[nodiscard]] bool IsNear() const noexcept {
        constexpr int64_t kMost = 0x40000000;
        const int64_t stride = strideBytes < 0 ? -static_cast<int64_t>(strideBytes) : strideBytes;
        return width < kMost / 4 && stride < kMost && stride * height < kMost;
    }
};

using SampleFunction = size_t (*)(const PixelGrid& grid, bool clamp, const float* u, const float* v, size_t count,
                                  uint32_t* out);

struct SamplePoint {
    float u, v;
};

struct PaintKernels {
    /// out = v, v + step, (v + step) + step, ... every sum rounded as a float add rounds it. Returns the term that
    /// follows.
    float (*accumulate)(float v, float step, float* out, size_t count);
    /// The same for both coordinates of points.
    SamplePoint (*accumulatePoints)(SamplePoint at, SamplePoint step, float* u, float* v, size_t count);
    /// Premultiplied colours, scaled by the opacity factor.
    void (*shade)(GradientShade& state, const float* t, size_t count, uint32_t* out);
    /// Parameters from relative coordinates and the linear coefficient; NaN where no circle passes, -1 where the
    /// solution itself is not a number.
    void (*radial)(const RadialEquation& equation, const float* u, const float* v, const float* b, size_t count,
                   float* t);

    /// out = the words of start + k step for pixel k: four channels, blue first, limited to 0 to 255 and rounded.
    void (*plane)(const float* start, const float* step, size_t count, uint32_t* out);

    /// Pixel index of each coordinate by tiling mode.
    void (*indices[3])(const float* c, size_t count, int32_t size, int32_t* index);
    /// Both neighbours of each coordinate, and the second one's weight 1 to 256, twice in a word.
    void (*taps[3])(const float* c, size_t count, int32_t size, int32_t* first, int32_t* second, uint32_t* weight);
    /// out = a * (257 - w) / 256 + b * w / 256 with the weights of `taps`; out may be a or b.
    void (*mix)(const uint32_t* a, const uint32_t* b, const uint32_t* weight, size_t count, uint32_t* out);
    /// The same with one weight 1 to 256.
    void (*mixBy)(const uint32_t* a, const uint32_t* b, uint32_t weight, size_t count, uint32_t* out);

    /// By layout: premultiplied words of the pixels of a row at the given columns; and of an image at points.
    void (*columns[kPixelLayoutCount])(const uint8_t* row, int32_t width, const int32_t* columns, size_t count,
                                       uint32_t* out);
    void (*points[kPixelLayoutCount])(const PixelGrid& grid, const int32_t* rows, const int32_t* columns, size_t count,
                                      uint32_t* out);
    /// By interpolation, 0 nearest, 1 bilinear: what indices, or taps, points and mix, give for these coordinates, as
    /// far as every pixel that counts lies inside the image, or to the end where both directions clamp, which images
    /// of one or two columns may refuse. Returns how many points were done, from the first one on.
    SampleFunction sample[2][kPixelLayoutCount];
};

GX_DECLARE_KERNEL_TABLES(PaintKernels, kPaintKernels)

[[nodiscard]] inline const PaintKernels& ActivePaintKernels() noexcept { return KernelTable<PaintKernels>::Active(); }

/// Longest stretch that the sources work on at once, in pixels.
inline constexpr size_t kPaintChunk = 256;

} // namespace Graphics
