// SPDX-License-Identifier: MIT
// The verbs in plain C++ on vectors of 16 bytes: the reference for every other set's verbs. Kernels whose scalar form
// is not written with vectors need no more than these; the other sets also have the verbs of VectorsSSE2.h.
#pragma once

#define GX_SIMD_BYTES 16
#include "VectorTypes.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

// ---- Part of a row ----

/// The first n < kLanes words, then zeros.
GX_INLINE inline U32 LoadPart(const void* p, size_t n) noexcept {
    U32 v{};
    __builtin_memcpy(&v, p, n * 4);
    return v;
}
GX_INLINE inline void StorePart(void* p, size_t n, U32 v) noexcept { __builtin_memcpy(p, &v, n * 4); }

/// Widens the first n bytes, then zeros; widens kLanes bytes.
GX_INLINE inline U32 WidenPart(const uint8_t* p, size_t n) noexcept {
    U32 v{};
    for (size_t i = 0; i < n; ++i) {
        v[i] = p[i];
    }
    return v;
}
GX_INLINE inline U32 Widen(const uint8_t* p) noexcept { return WidenPart(p, kLanes); }

// ---- Lanes of 32 bits ----

/// One bit for each lane of a mask.
GX_INLINE inline uint32_t MaskBits(I32 mask) noexcept {
    return (mask[0] & 1U) | (mask[1] & 2U) | (mask[2] & 4U) | (mask[3] & 8U);
}
GX_INLINE inline bool AllSet(I32 mask) noexcept { return MaskBits(mask) == 15; }
/// True when a < x and b < y in all lanes.
GX_INLINE inline bool AllBelow(U32 a, U32 x, U32 b, U32 y) noexcept {
    return MaskBits((I32)(a < x) & (I32)(b < y)) == 15;
}

/// The lower and the higher of two; b if one is NaN.
GX_INLINE inline F32 Lower(F32 a, F32 b) noexcept { return a < b ? a : b; }
GX_INLINE inline F32 Higher(F32 a, F32 b) noexcept { return a > b ? a : b; }
/// Correctly rounded.
GX_INLINE inline F32 SquareRoot(F32 v) noexcept {
    for (size_t i = 0; i < kLanes; ++i) {
        v[i] = __builtin_sqrtf(v[i]);
    }
    return v;
}
/// Truncates; INT32_MIN for values outside the integers and NaN.
GX_INLINE inline I32 Truncate(F32 v) noexcept {
    I32 r{};
    for (size_t i = 0; i < kLanes; ++i) {
        r[i] = v[i] >= -2147483648.0F && v[i] < 2147483648.0F ? static_cast<int32_t>(v[i]) : INT32_MIN;
    }
    return r;
}
/// The high halves of the products.
GX_INLINE inline U16 MultiplyHigh(U16 a, U16 b) noexcept {
    for (size_t i = 0; i < kLanes * 2; ++i) {
        a[i] = static_cast<uint16_t>(static_cast<uint32_t>(a[i]) * b[i] >> 16);
    }
    return a;
}
/// The high byte of each half of `low` below that of `high`. kJoinsByShift: that is one instruction, and so is Twice.
constexpr bool kJoinsByShift = false;
GX_INLINE inline U32 JoinHighBytes(U16 low, U16 high) noexcept { return (U32)(low >> 8 | (high & 0xFF00U)); }
/// Copies words below 65536 to both halves.
GX_INLINE inline U32 Twice(U32 w) noexcept { return w | w << 16; }

/// Four floats, repeated.
GX_INLINE inline F32 Repeat(const float* four) noexcept {
    F32 v;
    __builtin_memcpy(&v, four, sizeof v);
    return v;
}
/// The words at base + offsets; offsets are in bytes.
GX_INLINE inline U32 Gather(const uint8_t* base, I32 offsets) noexcept {
    U32 r{};
    for (size_t i = 0; i < kLanes; ++i) {
        uint32_t word;
        __builtin_memcpy(&word, base + offsets[i], 4);
        r[i] = word;
    }
    return r;
}
/// The words at base + offsets, and the words that follow each.
GX_INLINE inline void GatherPairs(const uint8_t* base, I32 offsets, U32& first, U32& second) noexcept {
    first = Gather(base, offsets);
    second = Gather(base + 4, offsets);
}
/// words[at] for `at` below `known`, which is at least 1, and 0 beyond; all `at` are below kNearWords. 0: the set has
/// no lookup in registers.
constexpr uint32_t kNearWords = 0;
GX_INLINE inline U32 Pick(const uint8_t*, size_t, I32) noexcept { return U32{}; }

/// Keeps a constant in its register through a loop; the compiler would rebuild it for every block.
template <class V> GX_INLINE inline V Kept(V v) noexcept { return v; }

// ---- Lanes of 64 bits ----

GX_INLINE inline U64 Xor3(U64 a, U64 b, U64 c) noexcept { return a ^ b ^ c; }
/// The bits set in at least two of the three.
GX_INLINE inline U64 Majority(U64 a, U64 b, U64 c) noexcept { return (a & b) | (c & (a | b)); }
/// One bit for each lane of a mask; v where the mask is set, else 0; the lower and the higher of two, b if one is NaN.
GX_INLINE inline uint32_t MaskBits(I64 mask) noexcept { return static_cast<uint32_t>((mask[0] & 1) | (mask[1] & 2)); }
GX_INLINE inline F64 Masked(I64 mask, F64 v) noexcept { return (F64)(mask & (I64)v); }
GX_INLINE inline F64 Lower(F64 a, F64 b) noexcept { return a < b ? a : b; }
GX_INLINE inline F64 Higher(F64 a, F64 b) noexcept { return a > b ? a : b; }
/// The number of bits of each lane, in a form that StoreShape takes.
GX_INLINE inline U64 BitCount(U64 v) noexcept {
    return U64{static_cast<uint64_t>(__builtin_popcountll(v[0])), static_cast<uint64_t>(__builtin_popcountll(v[1]))};
}
/// The coverage bytes of eight pixels from their sample counts n: 4 n - 1, and 0 for n = 0.
GX_INLINE inline void StoreShape(uint8_t* out, const U64* counts) noexcept {
    for (size_t i = 0; i < 8; ++i) {
        const uint64_t n = counts[i / kLongLanes][i % kLongLanes];
        out[i] = static_cast<uint8_t>(n * 4 - (n != 0 ? 1 : 0));
    }
}

/// The number of bytes of a row of eight lanes that are not 0.
GX_INLINE inline uint32_t NonZeroBytes(const U64* v) noexcept {
    uint32_t count = 0;
    for (size_t i = 0; i < 8; ++i) {
        uint64_t word = v[i / kLongLanes][i % kLongLanes];
        word |= word >> 4;
        word |= word >> 2;
        word |= word >> 1;
        count += static_cast<uint32_t>((word & 0x0101010101010101U) * 0x0101010101010101U >> 56);
    }
    return count;
}
/// Copies the highest byte of each lane to all of its bytes.
GX_INLINE inline U64 SpreadLastBytes(U64 v) noexcept { return (v >> 56) * uint64_t{0x0101010101010101U}; }

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
