// SPDX-License-Identifier: MIT
// The blend functions on vectors of straight pixels, each with the bits of its scalar form in Blend.h. All lanes
// compute every case, and masks select. The alpha of a result is undefined.
#pragma once

#include "../Simd/ChannelDivision.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// Of values below 32768, for which every set has instructions.
GX_INLINE inline U16 LowerOf(U16 a, U16 b) noexcept { return Select((I16)((I16)a < (I16)b), a, b); }
GX_INLINE inline U16 HigherOf(U16 a, U16 b) noexcept { return Select((I16)((I16)a > (I16)b), a, b); }
/// a - b for each byte, at least 0.
GX_INLINE inline U32 SubtractClamped(U32 a, U32 b) noexcept { return (U32)((U8)a - (U8)LowerBytes(a, b)); }

/// Products of the low halves, below 65536; the high halves are 0.
GX_INLINE inline U32 Product(U32 a, U32 b) noexcept { return (U32)((U16)a * (U16)b); }
/// a + b - ab on bytes.
GX_INLINE inline U32 Union(U32 a, U32 b) noexcept { return a + b - (Product(a, b + 1U) >> 8); }

// ---- Functions of single channels in 16-bit lanes ----

/// Applies a function to both lanes of each pixel.
template <class Function> struct Paired {
    GX_INLINE static ChannelPairs Mixed(const ChannelPairs& b, const ChannelPairs& s) noexcept {
        return {Function::Of(b.even, s.even), Function::Of(b.odd, s.odd)};
    }
};

/// x / 255 for x up to 65025.
GX_INLINE inline U16 Divide255(U16 x) noexcept { return (x + 1U + (x >> 8)) >> 8; }

struct Normal {
    GX_INLINE static U16 Of(U16 /*cb*/, U16 cs) noexcept { return cs; }
};
struct Darken {
    GX_INLINE static U16 Of(U16 cb, U16 cs) noexcept { return LowerOf(cb, cs); }
};
struct Lighten {
    GX_INLINE static U16 Of(U16 cb, U16 cs) noexcept { return HigherOf(cb, cs); }
};
struct Difference {
    GX_INLINE static U16 Of(U16 cb, U16 cs) noexcept { return HigherOf(cb, cs) - LowerOf(cb, cs); }
};
struct Multiply {
    GX_INLINE static U16 Of(U16 cb, U16 cs) noexcept { return ((cb + 1U) * cs) >> 8; }
};
struct Screen {
    GX_INLINE static U16 Of(U16 cb, U16 cs) noexcept { return cs + cb - (((cb + 1U) * cs) >> 8); }
};
struct HardLight {
    /// Above 127 the factor is 2 cs - 255 and the quotient is subtracted from the sum; below, the quotient is the
    /// result.
    GX_INLINE static U16 Of(U16 cb, U16 cs) noexcept {
        const U16 light = (U16)((I16)cs > 127);
        const U16 k = cs + cs - (light & 255U);
        const U16 q = Divide255(k * cb);
        return Select((I16)light, cb + k - q, q);
    }
};
struct Overlay {
    GX_INLINE static U16 Of(U16 cb, U16 cs) noexcept { return HardLight::Of(cs, cb); }
};
struct Exclusion {
    /// 2p / 255 with p = cs cb up to 65025: twice p / 255, plus one if twice the remainder reaches 255.
    GX_INLINE static U16 Of(U16 cb, U16 cs) noexcept {
        const U16 p = cs * cb;
        const U16 q = Divide255(p);
        const U16 rest = p - q * 255U;
        const U16 more = (U16)((I16)rest > 127);
        return cs + cb - (q + q - more);
    }
};

// ---- Functions of single channels in 32-bit lanes, for their divisions ----
//
// If a correctly rounded quotient of two integers below 2^24 is truncated, it is the integer quotient as long as the
// gap to the next integer, 1 / divisor, exceeds half a unit in the last place: true for every pair here.

struct Channels32 {
    U32 red, green, blue;
};
GX_INLINE inline Channels32 Widened(const ChannelPairs& x) noexcept {
    return {(U32)x.even >> 16, (U32)x.odd & 0xFFFFU, (U32)x.even & 0xFFFFU};
}
GX_INLINE inline ChannelPairs Paired32(U32 red, U32 green, U32 blue) noexcept {
    return {(U16)(blue | red << 16), (U16)green};
}

template <class Function> struct Wide {
    GX_INLINE static ChannelPairs Mixed(const ChannelPairs& under, const ChannelPairs& source) noexcept {
        const Channels32 b = Widened(under);
        const Channels32 s = Widened(source);
        return Paired32(Function::Of(b.red, s.red), Function::Of(b.green, s.green), Function::Of(b.blue, s.blue));
    }
};

struct ColorBurn {
    GX_INLINE static U32 Of(U32 cb, U32 cs) noexcept {
        const I32 none = IsZero(cs);
        const F32 q = (255.0F - ToFloat(cb)) * 255.0F / ToFloat(Select(none, Splat(1U), cs));
        return Select(none, Splat(0U), 255U - (U32)Truncate(Lower(q, F32{} + 255.0F)));
    }
};
struct ColorDodge {
    /// For cs = 255 the room is 0, so the lane is among those set to 255.
    GX_INLINE static U32 Of(U32 cb, U32 cs) noexcept {
        const U32 room = 255U - cs;
        const I32 below = (I32)cb < (I32)room;
        const U32 q = (U32)Truncate(ToFloat(cb) * 255.0F / ToFloat(Select(below, room, Splat(1U))));
        return Select(below, q, Splat(255U));
    }
};
struct SoftLight {
    GX_INLINE static U32 Of(U32 cb, U32 cs) noexcept {
        const F32 b = ToFloat(cb);
        const F32 s2 = ToFloat(cs + cs);
        const F32 x = b / 255.0F;
        const F32 f = Select(x <= 0.25F, ((16.0F * x - 12.0F) * x + 4.0F) * x, SquareRoot(x));
        const F32 d = ToFloat((U32)Truncate(f * 255.0F));
        const U32 lighter = cb + (U32)Truncate((d - b) * (s2 - 255.0F) / 255.0F);
        const U32 darker = cb - (U32)Truncate((255.0F - s2) * (255.0F - b) * b / 65025.0F);
        return Select((I32)cs > 127, lighter, darker) & 255U;
    }
};

// ---- The modes that act on a colour as a whole; operations in the order of the scalar form ----

struct Rgb {
    F32 r, g, b;
};

GX_INLINE inline Rgb ToRgb(const ChannelPairs& x) noexcept {
    const Channels32 c = Widened(x);
    return {ToFloat(c.red) / 255.0F, ToFloat(c.green) / 255.0F, ToFloat(c.blue) / 255.0F};
}

GX_INLINE inline F32 Lum(const Rgb& c) noexcept { return 0.3F * c.r + 0.59F * c.g + 0.11F * c.b; }

GX_INLINE inline F32 Sat(const ChannelPairs& x) noexcept {
    const Channels32 c = Widened(x);
    const F32 r = ToFloat(c.red);
    const F32 g = ToFloat(c.green);
    const F32 b = ToFloat(c.blue);
    return (Higher(r, Higher(g, b)) - Lower(r, Lower(g, b))) / 255.0F;
}

GX_INLINE inline Rgb SetSat(const Rgb& c, F32 s) noexcept {
    const F32 pairLow = Lower(c.r, c.g);
    const F32 pairHigh = Higher(c.r, c.g);
    const F32 low = Lower(pairLow, c.b);
    const F32 high = Higher(pairHigh, c.b);
    const F32 middle = Higher(pairLow, Lower(pairHigh, c.b));

    const I32 isHighR = (c.r >= c.g) & (c.r >= c.b);
    const I32 isHighG = ~isHighR & (c.g >= c.b);
    const I32 isHighB = ~(isHighR | isHighG);
    const I32 isLowB = (c.b <= c.r) & (c.b <= c.g);
    const I32 isLowG = ~isLowB & (c.g <= c.r);
    const I32 isLowR = ~(isLowB | isLowG);

    const F32 zero = {};
    const I32 grey = high <= low;
    const F32 newHigh = Select(grey, zero, s);
    const F32 newMiddle = (middle - low) * newHigh / Select(grey, zero + 1.0F, high - low);
    return {Select(isHighR, newHigh, Select(isLowR, c.r, newMiddle)),
            Select(isHighG, newHigh, Select(isLowG, c.g, newMiddle)),
            Select(isHighB, newHigh, Select(isLowB, c.b, newMiddle))};
}

GX_INLINE inline Rgb SetLum(Rgb c, F32 l) noexcept {
    const F32 d = l - Lum(c);
    c = {c.r + d, c.g + d, c.b + d};
    const F32 lum = Lum(c);
    const F32 low = Lower(c.r, Lower(c.g, c.b));
    const F32 high = Higher(c.r, Higher(c.g, c.b));
    const I32 under = low < 0.0F;
    const I32 over = high > 1.0F;
    if (!AllSet(~under)) {
        const F32 range = lum - low;
        c = {Select(under, lum + (c.r - lum) * lum / range, c.r), Select(under, lum + (c.g - lum) * lum / range, c.g),
             Select(under, lum + (c.b - lum) * lum / range, c.b)};
    }
    if (!AllSet(~over)) {
        const F32 room = 1.0F - lum;
        const F32 range = high - lum;
        c = {Select(over, lum + (c.r - lum) * room / range, c.r), Select(over, lum + (c.g - lum) * room / range, c.g),
             Select(over, lum + (c.b - lum) * room / range, c.b)};
    }
    return c;
}

GX_INLINE inline U32 ToByte(F32 v) noexcept {
    const F32 positive = Select(v >= 0.0F, v, F32{});
    return (U32)Truncate(Select(v > 1.0F, F32{} + 1.0F, positive) * 255.0F);
}
GX_INLINE inline ChannelPairs ToBytes(const Rgb& c) noexcept { return Paired32(ToByte(c.r), ToByte(c.g), ToByte(c.b)); }

struct Hue {
    GX_INLINE static ChannelPairs Mixed(const ChannelPairs& b, const ChannelPairs& s) noexcept {
        return ToBytes(SetLum(SetSat(ToRgb(s), Sat(b)), Lum(ToRgb(b))));
    }
};
struct Saturation {
    GX_INLINE static ChannelPairs Mixed(const ChannelPairs& b, const ChannelPairs& s) noexcept {
        const Rgb under = ToRgb(b);
        return ToBytes(SetLum(SetSat(under, Sat(s)), Lum(under)));
    }
};
struct HueAndSaturation {
    GX_INLINE static ChannelPairs Mixed(const ChannelPairs& b, const ChannelPairs& s) noexcept {
        return ToBytes(SetLum(ToRgb(s), Lum(ToRgb(b))));
    }
};
struct Luminosity {
    GX_INLINE static ChannelPairs Mixed(const ChannelPairs& b, const ChannelPairs& s) noexcept {
        return ToBytes(SetLum(ToRgb(b), Lum(ToRgb(s))));
    }
};

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
