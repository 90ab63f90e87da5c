// SPDX-License-Identifier: MIT
// The vector types of one instruction set and the arithmetic that is the same text in all of them.
//
// A set's source defines GX_KERNEL_NAMESPACE and GX_KERNEL_BYTES (the register's size) before it includes this file, so
// that no inline function compiled for one processor can be linked into code for another. It then supplies, in the same
// namespace, what the language cannot express: loads and stores of part of a row, bytes to lanes and back, high halves
// of products, estimates of reciprocals, square root, and the test of a mask. SwKernelsLoops.h builds the kernels from
// both.
//
// A pixel is one 32-bit lane. Channels are multiplied in 16-bit lanes, two to a pixel: a byte times a factor up to 256
// fits, and both shifts stay inside their lane.
#pragma once

#include <cstddef>
#include <cstdint>

#include "SwKernelSets.h"

#define GX_INLINE static inline __attribute__((always_inline))

namespace Graphics::GX_KERNEL_NAMESPACE {

using U32 = uint32_t __attribute__((vector_size(GX_KERNEL_BYTES)));
using I32 = int32_t __attribute__((vector_size(GX_KERNEL_BYTES)));
using F32 = float __attribute__((vector_size(GX_KERNEL_BYTES)));
using U16 = uint16_t __attribute__((vector_size(GX_KERNEL_BYTES)));
using I16 = int16_t __attribute__((vector_size(GX_KERNEL_BYTES)));
using U8 = uint8_t __attribute__((vector_size(GX_KERNEL_BYTES)));

inline constexpr size_t kLanes = GX_KERNEL_BYTES / 4;

GX_INLINE U32 Splat(uint32_t v) noexcept { return U32{} + v; }

GX_INLINE U32 Select(I32 mask, U32 yes, U32 no) noexcept { return mask ? yes : no; }
GX_INLINE F32 Select(I32 mask, F32 yes, F32 no) noexcept { return mask ? yes : no; }
GX_INLINE U16 Select(I16 mask, U16 yes, U16 no) noexcept { return mask ? yes : no; }

GX_INLINE F32 ToFloat(U32 v) noexcept { return __builtin_convertvector((I32)v, F32); }
GX_INLINE U32 Truncate(F32 v) noexcept { return (U32) __builtin_convertvector(v, I32); }
GX_INLINE F32 Lower(F32 a, F32 b) noexcept { return a < b ? a : b; }
GX_INLINE F32 Higher(F32 a, F32 b) noexcept { return a > b ? a : b; }

GX_INLINE U32 LowerBytes(U32 a, U32 b) noexcept {
    const U8 x = (U8)a;
    const U8 y = (U8)b;
    return (U32)(x < y ? x : y);
}
GX_INLINE U32 HigherBytes(U32 a, U32 b) noexcept {
    const U8 x = (U8)a;
    const U8 y = (U8)b;
    return (U32)(x > y ? x : y);
}
/// Each byte a - b, at least 0.
GX_INLINE U32 SubtractClamped(U32 a, U32 b) noexcept { return (U32)((U8)a - (U8)LowerBytes(a, b)); }

GX_INLINE U32 Alpha(U32 x) noexcept { return x >> 24; }
GX_INLINE I32 IsZero(U32 v) noexcept { return v == 0U; }

/// A byte or factor of each pixel in both 16-bit lanes; and a byte in all four bytes.
GX_INLINE U32 Spread(U32 v) noexcept { return v | v << 16; }
GX_INLINE U32 SpreadBytes(U32 v) noexcept {
    const U32 two = Spread(v);
    return two | two << 8;
}

/// Factors for Scale from a byte v: v + 1, and 256 - v.
GX_INLINE U32 FactorOf(U32 v) noexcept { return Spread(v) + 0x00010001U; }
GX_INLINE U32 ComplementOf(U32 v) noexcept { return 0x01000100U - Spread(v); }

/// The high halves of the products.
GX_INLINE U16 MultiplyHigh(U16 a, U16 b) noexcept;

/// Each channel (channel * k) >> 8, the factor spread: 256 channel k >> 16 for the even ones, whose shift to the top of
/// the lane drops the odd ones.
GX_INLINE U32 Scale(U32 x, U32 k) noexcept {
    const U16 even = MultiplyHigh((U16)x << 8, (U16)k);
    const U16 odd = (((U16)x >> 8) * (U16)k) & 0xFF00U;
    return (U32)(even | odd);
}

/// Each byte (byte * (m + 1)) >> 8 by the byte m of the same place.
GX_INLINE U32 ScaleBytes(U32 x, U32 m) noexcept {
    const U16 even = ((U16)(x & 0x00FF00FFU) * ((U16)(m & 0x00FF00FFU) + 1U)) >> 8;
    const U16 odd = (((U16)x >> 8) * (((U16)m >> 8) + 1U)) & 0xFF00U;
    return (U32)(even | odd);
}

/// Products below 65536 of the low halves, the high halves 0.
GX_INLINE U32 Product(U32 a, U32 b) noexcept { return (U32)((U16)a * (U16)b); }
/// a + b - ab on bytes.
GX_INLINE U32 Union(U32 a, U32 b) noexcept { return a + b - (Product(a, b + 1U) >> 8); }

/// 1 / v up to a relative error of 2^-11, whatever the processor; v from 1 to 255.
GX_INLINE F32 EstimateReciprocal(F32 v) noexcept;

/// min(byte, v) * 255 / v for the four bytes, v a byte of each pixel; 0 where v is 0.
///
/// One Newton step, r (2 - v r), squares the error e of the estimate: with the roundings the reciprocal is right to
/// 2^-22 + 2^-22, and (255 r) * byte, at most 255, errs by less than 255 * 2^-20 = 0.00025. A quotient that is no
/// integer stays at least 1/255 = 0.0039 below the next one. So with 0.001 added, truncation gives the integer quotient
/// for every pair.
GX_INLINE U32 DivideBytes(U32 x, U32 v, U32 keepMask) noexcept {
    const U32 low = LowerBytes(x, SpreadBytes(v));
    const F32 divisor = ToFloat(Select(IsZero(v), Splat(1), v));
    const F32 estimate = EstimateReciprocal(divisor);
    const F32 factor = 255.0F * (estimate * (2.0F - divisor * estimate));
    const U32 blue = Truncate(ToFloat(low & 255U) * factor + 0.001F);
    const U32 green = Truncate(ToFloat(low >> 8 & 255U) * factor + 0.001F);
    const U32 red = Truncate(ToFloat(low >> 16 & 255U) * factor + 0.001F);
    const U32 alpha = Truncate(ToFloat(low >> 24) * factor + 0.001F);
    return ((blue | green << 8 | red << 16 | alpha << 24) & ~keepMask) | (x & keepMask);
}

/// Straight colours of premultiplied pixels; alpha 0 leaves a pixel.
GX_INLINE U32 Unpremultiply(U32 x) noexcept {
    const U32 a = Alpha(x);
    return Select(IsZero(a), x, DivideBytes(x, a, Splat(0xFF000000U)));
}

} // namespace Graphics::GX_KERNEL_NAMESPACE
