// SPDX-License-Identifier: MIT
// The verbs of SSE2, which every 64-bit x86 processor has.
#pragma once

#include <emmintrin.h>

#define GX_SIMD_BYTES 16
#include "VectorTypes.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// The next narrower set, and the narrowest one, for rows shorter than a vector.
constexpr InstructionSet kNarrowerSet = InstructionSet::SSE2;
constexpr InstructionSet kNarrowestSet = InstructionSet::SSE2;

// ---- Part of a row; n < kLanes ----

using Word = uint32_t __attribute__((may_alias, aligned(1)));

GX_INLINE inline __m128i WordAt(const uint8_t* p) noexcept {
    return _mm_cvtsi32_si128(static_cast<int>(*reinterpret_cast<const Word*>(p)));
}
GX_INLINE inline U32 JoinWords(const uint8_t* a, const uint8_t* b, const uint8_t* c, const uint8_t* d) noexcept {
    return (U32)_mm_unpacklo_epi64(_mm_unpacklo_epi32(WordAt(a), WordAt(b)), _mm_unpacklo_epi32(WordAt(c), WordAt(d)));
}

/// Loads word by word, because store forwarding then works for any earlier store.

GX_INLINE inline U32 LoadPart(const void* from, size_t n) noexcept {
    const auto* p = static_cast<const uint8_t*>(from);
    __m128i v = _mm_setzero_si128();
    if (n != 0) {
        v = WordAt(p);
    }
    if (n > 1) {
        v = _mm_unpacklo_epi32(v, WordAt(p + 4));
    }
    if (n > 2) {
        v = _mm_unpacklo_epi64(v, WordAt(p + 8));
    }
    return (U32)v;
}
GX_INLINE inline void StorePart(void* to, size_t n, U32 v) noexcept {
    Word* p = static_cast<Word*>(to); // auto would drop the attributes
    if (n != 0) {
        p[0] = v[0];
    }
    if (n > 1) {
        p[1] = v[1];
    }
    if (n > 2) {
        p[2] = v[2];
    }
}

// ---- Bytes to lanes and back ----

GX_INLINE inline U32 WidenWord(uint32_t bytes) noexcept {
    const __m128i zero = _mm_setzero_si128();
    const __m128i halves = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(bytes)), zero);
    return (U32)_mm_unpacklo_epi16(halves, zero);
}
GX_INLINE inline U32 Widen(const uint8_t* p) noexcept {
    uint32_t bytes;
    __builtin_memcpy(&bytes, p, 4);
    return WidenWord(bytes);
}
GX_INLINE inline U32 WidenPart(const uint8_t* p, size_t n) noexcept {
    uint32_t bytes = 0;
    for (size_t i = 0; i < n; ++i) {
        bytes |= static_cast<uint32_t>(p[i]) << (8 * i);
    }
    return WidenWord(bytes);
}
/// Widens kLanes bytes, each copied to all four bytes of its lane.
GX_INLINE inline U32 WidenToAll(const uint8_t* p) noexcept {
    uint32_t bytes;
    __builtin_memcpy(&bytes, p, 4);
    const __m128i v = _mm_cvtsi32_si128(static_cast<int>(bytes));
    const __m128i pairs = _mm_unpacklo_epi8(v, v);
    return (U32)_mm_unpacklo_epi16(pairs, pairs);
}
/// Widens kLanes byte triples; the fourth byte is undefined. Reads kTripleReach bytes.
constexpr size_t kTripleReach = 13;
GX_INLINE inline U32 WidenTriples(const uint8_t* p) noexcept { return JoinWords(p, p + 3, p + 6, p + 9); }

GX_INLINE inline uint32_t NarrowWord(U32 v) noexcept {
    const __m128i halves = _mm_packs_epi32((__m128i)v, (__m128i)v);
    return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(halves, halves)));
}
/// Narrows values up to 255 to a byte each; the first n of them; four vectors.
GX_INLINE inline void Narrow(uint8_t* p, U32 v) noexcept {
    const uint32_t bytes = NarrowWord(v);
    __builtin_memcpy(p, &bytes, 4);
}
GX_INLINE inline void NarrowPart(uint8_t* p, size_t n, U32 v) noexcept {
    const uint32_t bytes = NarrowWord(v);
    for (size_t i = 0; i < n; ++i) {
        p[i] = static_cast<uint8_t>(bytes >> (8 * i));
    }
}
GX_INLINE inline U32 NarrowFour(U32 a, U32 b, U32 c, U32 d) noexcept {
    return (U32)_mm_packus_epi16(_mm_packs_epi32((__m128i)a, (__m128i)b), _mm_packs_epi32((__m128i)c, (__m128i)d));
}
/// True if all kLanes bytes equal v.
GX_INLINE inline bool BytesAre(const uint8_t* p, uint8_t v) noexcept {
    uint32_t bytes;
    __builtin_memcpy(&bytes, p, 4);
    return bytes == v * 0x01010101U;
}

// ---- Lanes of 32 bits ----

GX_INLINE inline uint32_t MaskBits(I32 mask) noexcept { return static_cast<uint32_t>(_mm_movemask_ps((__m128)mask)); }
GX_INLINE inline bool AllSet(I32 mask) noexcept { return _mm_movemask_epi8((__m128i)mask) == 0xFFFF; }
GX_INLINE inline bool AllBelow(U32 a, U32 x, U32 b, U32 y) noexcept {
    return MaskBits((I32)(a < x) & (I32)(b < y)) == 15;
}
GX_INLINE inline F32 Lower(F32 a, F32 b) noexcept { return (F32)_mm_min_ps((__m128)a, (__m128)b); }
GX_INLINE inline F32 Higher(F32 a, F32 b) noexcept { return (F32)_mm_max_ps((__m128)a, (__m128)b); }
GX_INLINE inline F32 SquareRoot(F32 v) noexcept { return (F32)_mm_sqrt_ps((__m128)v); }
GX_INLINE inline I32 Truncate(F32 v) noexcept { return (I32)_mm_cvttps_epi32((__m128)v); }
GX_INLINE inline U16 MultiplyHigh(U16 a, U16 b) noexcept { return (U16)_mm_mulhi_epu16((__m128i)a, (__m128i)b); }
/// The sum of the products of both halves; factors are below 32768.
GX_INLINE inline U32 MultiplyAddPairs(U32 a, U32 b) noexcept { return (U32)_mm_madd_epi16((__m128i)a, (__m128i)b); }
constexpr bool kJoinsByShift = false;
GX_INLINE inline U32 JoinHighBytes(U16 low, U16 high) noexcept { return (U32)(low >> 8 | (high & 0xFF00U)); }
GX_INLINE inline U32 Twice(U32 w) noexcept { return w | w << 16; }

GX_INLINE inline F32 Repeat(const float* four) noexcept { return (F32)_mm_loadu_ps(four); }
GX_INLINE inline U32 Gather(const uint8_t* base, I32 offsets) noexcept {
    return JoinWords(base + offsets[0], base + offsets[1], base + offsets[2], base + offsets[3]);
}
GX_INLINE inline void GatherPairs(const uint8_t* base, I32 offsets, U32& first, U32& second) noexcept {
    const auto two = [&](int i, int j) GX_INLINE {
        const __m128i one = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(base + offsets[i]));
        return _mm_loadh_pi((__m128)one, reinterpret_cast<const __m64*>(base + offsets[j]));
    };
    const __m128 a = two(0, 1);
    const __m128 b = two(2, 3);
    first = (U32)_mm_shuffle_ps(a, b, 0x88);
    second = (U32)_mm_shuffle_ps(a, b, 0xDD);
}
constexpr uint32_t kNearWords = 0;
GX_INLINE inline U32 Pick(const uint8_t*, size_t, I32) noexcept { return U32{}; }
template <class V> GX_INLINE inline V Kept(V v) noexcept {
    __asm__("" : "+x"(v));
    return v;
}

// ---- Lanes of 64 bits ----

GX_INLINE inline U64 Xor3(U64 a, U64 b, U64 c) noexcept { return a ^ b ^ c; }
GX_INLINE inline U64 Majority(U64 a, U64 b, U64 c) noexcept { return (a & b) | (c & (a | b)); }
GX_INLINE inline uint32_t MaskBits(I64 mask) noexcept { return static_cast<uint32_t>(_mm_movemask_pd((__m128d)mask)); }
GX_INLINE inline F64 Masked(I64 mask, F64 v) noexcept { return (F64)_mm_and_pd((__m128d)mask, (__m128d)v); }
GX_INLINE inline F64 Lower(F64 a, F64 b) noexcept { return (F64)_mm_min_pd((__m128d)a, (__m128d)b); }
GX_INLINE inline F64 Higher(F64 a, F64 b) noexcept { return (F64)_mm_max_pd((__m128d)a, (__m128d)b); }
GX_INLINE inline U64 BitCount(U64 bits) noexcept {
    const __m128i m1 = _mm_set1_epi8(0x55);
    const __m128i m2 = _mm_set1_epi8(0x33);
    const __m128i m4 = _mm_set1_epi8(0x0F);
    auto v = (__m128i)bits;
    v = _mm_sub_epi8(v, _mm_and_si128(_mm_srli_epi64(v, 1), m1));
    v = _mm_add_epi8(_mm_and_si128(v, m2), _mm_and_si128(_mm_srli_epi64(v, 2), m2));
    v = _mm_and_si128(_mm_add_epi8(v, _mm_srli_epi64(v, 4)), m4);
    return (U64)_mm_sad_epu8(v, _mm_setzero_si128());
}
/// Two vectors of counts to four 32-bit lanes; eight 16-bit counts to their coverage bytes.
GX_INLINE inline __m128i Lows(U64 a, U64 b) noexcept { return (__m128i)_mm_shuffle_ps((__m128)a, (__m128)b, 0x88); }
GX_INLINE inline void StoreShape(uint8_t* out, const U64* c) noexcept {
    const __m128i n = _mm_packs_epi32(Lows(c[0], c[1]), Lows(c[2], c[3]));
    const __m128i shape = _mm_subs_epu16(_mm_slli_epi16(n, 2), _mm_set1_epi16(1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(shape, shape));
}

GX_INLINE inline uint32_t NonZeroBytes(const U64* v) noexcept {
    const __m128i zero = _mm_setzero_si128();
    __m128i zeros = zero; // -1 for each zero byte
    for (int i = 0; i < 4; ++i) {
        zeros = _mm_add_epi8(zeros, _mm_cmpeq_epi8((__m128i)v[i], zero));
    }
    const __m128i sums = _mm_sad_epu8(_mm_sub_epi8(zero, zeros), zero);
    return 64U - static_cast<uint32_t>(_mm_cvtsi128_si32(sums) + _mm_extract_epi16(sums, 4));
}
GX_INLINE inline U64 SpreadLastBytes(U64 v) noexcept {
    const __m128i last = _mm_srli_epi64((__m128i)v, 56);
    const __m128i two = _mm_or_si128(last, _mm_slli_epi64(last, 8));
    return (U64)_mm_shufflehi_epi16(_mm_shufflelo_epi16(two, 0), 0);
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
