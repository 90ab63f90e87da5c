// SPDX-License-Identifier: MIT
// Division of a pixel's channels by one of its bytes.
#pragma once

#include "Channels.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

GX_INLINE inline U32 LowerBytes(U32 a, U32 b) noexcept {
    const U8 x = (U8)a;
    const U8 y = (U8)b;
    return (U32)(x < y ? x : y);
}

/// Copies one byte of each pixel to all four bytes.
GX_INLINE inline U32 SpreadBytes(U32 v) noexcept {
    const U32 two = Spread(v);
    return two | two << 8;
}

/// Bytes of a pixel divided by one of them, min(byte, v) * 255 / v; 0 if v is 0.
///
/// With m = 255 * 65536 / v + e, the quotient of a byte c <= v is (c * m) >> 16 for 0 <= e < 65536 / v^2: the product is
/// too large by c e / 65536 < 1 / v, and a quotient that is no integer is at least 1 / v below the next one. m has 24
/// bits, of which the upper eight times c are below 65536.
GX_INLINE inline ChannelPairs DividedBytes(U32 x, U32 v, U32 spread) noexcept {
    const ChannelPairs c = Split(LowerBytes(x, spread));
    const U32 m = ByteReciprocal(v);
    const auto low = (U16)LowHalfTwice(m);
    const auto high = (U16)Twice(m >> 16);
    return {c.even * high + MultiplyHigh(c.even, low), c.odd * high + MultiplyHigh(c.odd, low)};
}
GX_INLINE inline ChannelPairs DividedBytes(U32 x, U32 v) noexcept { return DividedBytes(x, v, SpreadBytes(v)); }

/// Straight channels of premultiplied pixels, by their alpha.
GX_INLINE inline ChannelPairs StraightChannels(U32 x) noexcept { return DividedBytes(x, Alpha(x), AlphaBytes(x)); }

/// Straight colours of premultiplied pixels, min(colour, a) * 255 / a; a pixel of alpha 0 stays as it is.
GX_INLINE inline U32 Unpremultiply(U32 x) noexcept {
    const U32 a = Alpha(x);
    return Select(IsZero(a), x, (Join(StraightChannels(x)) & kColors) | (x & kAlpha));
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
