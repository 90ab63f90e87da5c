// SPDX-License-Identifier: MIT
// Arithmetic on the channels of pixels. A pixel is one lane of 32 bits. Channels are multiplied in lanes of 16 bits,
// two per pixel: a byte times a factor up to 256 fits, and shifts stay inside their lane. If a channel lies in the high
// byte of its half, the high half of its product with a factor is (channel * factor) >> 8. Where high halves are dear and
// joins are cheap (kJoinsByShift), a channel lies in the low byte instead, and its result is the product's high byte.
#pragma once

#include "Vectors.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

inline constexpr uint32_t kColors = 0x00FFFFFFU;
inline constexpr uint32_t kAlpha = 0xFF000000U;

GX_INLINE inline U32 Alpha(U32 x) noexcept { return x >> 24; }

/// Copies a byte or factor of each pixel to both halves.
GX_INLINE inline U32 Spread(U32 v) noexcept { return kJoinsByShift ? Twice(v) : v | v << 16; }

/// Factors for Scale from a byte v: v + 1, and 256 - v.
GX_INLINE inline U32 FactorOf(U32 v) noexcept { return Spread(v) + 0x00010001U; }
GX_INLINE inline U32 ComplementOf(U32 v) noexcept { return 0x01000100U - Spread(v); }
/// ComplementOf(Alpha(x)).
GX_INLINE inline U32 ComplementOfAlpha(U32 x) noexcept { return 0x01000100U - AlphaTwice(x); }

/// Blue and red, or green and alpha, in the bytes of the halves that Part takes them from.
GX_INLINE inline U16 Even(U32 c) noexcept { return kJoinsByShift ? (U16)c & 0x00FFU : (U16)c << 8; }
GX_INLINE inline U16 Odd(U32 c) noexcept { return kJoinsByShift ? (U16)c >> 8 : (U16)c & 0xFF00U; }
/// (channel * k) >> 8 in the low bytes of the halves.
GX_INLINE inline U16 Part(U16 channel, U16 k) noexcept {
    return kJoinsByShift ? (channel * k) >> 8 : MultiplyHigh(channel, k);
}

/// (channel * k) >> 8 for each channel; k is spread.
GX_INLINE inline U32 Scale(U32 x, U32 k) noexcept {
    if constexpr (kJoinsByShift) {
        return JoinHighBytes(Even(x) * (U16)k, Odd(x) * (U16)k);
    }
    const U16 even = MultiplyHigh(Even(x), (U16)k);
    const U16 odd = (((U16)x >> 8) * (U16)k) & 0xFF00U;
    return (U32)(even | odd);
}

/// The channels of pixels, each in a lane of 16 bits of its own: blue and red, and green and alpha.
struct ChannelPairs {
    U16 even, odd;
};

GX_INLINE inline ChannelPairs Split(U32 x) noexcept { return {(U16)(x & 0x00FF00FFU), (U16)x >> 8}; }
GX_INLINE inline U32 Join(const ChannelPairs& x) noexcept { return (U32)(x.even | x.odd << 8); }

/// Scale of channels that are split already.
GX_INLINE inline U32 Scale(const ChannelPairs& x, U32 k) noexcept {
    if constexpr (kJoinsByShift) {
        return JoinHighBytes(x.even * (U16)k, x.odd * (U16)k);
    }
    return (U32)((x.even * (U16)k) >> 8 | ((x.odd * (U16)k) & 0xFF00U));
}

/// Straight to premultiplied: colour * (a + 1) >> 8.
GX_INLINE inline U32 Premultiply(U32 x) noexcept { return (Scale(x, FactorOf(Alpha(x))) & kColors) | (x & kAlpha); }

/// a * (257 - w) / 256 + b * w / 256; the weight is spread.
GX_INLINE inline U32 Mix(U16 evenA, U16 oddA, U16 evenB, U16 oddB, U32 weight) noexcept {
    const auto w = (U16)weight;
    const U16 rest = 257U - w;
    const U16 even = Part(evenA, rest) + Part(evenB, w);
    const U16 odd = Part(oddA, rest) + Part(oddB, w);
    return (U32)(even | odd << 8);
}
GX_INLINE inline U32 Mix(U32 a, U32 b, U32 weight) noexcept { return Mix(Even(a), Odd(a), Even(b), Odd(b), weight); }

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
