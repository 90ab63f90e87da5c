// SPDX-License-Identifier: MIT
// The row loops of gradients and bitmap samplers, one table for each instruction set. All sets give the same bits.
#pragma once

#include <cstddef>
#include <cstdint>

#include "../Paint/GradientSampler.h"
#include "../Simd/KernelTable.h"

namespace Graphics {

/// State for colours of gradient parameters. `interval` is the one used last.
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

/// The memory layout of a pixel.
enum class PixelLayout : uint8_t {
    Premultiplied, ///< words
    Straight,      ///< words, not premultiplied
    Opaque,        ///< words whose fourth byte is undefined
    Triples,       ///< three bytes: blue, green, red
};
inline constexpr size_t kPixelLayoutCount = 4;

/// An image of one of these layouts, with any alignment.
struct PixelGrid {
    const uint8_t* pixels;
    ptrdiff_t strideBytes;
    int32_t width;
    int32_t height;

    /// True if every pixel's byte offset fits in 32 bits.
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
    /// out = v, v + step, (v + step) + step, ... with every sum rounded to float. Returns the term that follows.
    float (*accumulate)(float v, float step, float* out, size_t count);
    /// accumulate for both coordinates of points.
    SamplePoint (*accumulatePoints)(SamplePoint at, SamplePoint step, float* u, float* v, size_t count);
    /// out = premultiplied colours of the parameters, scaled by the opacity factor.
    void (*shade)(GradientShade& state, const float* t, size_t count, uint32_t* out);
    /// Parameters from relative coordinates and the linear coefficient: NaN if no circle passes through the point, -1
    /// if the solution is NaN.
    void (*radial)(const RadialEquation& equation, const float* u, const float* v, const float* b, size_t count,
                   float* t);

    /// out = the words of start + k step for pixel k: four channels, blue first, clamped to 0 to 255 and rounded.
    void (*plane)(const float* start, const float* step, size_t count, uint32_t* out);

    /// Pixel index of each coordinate, by tiling mode.
    void (*indices[3])(const float* c, size_t count, int32_t size, int32_t* index);
    /// Both neighbours of each coordinate, and the second neighbour's weight, 1 to 256, in both halves of a word.
    void (*taps[3])(const float* c, size_t count, int32_t size, int32_t* first, int32_t* second, uint32_t* weight);
    /// out = a * (257 - w) / 256 + b * w / 256 with the weights of `taps`; out may be a or b.
    void (*mix)(const uint32_t* a, const uint32_t* b, const uint32_t* weight, size_t count, uint32_t* out);
    /// mix with one weight, 1 to 256, for all pixels.
    void (*mixBy)(const uint32_t* a, const uint32_t* b, uint32_t weight, size_t count, uint32_t* out);

    /// By layout: premultiplied words of the pixels of a row at the given columns, and of an image at points.
    void (*columns[kPixelLayoutCount])(const uint8_t* row, int32_t width, const int32_t* columns, size_t count,
                                       uint32_t* out);
    void (*points[kPixelLayoutCount])(const PixelGrid& grid, const int32_t* rows, const int32_t* columns, size_t count,
                                      uint32_t* out);
    /// Fused fast path of indices and points, or of taps, points and mix; by interpolation, 0 nearest, 1 bilinear.
    /// Returns how many leading points were done. It stops at the first point that needs a pixel outside the image,
    /// unless both directions clamp: then it does all, or refuses images of one or two columns.
    SampleFunction sample[2][kPixelLayoutCount];
};

GX_DECLARE_KERNEL_TABLES(PaintKernels, kPaintKernels)

[[nodiscard]] inline const PaintKernels& ActivePaintKernels() noexcept { return KernelTable<PaintKernels>::Active(); }

/// The longest span that the sources process at once, in pixels.
inline constexpr size_t kPaintChunk = 256;
/// A row's last part may be longer, since a few pixels left over would cost as much as a vector of each step.
inline constexpr size_t kMostPainted = kPaintChunk + 32;

} // namespace Graphics
