// SPDX-License-Identifier: MIT
// Pixels in blocks of 16, and formulas on pixels whose channels stay bytes, for the set that has verbs for them
// (GX_SIMD_QUADS). A factor is a byte that stands four times in its pixel.
#pragma once

#include "../Simd/Channels.h"

#ifdef GX_SIMD_QUADS
namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

inline constexpr size_t kQuadPixels = 16;

/// Calls step(i) for the whole blocks of a row. Returns how many pixels they have.
template <class Step> GX_INLINE inline size_t ForQuads(size_t count, Step step) noexcept {
    size_t i = 0;
    for (; i + kQuadPixels <= count; i += kQuadPixels) {
        step(i);
    }
    return i;
}
template <class Of> GX_INLINE inline Quad EachOf(Of of) noexcept { return {{of(0), of(1), of(2), of(3)}}; }

/// True if all 16 bytes equal v.
GX_INLINE inline bool QuadBytesAre(const uint8_t* p, uint8_t v) noexcept {
    uint64_t words[2];
    __builtin_memcpy(words, p, 16);
    const uint64_t all = v * uint64_t{0x0101010101010101U};
    return ((words[0] ^ all) | (words[1] ^ all)) == 0;
}

/// Masks.
GX_INLINE inline U32 HasAlpha(U32 c) noexcept { return (U32)(c > kColors); }
GX_INLINE inline bool AllOpaque(const Quad& c) noexcept {
    return AllSet((I32)((c.v[0] & c.v[1] & c.v[2] & c.v[3]) >= kAlpha));
}
GX_INLINE inline U32 BytesAreZero(U32 bytes) noexcept { return (U32)((U8)bytes == 0); }
/// 256 - v for v from 1 on.
GX_INLINE inline U32 Negative(U32 v) noexcept { return (U32)(-(U8)v); }
/// a + b - ab on bytes.
GX_INLINE inline U32 UnionBytes(U32 a, U32 b) noexcept { return (U32)((U8)a + (U8)b - (U8)ScaleUp(a, b)); }
/// Pixels with the alphas that a quarter of 16 bytes gives.
GX_INLINE inline U32 WithAlphas(U32 colors, U32 alphas, int quarter) noexcept {
    return SelectBits(Splat(kAlpha), SpreadQuarter(alphas, quarter), colors);
}

/// c over d, of which `rest` is left; c where d is transparent.
GX_INLINE inline U32 OverRest(U32 d, U32 c, U32 rest) noexcept { return (rest & HasAlpha(d)) + c; }

/// One colour under coverage. An opaque colour scaled by s has alpha s; where s is 0 the pixel is kept.
template <bool kOpaque> class ShapedColor {
public:
    GX_INLINE explicit ShapedColor(U32 color) noexcept : m_color(color) {}

    GX_INLINE U32 operator()(U32 d, U32 s) const noexcept {
        const U32 c = m_color.Up(s);
        const U32 rest = kOpaque ? ScaleDirect(d, Negative(s)) : ScaleDown(d, AlphaBytes(c));
        return SelectBits(BytesAreZero(s), d, OverRest(d, c, rest));
    }

private:
    SteadyBytes m_color;
};

/// One colour of alpha 1 to 255 over pixels.
class OverColor {
public:
    GX_INLINE explicit OverColor(U32 color) noexcept : m_color(color), m_rest(Negative(AlphaBytes(color))) {}

    GX_INLINE U32 operator()(U32 d) const noexcept { return OverRest(d, m_color, ScaleDirect(d, m_rest)); }

private:
    U32 m_color;
    U32 m_rest;
};

/// These two return how many leading pixels they have done.
GX_INLINE inline size_t FillQuads(uint32_t* dst, U32 v, size_t count) noexcept {
    return ForQuads(count, [=](size_t i) GX_INLINE { StoreQuad(dst + i, {{v, v, v, v}}); });
}
GX_INLINE inline size_t OverQuads(uint32_t* dst, const OverColor& over, size_t count) noexcept {
    return ForQuads(count, [=](size_t i) GX_INLINE {
        const Quad d = LoadQuad(dst + i);
        StoreQuad(dst + i, EachOf([&](int k) GX_INLINE { return over(d.v[k]); }));
    });
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
#endif
