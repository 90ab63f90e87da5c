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

/// Bytes of a pixel divided by one of them: min(byte, v) * 255 / v; undefined if v is 0.
///
/// 255 / v and its product with a byte, at most 255, are each rounded by at most 2^-24 of their value, and so is the
/// sum below: together less than 255 * 2^-22 = 0.00007. A quotient that is no integer is at least 1/255 = 0.0039 below
/// the next integer. So with 0.001 added, truncation gives the integer quotient for every pair.
class DividedBytes {
public:
    GX_INLINE DividedBytes(U32 x, U32 v) noexcept
        : m_low(LowerBytes(x, SpreadBytes(v))), m_factor(255.0F / ToFloat(v)) {}

    /// The lowest three bytes; the highest is 0.
    GX_INLINE U32 Colors() const noexcept {
        return Quotient(m_low & 255U) | Quotient(m_low >> 8 & 255U) << 8 | Quotient(m_low >> 16 & 255U) << 16;
    }
    GX_INLINE U32 All() const noexcept { return Colors() | Quotient(m_low >> 24) << 24; }

private:
    GX_INLINE U32 Quotient(U32 byte) const noexcept { return (U32)Truncate(ToFloat(byte) * m_factor + 0.001F); }

    U32 m_low;
    F32 m_factor;
};

/// Straight colours of premultiplied pixels, min(colour, a) * 255 / a; a pixel of alpha 0 stays as it is.
GX_INLINE inline U32 Unpremultiply(U32 x) noexcept {
    const U32 a = Alpha(x);
    return Select(IsZero(a), x, DividedBytes(x, a).Colors() | (x & kAlpha));
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
