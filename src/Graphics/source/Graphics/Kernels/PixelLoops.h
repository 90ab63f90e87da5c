// SPDX-License-Identifier: MIT
// Samplers that read an image's pixels in place, without a converted copy: by a permutation of a few neighbouring
// words, by gathers, or one pixel after the other.
//
// Invariant: no read leaves the image. A pixel of three bytes (Triples) is read as a word of four, which needs one byte
// beside it:
//
//     nearest    the word begins at the byte before the pixel; at the first pixel of a row, at the pixel
//     bilinear   the eight bytes for a pair end with the second pixel; for the first pair of a row they begin with it
//     gathers    the word begins at the pixel; not used for the last pixel of a row (MayGather)
#pragma once

#include "../Pixels/PixelMath.h"
#include "SamplerLoops.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// Every integer up to here is a float.
constexpr int32_t kWhole = 1 << 24;

template <PixelLayout kLayout> constexpr int32_t kPixelBytes = kLayout == PixelLayout::Triples ? 3 : 4;

/// A stored word as a premultiplied pixel. The fourth byte of opaque layouts may hold anything until Finish sets it:
/// mixing treats channels apart, so it reaches no other one.
template <PixelLayout kLayout> GX_INLINE inline U32 ToPremultiplied(U32 c) noexcept {
    return kLayout == PixelLayout::Straight ? Premultiply(c) : c;
}
template <PixelLayout kLayout> GX_INLINE inline U32 Finish(U32 c) noexcept {
    return kLayout == PixelLayout::Opaque || kLayout == PixelLayout::Triples ? c | 0xFF000000U : c;
}

template <PixelLayout kLayout> GX_INLINE inline uint32_t PixelAt(const uint8_t* p) noexcept {
    uint32_t c = 0;
    __builtin_memcpy(&c, p, kPixelBytes<kLayout>);
    if constexpr (kLayout == PixelLayout::Premultiplied) {
        return c;
    } else if constexpr (kLayout == PixelLayout::Straight) {
        return PremultiplyPixel(c);
    } else {
        return c | 0xFF000000U;
    }
}

/// Whether words read at these columns stay inside the row.
template <PixelLayout kLayout> GX_INLINE inline bool MayGather(I32 columns, int32_t width) noexcept {
    return kLanes > 4 && (kLayout != PixelLayout::Triples || AllSet(columns < width - 1));
}

template <PixelLayout kLayout>
void Columns(const uint8_t* row, int32_t width, const int32_t* columns, size_t count, uint32_t* out) {
#ifdef GX_SIMD_QUADS
    // One by one, but read before they are written, so that indices and pixels go in pairs.
    const auto pixel = [=](int32_t i) GX_INLINE { return PixelAt<kLayout>(row + ptrdiff_t{i} * kPixelBytes<kLayout>); };
    for (; count >= 8; count -= 8, columns += 8, out += 8) {
        uint32_t pixels[8];
        for (size_t i = 0; i < 8; ++i) {
            pixels[i] = pixel(columns[i]);
        }
        __builtin_memcpy(out, pixels, sizeof pixels);
    }
#endif
    ForBlocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        const auto at = LoadSome<I32>(columns + k, lanes);
        U32 c;
        if (!MayGather<kLayout>(at, width)) {
            for (size_t i = 0; i < lanes; ++i) {
                out[k + i] = PixelAt<kLayout>(row + static_cast<ptrdiff_t>(columns[k + i]) * kPixelBytes<kLayout>);
            }
            return;
        }
        // Neighbours of a scaled row: permuting a few words is several times as fast as gathering them.
        const int32_t from = columns[k] < columns[k + lanes - 1] ? columns[k] : columns[k + lanes - 1];
        if (kLayout != PixelLayout::Triples && lanes == kLanes && AllSet((I32)((U32)(at - from) < kNearWords))) {
            c = Pick(row + static_cast<ptrdiff_t>(from) * 4, static_cast<size_t>(width - from), at - from);
        } else {
            c = Gather(row, at * kPixelBytes<kLayout>);
        }
        StoreSome(out + k, lanes, Finish<kLayout>(ToPremultiplied<kLayout>(c)));
    });
}

template <PixelLayout kLayout>
void Points(const PixelGrid& grid, const int32_t* rows, const int32_t* columns, size_t count, uint32_t* out) {
    const auto stride = static_cast<int32_t>(grid.strideBytes);
    ForBlocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        const auto at = LoadSome<I32>(columns + k, lanes);
        if (!grid.IsNear() || !MayGather<kLayout>(at, grid.width)) {
            for (size_t i = 0; i < lanes; ++i) {
                out[k + i] = PixelAt<kLayout>(grid.pixels + rows[k + i] * grid.strideBytes +
                                              static_cast<ptrdiff_t>(columns[k + i]) * kPixelBytes<kLayout>);
            }
            return;
        }
        const U32 c = Gather(grid.pixels, LoadSome<I32>(rows + k, lanes) * stride + at * kPixelBytes<kLayout>);
        StoreSome(out + k, lanes, Finish<kLayout>(ToPremultiplied<kLayout>(c)));
    });
}

/// One pixel for each place.
template <PixelLayout kLayout> class NearestPoints {
public:
    static constexpr int kInterpolation = 0;
    /// Clamping costs no more than the test whether it is needed.
    static constexpr bool kClampsAll = true;

    GX_INLINE NearestPoints(const PixelGrid& grid, uint32_t* out) noexcept : m_grid(grid), m_out(out) {}

    [[nodiscard]] bool Suits() const noexcept {
        return m_grid.IsNear() && m_grid.width >= (kWords ? 1 : 2) && m_grid.width <= kWhole && m_grid.height <= kWhole;
    }
    /// Indices below these are inside.
    [[nodiscard]] int32_t EndX() const noexcept { return m_grid.width; }
    [[nodiscard]] int32_t EndY() const noexcept { return m_grid.height; }

    GX_INLINE void Inside(F32 x, F32 y, size_t lanes, size_t k) const noexcept {
        Put(Truncate(x), Truncate(y), lanes, k);
    }
    GX_INLINE void Clamped(F32 x, F32 y, size_t lanes, size_t k) const noexcept {
        Put(Column(x, m_grid.width), Column(y, m_grid.height), lanes, k);
    }

private:
    static constexpr bool kWords = kLayout != PixelLayout::Triples;

    /// The clamped coordinate truncates to the clamped index.
    GX_INLINE static I32 Column(F32 c, int32_t size) noexcept {
        return Truncate(Lower(Higher(c, F32{}), Splat(static_cast<float>(size - 1))));
    }

    GX_INLINE void Put(I32 i, I32 j, size_t lanes, size_t k) const noexcept {
        const I32 offsets = j * static_cast<int32_t>(m_grid.strideBytes) + i * kPixelBytes<kLayout>;
        U32 c;
        if constexpr (kWords) {
            c = Gather(m_grid.pixels, offsets);
        } else {
            const I32 later = (I32)(i > I32{});
            c = Gather(m_grid.pixels, offsets + later);
            c = Select(later, c >> 8, c);
        }
        StoreSome(m_out + k, lanes, Finish<kLayout>(ToPremultiplied<kLayout>(c)));
    }

    const PixelGrid& m_grid;
    uint32_t* m_out;
};

/// Four pixels for each place, two neighbours in one read. At the last pixel of a row the pair begins one pixel
/// earlier.
template <PixelLayout kLayout> class BilinearPoints {
public:
    static constexpr int kInterpolation = 1;
    static constexpr bool kClampsAll = false;

    GX_INLINE BilinearPoints(const PixelGrid& grid, uint32_t* out) noexcept : m_grid(grid), m_out(out) {}

    [[nodiscard]] bool Suits() const noexcept { return m_grid.IsNear() && m_grid.width >= (kWords ? 2 : 3); }
    [[nodiscard]] int32_t EndX() const noexcept { return m_grid.width - 1; }
    [[nodiscard]] int32_t EndY() const noexcept { return m_grid.height - 1; }

    GX_INLINE void Inside(F32 x, F32 y, size_t lanes, size_t k) const noexcept {
        const I32 i = Truncate(x);
        const I32 j = Truncate(y);
        I32 later;
        const I32 offsets = j * Stride() + ByteOf(i, later);
        U32 c[4];
        Read(m_grid.pixels, offsets, later, c[0], c[1]);
        Read(m_grid.pixels + m_grid.strideBytes, offsets, later, c[2], c[3]);
        Put(c, WeightInside(x, i, m_one), WeightInside(y, j, m_one), lanes, k);
    }

    GX_INLINE void Clamped(F32 x, F32 y, size_t lanes, size_t k) const noexcept {
        x = Confine(x);
        y = Confine(y);
        const I32 i = IndexOf(x);
        const I32 j = IndexOf(y);
        const I32 left = (I32)(i < I32{});                       // both neighbours are the first pixel
        const I32 right = (I32)(i > I32{} + (m_grid.width - 2)); // both are the last
        I32 later;
        const I32 column = ByteOf(ClampIndex(i, m_grid.width - 1), later);
        U32 c[4];
        for (int32_t row = 0; row < 2; ++row) {
            U32 a;
            U32 b;
            Read(m_grid.pixels, ClampIndex(j + row, m_grid.height) * Stride() + column, later, a, b);
            c[row * 2] = Select(right, b, a);
            c[row * 2 + 1] = Select(left, a, b);
        }
        Put(c, WeightOf(x, i), WeightOf(y, j), lanes, k);
    }

private:
    static constexpr bool kWords = kLayout != PixelLayout::Triples;

    [[nodiscard]] int32_t Stride() const noexcept { return static_cast<int32_t>(m_grid.strideBytes); }

    /// The byte of its row at which the pair's read begins. `later` (triples): the read begins before the pair.
    GX_INLINE static I32 ByteOf(I32 i, I32& later) noexcept {
        later = (I32)(i > I32{});
        return kWords ? i * 4 : i * 3 + (later & -2);
    }

    GX_INLINE static void Read(const uint8_t* row, I32 offsets, I32 later, U32& a, U32& b) noexcept {
        GatherPairs(row, offsets, a, b);
        if constexpr (!kWords) {
            const U32 second = Select(later, b >> 8, a >> 24 | b << 8);
            a = Select(later, a >> 16 | b << 16, a);
            b = second;
        }
        a = ToPremultiplied<kLayout>(a);
        b = ToPremultiplied<kLayout>(b);
    }

    GX_INLINE void Put(const U32* corners, U32 across, U32 down, size_t lanes, size_t k) const noexcept {
        StoreSome(m_out + k, lanes, Finish<kLayout>(m_mix(corners, across, down)));
    }

    const PixelGrid& m_grid;
    uint32_t* m_out;
    CornerMix m_mix;
    U32 m_one = Kept(Splat(0x00010001U));
};

template <class Way>
size_t SampleRow(const PixelGrid& grid, bool clamp, const float* u, const float* v, size_t count, uint32_t* out) {
    const Way way(grid, out);
    if (!way.Suits()) {
        return 0;
    }
    // As integers the bits of floats from 0 on have the order of their values; negative floats and NaN are above them.
    const auto limit = [](int32_t end) {
        return __builtin_bit_cast(uint32_t, static_cast<float>(end < kWhole ? end : kWhole));
    };
    const U32 limitX = Splat(limit(way.EndX()));
    const U32 limitY = Splat(limit(way.EndY()));
    for (size_t k = 0; k < count; k += kLanes) {
        const size_t lanes = count - k < kLanes ? count - k : kLanes; // lanes beyond the end read pixel (0, 0)
        const auto x = LoadSome<F32>(u + k, lanes);
        const auto y = LoadSome<F32>(v + k, lanes);
        if (!(Way::kClampsAll && clamp) && AllBelow((U32)x, limitX, (U32)y, limitY)) {
            way.Inside(x, y, lanes, k);
        } else if (clamp) {
            way.Clamped(x, y, lanes, k);
        } else {
            return k;
        }
    }
    return count;
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
