// SPDX-License-Identifier: MIT
// Parts of a row in one colour and the Normal mode: a few pixels through shape bytes, and runs of constant coverage. The
// row loops and the sweeps of the rasterizer are made of them.
#pragma once

#include "../Simd/ChannelDivision.h"
#include "PixelQuads.h"
#include "RowKernels.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// d * (256 - as) >> 8 + c; c if d is transparent.
GX_INLINE inline U32 Over(U32 d, U32 c, U32 complement) noexcept {
    return Select(IsZero(d & 0xFF000000U), c, Scale(d, complement) + c);
}

/// normalSolid for at most one vector of pixels. An opaque colour scaled by s has alpha 255 (s + 1) >> 8 = s.
template <bool kOpaque = false>
GX_INLINE inline void ShapedSolid(uint32_t* dst, U32 color, const uint8_t* shape, size_t n) noexcept {
    const U32 d = LoadSome(dst, n);
#ifdef GX_SIMD_QUADS
    const U32 s = n == kLanes ? WidenToAll(shape) : SpreadBytes(WidenPart(shape, n));
    StoreSome(dst, n, ShapedColor<kOpaque>(color)(d, s));
#else
    const U32 s = WidenSome(shape, n);
    const U32 both = Twice(s);
    const U32 scaled = Scale(color, both + 0x00010001U);
    const U32 under = Scale(d, kOpaque ? 0x01000100U - both : ComplementOfAlpha(scaled));
    // Without coverage the sum is d.
    StoreSome(dst, n, Select(IsZero(d & kAlpha) & ~IsZero(s), scaled, under + scaled));
#endif
}

/// ShapedSolid along a row.
template <bool kOpaque = false>
GX_INLINE inline void ShapedRow(uint32_t* dst, U32 color, const uint8_t* shape, size_t count) noexcept {
#ifdef GX_SIMD_QUADS
    const ShapedColor<kOpaque> shaped(color);
    size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        Store(dst + i, shaped(Load(dst + i), WidenToAll(shape + i)));
    }
    const size_t n = count - i;
    if (n != 0 && i != 0) { // once more a whole vector, in which the pixels that are done are not covered
        const U32 s = Splat(WordAt(shape + count - kLanes) & (~0U << (8 * (kLanes - n))));
        Store(dst + count - kLanes, shaped(Load(dst + count - kLanes), SpreadQuarter(s, 0)));
    } else if (n != 0) {
        ShapedSolid<kOpaque>(dst, color, shape, n);
    }
#else
    ForBlocks(count, [=](size_t i, size_t n) { ShapedSolid<kOpaque>(dst + i, color, shape + i, n); });
#endif
}

#if GX_SIMD_BYTES == 64
/// The shape bytes of eight pixels, as SolidBlock takes them.
using EightShapes = HalfU32;
GX_INLINE inline EightShapes ShapesOf(uint64_t bytes) noexcept {
    return WidenHalf(reinterpret_cast<const uint8_t*>(&bytes));
}
GX_INLINE inline EightShapes ShapesTimes(uint8_t shape) noexcept { return HalfU32{} + shape; }

/// One colour over eight pixels at a time, the pixels of a block of the rasterizer. Vectors of 64 bytes would be half
/// empty, and cross a cache line at every second block.
template <bool kOpaque> class SolidBlock {
public:
    explicit SolidBlock(uint32_t color) noexcept
        : m_even(Kept((HalfU16)(HalfU32{} + color) << 8)), m_odd(Kept((HalfU16)(HalfU32{} + color) >> 8)),
          m_high(Kept(HalfU16{} + 0xFF00U)), m_whole(Kept(HalfU16{} + 256U)), m_alpha(Kept(HalfU32{} + 0xFF000000U)) {}

    /// The first n pixels, n > 0.
    GX_INLINE void Paint(uint32_t* dst, EightShapes s, size_t n) const noexcept {
        const HalfU32 d = LoadHalf(dst, n);
        const HalfU32 both = Twice(s);
        const HalfU32 scaled = Join(m_even, m_odd, (HalfU16)both + 1U);
        const HalfU32 alpha = kOpaque ? both : AlphaTwice(scaled);
        const HalfU32 under = Join((HalfU16)d << 8, (HalfU16)d >> 8, m_whole - (HalfU16)alpha);
        // Without coverage the sum is d.
        StoreHalf(dst, n, (((d & m_alpha) == 0U) & (s != 0U)) ? scaled : scaled + under);
    }

private:
    /// even * k >> 8, and odd * k in the high bytes.
    GX_INLINE HalfU32 Join(HalfU16 even, HalfU16 odd, HalfU16 k) const noexcept {
        return (HalfU32)(MultiplyHigh(even, k) | ((odd * k) & m_high));
    }

    HalfU16 m_even; // blue and red in the high bytes of their halves
    HalfU16 m_odd;  // green and alpha in the low ones
    HalfU16 m_high;
    HalfU16 m_whole;
    HalfU32 m_alpha;
};
#else
struct EightShapes {
    uint8_t bytes[8];
};
GX_INLINE inline EightShapes ShapesOf(uint64_t bytes) noexcept { return __builtin_bit_cast(EightShapes, bytes); }
GX_INLINE inline EightShapes ShapesTimes(uint8_t shape) noexcept {
    return ShapesOf(shape * uint64_t{0x0101010101010101U});
}

template <bool kOpaque> class SolidBlock {
public:
    explicit SolidBlock(uint32_t color) noexcept : m_color(Splat(color)) {}

    GX_INLINE void Paint(uint32_t* dst, const EightShapes& shapes, size_t n) const noexcept {
        ShapedRow<kOpaque>(dst, m_color, shapes.bytes, n < 8 ? n : 8);
    }

private:
    U32 m_color;
};
#endif

/// One run of constant coverage; the colour is already scaled by it.
GX_INLINE inline void ConstantRun(const RowKernels& all, uint32_t* dst, uint32_t color, size_t n) noexcept {
    constexpr size_t kLongRun = 64;
    const bool opaque = color >> 24 == 255;
    if (n >= kLongRun || n < kLanes) {
        opaque ? all.fill32(dst, color, n) : all.solidRectangle(dst, 0, color, color, color, n, 1);
        return;
    }
    const U32 c = Splat(color);
    size_t i = 0;
    if (opaque) {
        for (; i + kLanes <= n; i += kLanes) {
            Store(dst + i, c);
        }
        Store(dst + n - kLanes, c);
        return;
    }
    const U32 complement = ComplementOfAlpha(c);
    for (; i + kLanes <= n; i += kLanes) {
        Store(dst + i, Over(Load(dst + i), c, complement));
    }
    if (i < n) {
        all.solidRectangle(dst + i, 0, color, color, color, n - i, 1);
    }
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
