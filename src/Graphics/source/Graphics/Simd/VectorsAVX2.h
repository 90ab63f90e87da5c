// SPDX-License-Identifier: MIT
// The verbs of AVX2; see VectorsPlain.h and VectorsSSE2.h for what they do.
#pragma once

#include <immintrin.h>

#define GX_SIMD_BYTES 32
#include "VectorTypes.h"

#include "PixelPairs.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// The next narrower set, and the narrowest one, for rows shorter than a vector.
constexpr InstructionSet kNarrowerSet = InstructionSet::SSE2;
constexpr InstructionSet kNarrowestSet = InstructionSet::SSE2;

// ---- Part of a row ----

GX_INLINE inline __m256i FirstLanes(size_t n) noexcept {
    return _mm256_cmpgt_epi32(_mm256_set1_epi32(static_cast<int>(n)), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
}
GX_INLINE inline U32 LoadPart(const void* p, size_t n) noexcept {
    return (U32)_mm256_maskload_epi32(static_cast<const int*>(p), FirstLanes(n));
}
GX_INLINE inline void StorePart(void* p, size_t n, U32 v) noexcept {
    _mm256_maskstore_epi32(static_cast<int*>(p), FirstLanes(n), (__m256i)v);
}

// ---- Bytes to lanes and back ----

GX_INLINE inline U32 WidenWord(uint64_t bytes) noexcept {
    return (U32)_mm256_cvtepu8_epi32(_mm_cvtsi64_si128(static_cast<long long>(bytes)));
}
GX_INLINE inline U32 Widen(const uint8_t* p) noexcept {
    return (U32)_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}
GX_INLINE inline U32 WidenPart(const uint8_t* p, size_t n) noexcept {
    uint64_t bytes = 0;
    if (n >= 4) { // two words that overlap
        uint32_t first;
        uint32_t last;
        __builtin_memcpy(&first, p, 4);
        __builtin_memcpy(&last, p + n - 4, 4);
        bytes = first | static_cast<uint64_t>(last) << (8 * (n - 4));
    } else {
        for (size_t i = 0; i < n; ++i) {
            bytes |= static_cast<uint64_t>(p[i]) << (8 * i);
        }
    }
    return WidenWord(bytes);
}
GX_INLINE inline U32 WidenToAll(const uint8_t* p) noexcept {
    const __m256i order = _mm256_setr_epi8(0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12, //
                                           0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12);
    return (U32)_mm256_shuffle_epi8((__m256i)Widen(p), order);
}
constexpr size_t kTripleReach = 28;
GX_INLINE inline U32 WidenTriples(const uint8_t* p) noexcept {
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 12));
    const __m256i both = _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
    const __m256i order = _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, //
                                           0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1);
    return (U32)_mm256_shuffle_epi8(both, order);
}

GX_INLINE inline uint64_t NarrowWord(U32 v) noexcept {
    const __m128i low = _mm256_castsi256_si128((__m256i)v);
    const __m128i high = _mm256_extracti128_si256((__m256i)v, 1);
    const __m128i halves = _mm_packs_epi32(low, high);
    return static_cast<uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(halves, halves)));
}
GX_INLINE inline void Narrow(uint8_t* p, U32 v) noexcept {
    const uint64_t bytes = NarrowWord(v);
    __builtin_memcpy(p, &bytes, 8);
}
GX_INLINE inline void NarrowPart(uint8_t* p, size_t n, U32 v) noexcept {
    const uint64_t bytes = NarrowWord(v);
    for (size_t i = 0; i < n; ++i) {
        p[i] = static_cast<uint8_t>(bytes >> (8 * i));
    }
}
/// The packs work within each half; the last step restores the order of the groups of four.
GX_INLINE inline U32 NarrowFour(U32 a, U32 b, U32 c, U32 d) noexcept {
    const __m256i mixed =
        _mm256_packus_epi16(_mm256_packs_epi32((__m256i)a, (__m256i)b), _mm256_packs_epi32((__m256i)c, (__m256i)d));
    return (U32)_mm256_permutevar8x32_epi32(mixed, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}
GX_INLINE inline bool BytesAre(const uint8_t* p, uint8_t v) noexcept {
    uint64_t bytes;
    __builtin_memcpy(&bytes, p, 8);
    return bytes == v * 0x0101010101010101U;
}

// ---- Lanes of 32 bits ----

GX_INLINE inline uint32_t MaskBits(I32 mask) noexcept {
    return static_cast<uint32_t>(_mm256_movemask_ps((__m256)mask));
}
GX_INLINE inline bool AllSet(I32 mask) noexcept { return _mm256_movemask_epi8((__m256i)mask) == -1; }
GX_INLINE inline bool AllBelow(U32 a, U32 x, U32 b, U32 y) noexcept {
    return MaskBits((I32)(a < x) & (I32)(b < y)) == 255;
}
GX_INLINE inline F32 Lower(F32 a, F32 b) noexcept { return (F32)_mm256_min_ps((__m256)a, (__m256)b); }
GX_INLINE inline F32 Higher(F32 a, F32 b) noexcept { return (F32)_mm256_max_ps((__m256)a, (__m256)b); }
GX_INLINE inline F32 SquareRoot(F32 v) noexcept { return (F32)_mm256_sqrt_ps((__m256)v); }
GX_INLINE inline I32 Truncate(F32 v) noexcept { return (I32)_mm256_cvttps_epi32((__m256)v); }
GX_INLINE inline U16 MultiplyHigh(U16 a, U16 b) noexcept { return (U16)_mm256_mulhi_epu16((__m256i)a, (__m256i)b); }
GX_INLINE inline U32 MultiplyAddPairs(U32 a, U32 b) noexcept { return (U32)_mm256_madd_epi16((__m256i)a, (__m256i)b); }
constexpr bool kJoinsByShift = false;
GX_INLINE inline U32 JoinHighBytes(U16 low, U16 high) noexcept { return (U32)(low >> 8 | (high & 0xFF00U)); }
GX_INLINE inline U32 Twice(U32 w) noexcept {
    const __m256i order = _mm256_setr_epi8(0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8, 9, 12, 13, 12, 13, //
                                           0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8, 9, 12, 13, 12, 13);
    return (U32)_mm256_shuffle_epi8((__m256i)w, order);
}
GX_INLINE inline U32 AlphaBytes(U32 x) noexcept {
    const __m256i order = _mm256_setr_epi8(3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15, //
                                           3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15);
    return (U32)_mm256_shuffle_epi8((__m256i)x, order);
}
GX_INLINE inline U32 AlphaTwice(U32 x) noexcept {
    const __m256i order = _mm256_setr_epi8(3, -1, 3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1, //
                                           3, -1, 3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1);
    return (U32)_mm256_shuffle_epi8((__m256i)x, order);
}

GX_INLINE inline F32 Repeat(const float* four) noexcept {
    return (F32)_mm256_broadcast_ps(reinterpret_cast<const __m128*>(four));
}
GX_INLINE inline U32 Gather(const uint8_t* base, I32 offsets) noexcept {
    return (U32)_mm256_i32gather_epi32(reinterpret_cast<const int*>(base), (__m256i)offsets, 1);
}
/// Shuffles stay in their 128-bit quarters, so offsets are distributed first to make words come out in order.
GX_INLINE inline void GatherPairs(const uint8_t* base, I32 offsets, U32& first, U32& second) noexcept {
    const auto* p = reinterpret_cast<const long long*>(base);
    const __m256i all = _mm256_permute4x64_epi64((__m256i)offsets, 0xD8);
    const __m256 a = (__m256)_mm256_i32gather_epi64(p, _mm256_castsi256_si128(all), 1);
    const __m256 b = (__m256)_mm256_i32gather_epi64(p, _mm256_extracti128_si256(all, 1), 1);
    first = (U32)_mm256_shuffle_ps(a, b, 0x88);
    second = (U32)_mm256_shuffle_ps(a, b, 0xDD);
}
constexpr uint32_t kNearWords = 8;
GX_INLINE inline U32 Pick(const uint8_t* words, size_t known, I32 at) noexcept {
    const __m256i a = _mm256_maskload_epi32(reinterpret_cast<const int*>(words), FirstLanes(known < 8 ? known : 8));
    return (U32)_mm256_permutevar8x32_epi32(a, (__m256i)at);
}
template <class V> GX_INLINE inline V Kept(V v) noexcept {
    __asm__("" : "+x"(v));
    return v;
}

// ---- Lanes of 64 bits ----

GX_INLINE inline U64 Xor3(U64 a, U64 b, U64 c) noexcept { return a ^ b ^ c; }
GX_INLINE inline U64 Majority(U64 a, U64 b, U64 c) noexcept { return (a & b) | (c & (a | b)); }
GX_INLINE inline uint32_t MaskBits(I64 mask) noexcept {
    return static_cast<uint32_t>(_mm256_movemask_pd((__m256d)mask));
}
GX_INLINE inline F64 Lower(F64 a, F64 b) noexcept { return (F64)_mm256_min_pd((__m256d)a, (__m256d)b); }
GX_INLINE inline F64 Higher(F64 a, F64 b) noexcept { return (F64)_mm256_max_pd((__m256d)a, (__m256d)b); }
GX_INLINE inline U64 BitCount(U64 bits) noexcept {
    const __m256i table = _mm256_setr_epi8(0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4, //
                                           0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4);
    const __m256i low = _mm256_set1_epi8(15);
    const auto v = (__m256i)bits;
    const __m256i n = _mm256_add_epi8(_mm256_shuffle_epi8(table, _mm256_and_si256(v, low)),
                                      _mm256_shuffle_epi8(table, _mm256_and_si256(_mm256_srli_epi64(v, 4), low)));
    return (U64)_mm256_sad_epu8(n, _mm256_setzero_si256());
}
GX_INLINE inline __m128i Lows(U64 v) noexcept {
    const __m256i even = _mm256_setr_epi32(0, 2, 4, 6, 0, 2, 4, 6);
    return _mm256_castsi256_si128(_mm256_permutevar8x32_epi32((__m256i)v, even));
}
GX_INLINE inline void StoreShape(uint8_t* out, const U64* counts) noexcept {
    const __m128i n = _mm_packs_epi32(Lows(counts[0]), Lows(counts[1]));
    const __m128i shape = _mm_subs_epu16(_mm_slli_epi16(n, 2), _mm_set1_epi16(1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(shape, shape));
}

GX_INLINE inline uint32_t NonZeroBytes(const U64* v) noexcept {
    const __m256i zero = _mm256_setzero_si256();
    const auto low = static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8((__m256i)v[0], zero)));
    const auto high = static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8((__m256i)v[1], zero)));
    return 64U - static_cast<uint32_t>(__builtin_popcountll(uint64_t{high} << 32 | low));
}
GX_INLINE inline U64 SpreadLastBytes(U64 v) noexcept {
    const __m256i order = _mm256_setr_epi8(7, 7, 7, 7, 7, 7, 7, 7, 15, 15, 15, 15, 15, 15, 15, 15, //
                                           7, 7, 7, 7, 7, 7, 7, 7, 15, 15, 15, 15, 15, 15, 15, 15);
    return (U64)_mm256_shuffle_epi8((__m256i)v, order);
}

/// The high halves of a and b, lane by lane.
GX_INLINE inline I32 HighWords(U64 a, U64 b) noexcept {
    return (I32)_mm256_blend_epi32((__m256i)(a >> 32), (__m256i)b, 0xAA);
}
/// In the order of HighWords of the first four and the last four lanes.
GX_INLINE inline Pair PairColumns(I32 c, uint64_t taken) noexcept {
    const __m256i order = _mm256_setr_epi8(0, 8, -1, -1, 4, 12, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, //
                                           -1, -1, 0, 8, -1, -1, 4, 12, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m256i bytes = _mm256_shuffle_epi8((__m256i)c, order);
    return PairFrom(_mm_or_si128(_mm256_castsi256_si128(bytes), _mm256_extracti128_si256(bytes, 1)), taken);
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
