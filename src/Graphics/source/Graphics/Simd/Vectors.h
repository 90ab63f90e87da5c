// SPDX-License-Identifier: MIT
// The one vector layer of all kernels: the verbs of the set, which the language cannot express, and the code common to
// all sets. To add a set: a verb file, a name in InstructionSets and in GX_EACH_SET, and a line in CMakeLists.txt.
#pragma once

#include <utility>

#define GX_SIMD_FILE_NAME(set) Vectors##set.h
#define GX_SIMD_FILE(set) GX_SIMD_FILE_NAME(set)
#define GX_SIMD_TEXT_OF(...) #__VA_ARGS__
#define GX_SIMD_TEXT(...) GX_SIMD_TEXT_OF(__VA_ARGS__)
#include GX_SIMD_TEXT(GX_SIMD_FILE(GX_SIMD))

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

// ---- Rows ----
//
// n is kLanes except at the end of a row, so one code path serves blocks and tails.

template <class V = U32> GX_INLINE inline V Load(const void* p) noexcept {
    V v;
    __builtin_memcpy(&v, p, sizeof v);
    return v;
}
template <class V> GX_INLINE inline void Store(void* p, V v) noexcept { __builtin_memcpy(p, &v, sizeof v); }

/// The first n words, then zeros.
template <class V = U32> GX_INLINE inline V LoadSome(const void* p, size_t n) noexcept {
    if (n == kLanes) [[likely]] {
        return Load<V>(p);
    }
    return (V)LoadPart(p, n);
}
template <class V> GX_INLINE inline void StoreSome(void* p, size_t n, V v) noexcept {
    if (n == kLanes) [[likely]] {
        Store(p, v);
        return;
    }
    StorePart(p, n, (U32)v);
}

/// The first n bytes, each widened to a word, then zeros.
GX_INLINE inline U32 WidenSome(const uint8_t* p, size_t n) noexcept { return n == kLanes ? Widen(p) : WidenPart(p, n); }

/// Calls step(i, n) along a row; the last block may be short.
template <class Step> GX_INLINE inline void ForBlocks(size_t count, Step&& step) noexcept {
    size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        step(i, kLanes);
    }
    if (i < count) {
        step(i, count - i);
    }
}

/// ForBlocks for long bodies: the body is instantiated only once.
template <class Step> GX_INLINE inline void ForBlocksOnce(size_t count, Step&& step) noexcept {
    for (size_t i = 0; i < count; i += kLanes) {
        step(i, count - i < kLanes ? count - i : kLanes);
    }
}

// ---- Lanes of 32 bits ----

GX_INLINE inline U32 Splat(uint32_t v) noexcept { return U32{} + v; }
GX_INLINE inline F32 Splat(float v) noexcept { return v - F32{}; }
/// 0, 1, 2, ...
GX_INLINE inline U32 Ascending() noexcept {
    U32 v{};
    for (uint32_t i = 0; i < kLanes; ++i) {
        v[i] = i;
    }
    return v;
}

GX_INLINE inline U32 Select(I32 mask, U32 yes, U32 no) noexcept { return mask ? yes : no; }
GX_INLINE inline I32 Select(I32 mask, I32 yes, I32 no) noexcept { return mask ? yes : no; }
GX_INLINE inline F32 Select(I32 mask, F32 yes, F32 no) noexcept { return mask ? yes : no; }
GX_INLINE inline U16 Select(I16 mask, U16 yes, U16 no) noexcept { return mask ? yes : no; }

GX_INLINE inline I32 IsZero(U32 v) noexcept { return v == 0U; }
GX_INLINE inline F32 ToFloat(U32 v) noexcept { return __builtin_convertvector((I32)v, F32); }

// ---- Lanes of 64 bits ----

GX_INLINE inline U64 LongAscending() noexcept {
    U64 v{};
    for (uint32_t i = 0; i < kLongLanes; ++i) {
        v[i] = i;
    }
    return v;
}

/// The last N lanes of `below`, then the first lanes of v: moves lanes up by N.
template <size_t N, size_t... kLane>
GX_INLINE inline U64 Moved(U64 v, U64 below, std::index_sequence<kLane...>) noexcept {
    return __builtin_shufflevector(below, v, (kLongLanes - N + kLane)...);
}
template <size_t N> GX_INLINE inline U64 MovedUp(U64 v, U64 below) noexcept {
    return Moved<N>(v, below, std::make_index_sequence<kLongLanes>());
}
/// Copies the last lane to all lanes.
template <size_t... kLane> GX_INLINE inline U64 LastOf(U64 v, std::index_sequence<kLane...>) noexcept {
    return __builtin_shufflevector(v, v, (kLane * 0 + kLongLanes - 1)...);
}
GX_INLINE inline U64 Last(U64 v) noexcept { return LastOf(v, std::make_index_sequence<kLongLanes>()); }

#if GX_SIMD_BYTES == 16 && !defined(GX_SIMD_QUADS)
/// The highest byte of each pixel in all its bytes.
GX_INLINE inline U32 AlphaBytes(U32 x) noexcept {
    const U32 two = x >> 24 | (x >> 24) << 8;
    return two | two << 16;
}
/// The highest byte of each pixel in both halves.
GX_INLINE inline U32 AlphaTwice(U32 x) noexcept { return x >> 24 | (x >> 24) << 16; }
/// Twice, of any words.
GX_INLINE inline U32 LowHalfTwice(U32 w) noexcept { return (w & 0xFFFFU) | w << 16; }
#else
GX_INLINE inline U32 LowHalfTwice(U32 w) noexcept { return Twice(w); }
#endif
#if GX_SIMD_BYTES != 64
/// Whether a == b < limit in every lane.
GX_INLINE inline bool AllEqualBelow(U32 a, U32 b, U32 limit) noexcept {
    return AllSet((I32)(a == b) & (I32)(a < limit));
}
/// Whether every alpha is 255, or 0.
GX_INLINE inline bool AllOpaque(U32 pixels) noexcept { return AllSet((I32)((pixels >> 24) == 255U)); }
GX_INLINE inline bool AllClear(U32 pixels) noexcept { return AllSet((I32)((pixels >> 24) == 0U)); }
/// m with 0 <= m - 255 * 65536 / v < 65536 / v^2 for v from 1 to 255. The rounded quotient is never below an integer that
/// the exact one reaches, and above it by so little that one more stays in the bound.
GX_INLINE inline U32 ByteReciprocal(U32 v) noexcept { return (U32)Truncate(16711680.0F / ToFloat(v)) + 1U; }
#ifndef GX_SIMD_QUADS
/// For -256 < v < 256; of other values the result is outside of that, too. v is rounded to a multiple of 2^-15 first.
GX_INLINE inline I32 Floor(F32 v) noexcept { return (I32)((U32)Truncate(v + 256.0F) - 256U); }
#endif
/// The bits of `yes` where the mask has a one, of `no` elsewhere.
GX_INLINE inline U64 SelectBits(U64 mask, U64 yes, U64 no) noexcept { return (yes & mask) | (no & ~mask); }
/// a | (b ^ c)
GX_INLINE inline U64 OrXor(U64 a, U64 b, U64 c) noexcept { return a | (b ^ c); }
/// Bytes of all ones where bit J of the byte -v is set; J < 4.
template <int J> GX_INLINE inline U64 BitsOfNegative(U8 v) noexcept {
    return (U64)((I8)((U64)(U8{} - v) << (7 - J)) < 0);
}
#endif

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
