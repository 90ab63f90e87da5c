// SPDX-License-Identifier: MIT
// The loops that read pixels where they lie, at any indices: a permutation of a few words, gathers, or one by one.
#pragma once

#include "SwSamplerLoops.h"

namespace Graphics {
namespace {

template <SwPixelLayout kLayout> constexpr int32_t kPixelBytes = kLayout == SwPixelLayout::Triples ? 3 : 4;

/// From words as they are stored. What fills the fourth byte of opaque pixels is no matter while they are mixed,
/// because no channel reaches another: Finish gives them their alpha.
template <SwPixelLayout kLayout> GX_INLINE inline Words Understand(Words c) noexcept {
    return kLayout == SwPixelLayout::Straight ? Premultiply(c) : c;
}
template <SwPixelLayout kLayout> GX_INLINE inline Words Finish(Words c) noexcept {
    return kLayout == SwPixelLayout::Opaque || kLayout == SwPixelLayout::Triples ? c | 0xFF000000U : c;
}

template <SwPixelLayout kLayout> GX_INLINE inline uint32_t PixelAt(const uint8_t* p) noexcept {
    uint32_t c = 0;
    __builtin_memcpy(&c, p, kPixelBytes<kLayout>);
    if constexpr (kLayout == SwPixelLayout::Premultiplied) {
        return c;
    } else if constexpr (kLayout == SwPixelLayout::Straight) {
        return PremultiplyPixel(c);
    } else {
        return c | 0xFF000000U;
    }
}

/// A word read from a triple's first byte reaches into the next one: the last of a row stands for itself.
template <SwPixelLayout kLayout> GX_INLINE inline bool MayGather(Ints columns, int32_t width) noexcept {
    return kLanes > 4 && (kLayout != SwPixelLayout::Triples || All(columns < width - 1));
}

template <SwPixelLayout kLayout>
void Columns(const uint8_t* row, int32_t width, const int32_t* columns, size_t count, uint32_t* out) {
    Blocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        const auto at = Load<Ints>(columns + k, lanes);
        Words c;
        if (!MayGather<kLayout>(at, width)) {
            for (size_t i = 0; i < lanes; ++i) {
                out[k + i] = PixelAt<kLayout>(row + static_cast<ptrdiff_t>(columns[k + i]) * kPixelBytes<kLayout>);
            }
            return;
        }
        // Neighbours of a scaled row: permuting a few words is several times as fast as gathering them.
        const int32_t from = columns[k] < columns[k + lanes - 1] ? columns[k] : columns[k + lanes - 1];
        if (kLayout != SwPixelLayout::Triples && lanes == kLanes && All((Ints)((Words)(at - from) < kNearWords))) {
            c = Pick(row + static_cast<ptrdiff_t>(from) * 4, static_cast<size_t>(width - from), at - from);
        } else {
            c = Gather(row, at * kPixelBytes<kLayout>);
        }
        Store(out + k, Finish<kLayout>(Understand<kLayout>(c)), lanes);
    });
}

template <SwPixelLayout kLayout>
void Points(const SwPixelGrid& grid, const int32_t* rows, const int32_t* columns, size_t count, uint32_t* out) {
    const auto stride = static_cast<int32_t>(grid.strideBytes);
    Blocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        const auto at = Load<Ints>(columns + k, lanes);
        if (!grid.IsNear() || !MayGather<kLayout>(at, grid.width)) {
            for (size_t i = 0; i < lanes; ++i) {
                out[k + i] = PixelAt<kLayout>(grid.pixels + rows[k + i] * grid.strideBytes +
                                              static_cast<ptrdiff_t>(columns[k + i]) * kPixelBytes<kLayout>);
            }
            return;
        }
        const Words c = Gather(grid.pixels, Load<Ints>(rows + k, lanes) * stride + at * kPixelBytes<kLayout>);
        Store(out + k, Finish<kLayout>(Understand<kLayout>(c)), lanes);
    });
}

/// Calls sample(coordinates, indices, byte offsets of the pixels, lanes, first) for blocks of points whose indices lie
/// below `endX` and `endY`, and border(coordinates, lanes, first) for others, which ends the row when it gives false.
/// Returns how many points were done.
template <SwPixelLayout kLayout, class Sample, class Border>
GX_INLINE inline size_t SampleBlocks(const SwPixelGrid& grid, int32_t endX, int32_t endY, const float* u,
                                     const float* v, size_t count, Sample&& sample, Border&& border) noexcept {
    if (endX <= 0 || endY <= 0 || !grid.IsNear()) {
        return 0;
    }
    const auto stride = static_cast<int32_t>(grid.strideBytes);
    size_t k = 0;
    while (k < count) {
        const size_t lanes = count - k < kLanes ? count - k : kLanes; // lanes beyond the end read pixel (0, 0)
        const auto x = Load<Floats>(u + k, lanes);
        const auto y = Load<Floats>(v + k, lanes);
        const Ints i = IndexOf(x);
        const Ints j = IndexOf(y);
        if (All((Ints)((Words)i < static_cast<uint32_t>(endX)) & (Ints)((Words)j < static_cast<uint32_t>(endY)))) {
            sample(x, y, i, j, j * stride + i * kPixelBytes<kLayout>, lanes, k);
        } else if (!border(Confine(x), Confine(y), lanes, k)) {
            break;
        }
        k += lanes;
    }
    return k;
}

/// Of triples, the last of a row stays outside: its word would reach behind the image.
template <SwPixelLayout kLayout>
size_t Nearest(const SwPixelGrid& grid, bool clamp, const float* u, const float* v, size_t count, uint32_t* out) {
    constexpr bool words = kLayout != SwPixelLayout::Triples;
    const auto stride = static_cast<int32_t>(grid.strideBytes);
    const auto put = [&](Ints offsets, size_t lanes, size_t k) GX_INLINE {
        Store(out + k, Finish<kLayout>(Understand<kLayout>(Gather(grid.pixels, offsets))), lanes);
    };
    return SampleBlocks<kLayout>(
        grid, grid.width - (words ? 0 : 1), grid.height, u, v, count,
        [&](Floats, Floats, Ints, Ints, Ints offsets, size_t lanes, size_t k) GX_INLINE { put(offsets, lanes, k); },
        [&](Floats x, Floats y, size_t lanes, size_t k) GX_INLINE {
            if (words && clamp) {
                const Ints i = ClampIndex(IndexOf(x), grid.width);
                put(ClampIndex(IndexOf(y), grid.height) * stride + i * 4, lanes, k);
            }
            return words && clamp;
        });
}

/// Clamping here, by four gathers, was slower than leaving the border to the general way, which is taken for few
/// points. Two neighbours come in one read: of triples, the second starts in the first one's fourth byte.
template <SwPixelLayout kLayout>
size_t Bilinear(const SwPixelGrid& grid, bool, const float* u, const float* v, size_t count, uint32_t* out) {
    constexpr bool words = kLayout != SwPixelLayout::Triples;
    const auto read = [](const uint8_t* row, Ints offsets, Words across) GX_INLINE {
        Words a;
        Words b;
        GatherPairs(row, offsets, a, b);
        if (!words) {
            b = a >> 24 | b << 8;
        }
        return Mix(Understand<kLayout>(a), Understand<kLayout>(b), across);
    };
    return SampleBlocks<kLayout>(
        grid, grid.width - (words ? 1 : 2), grid.height - 1, u, v, count,
        [&](Floats x, Floats y, Ints i, Ints j, Ints offsets, size_t lanes, size_t k) GX_INLINE {
            const Words across = WeightOf(x, i);
            const Words top = read(grid.pixels, offsets, across);
            const Words bottom = read(grid.pixels + grid.strideBytes, offsets, across);
            Store(out + k, Finish<kLayout>(Mix(top, bottom, WeightOf(y, j))), lanes);
        },
        [](Floats, Floats, size_t, size_t) GX_INLINE { return false; });
}

} // namespace
} // namespace Graphics
