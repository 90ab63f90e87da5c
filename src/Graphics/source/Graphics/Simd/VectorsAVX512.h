// SPDX-License-Identifier: MIT
// The verbs of AVX-512 (F, BW, VL, DQ, CD, VBMI, VPOPCNTDQ); see VectorsPlain.h and VectorsSSE2.h for what they do. The zeroing
// intrinsics with a full mask compile to the plain instructions; the unmasked ones use operands of undefined value, for
// which GCC 12 warns.
#pragma once

#include <immintrin.h>

#define GX_SIMD_BYTES 64
#include "VectorTypes.h"

#include "PixelPairs.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// The next narrower set, and the narrowest one, for rows shorter than a vector.
constexpr InstructionSet kNarrowerSet = InstructionSet::AVX2;
constexpr InstructionSet kNarrowestSet = InstructionSet::SSE2;

// ---- Part of a row ----

GX_INLINE inline __mmask16 FirstLanes(size_t n) noexcept { return static_cast<__mmask16>((1U << n) - 1U); }
GX_INLINE inline U32 LoadPart(const void* p, size_t n) noexcept {
    return (U32)_mm512_maskz_loadu_epi32(FirstLanes(n), p);
}
GX_INLINE inline void StorePart(void* p, size_t n, U32 v) noexcept {
    _mm512_mask_storeu_epi32(p, FirstLanes(n), (__m512i)v);
}

// ---- Bytes to lanes and back ----

GX_INLINE inline U32 Widen(const uint8_t* p) noexcept {
    return (U32)_mm512_maskz_cvtepu8_epi32(0xFFFF, _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}
GX_INLINE inline U32 WidenPart(const uint8_t* p, size_t n) noexcept {
    return (U32)_mm512_maskz_cvtepu8_epi32(0xFFFF, _mm_maskz_loadu_epi8(FirstLanes(n), p));
}
GX_INLINE inline U32 WidenToAll(const uint8_t* p) noexcept {
    const __m512i order =
        _mm512_maskz_broadcast_i32x4(0xFFFF, _mm_setr_epi8(0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12));
    return (U32)_mm512_shuffle_epi8((__m512i)Widen(p), order);
}
constexpr size_t kTripleReach = 48;
GX_INLINE inline U32 WidenTriples(const uint8_t* p) noexcept {
    const __m512i words = _mm512_maskz_loadu_epi32(0x0FFF, p);
    const __m512i dealt = _mm512_maskz_permutexvar_epi32(
        0xFFFF, _mm512_setr_epi32(0, 1, 2, 3, 3, 4, 5, 6, 6, 7, 8, 9, 9, 10, 11, 12), words);
    const __m512i order =
        _mm512_maskz_broadcast_i32x4(0xFFFF, _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1));
    return (U32)_mm512_shuffle_epi8(dealt, order);
}

GX_INLINE inline void Narrow(uint8_t* p, U32 v) noexcept {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm512_maskz_cvtepi32_epi8(0xFFFF, (__m512i)v));
}
GX_INLINE inline void NarrowPart(uint8_t* p, size_t n, U32 v) noexcept {
    _mm_mask_storeu_epi8(p, FirstLanes(n), _mm512_maskz_cvtepi32_epi8(0xFFFF, (__m512i)v));
}
GX_INLINE inline U32 NarrowFour(U32 a, U32 b, U32 c, U32 d) noexcept {
    const __m512i mixed =
        _mm512_packus_epi16(_mm512_packs_epi32((__m512i)a, (__m512i)b), _mm512_packs_epi32((__m512i)c, (__m512i)d));
    return (U32)_mm512_maskz_permutexvar_epi32(
        0xFFFF, _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15), mixed);
}
GX_INLINE inline bool BytesAre(const uint8_t* p, uint8_t v) noexcept {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(static_cast<char>(v)))) == 0xFFFF;
}

// ---- Lanes of 32 bits ----

GX_INLINE inline uint32_t MaskBits(I32 mask) noexcept { return _mm512_movepi32_mask((__m512i)mask); }
GX_INLINE inline bool AllSet(I32 mask) noexcept { return MaskBits(mask) == 0xFFFF; }
GX_INLINE inline bool AllBelow(U32 a, U32 x, U32 b, U32 y) noexcept {
    const __mmask16 first = _mm512_cmplt_epu32_mask((__m512i)a, (__m512i)x);
    return _mm512_mask_cmplt_epu32_mask(first, (__m512i)b, (__m512i)y) == 0xFFFF;
}
GX_INLINE inline bool AllEqualBelow(U32 a, U32 b, U32 limit) noexcept {
    const __mmask16 equal = _mm512_cmpeq_epu32_mask((__m512i)a, (__m512i)b);
    return _mm512_mask_cmplt_epu32_mask(equal, (__m512i)a, (__m512i)limit) == 0xFFFF;
}
GX_INLINE inline F32 Lower(F32 a, F32 b) noexcept { return (F32)_mm512_maskz_min_ps(0xFFFF, (__m512)a, (__m512)b); }
GX_INLINE inline F32 Higher(F32 a, F32 b) noexcept { return (F32)_mm512_maskz_max_ps(0xFFFF, (__m512)a, (__m512)b); }
GX_INLINE inline F32 SquareRoot(F32 v) noexcept { return (F32)_mm512_maskz_sqrt_ps(0xFFFF, (__m512)v); }
GX_INLINE inline I32 Truncate(F32 v) noexcept { return (I32)_mm512_maskz_cvttps_epi32(0xFFFF, (__m512)v); }
GX_INLINE inline I32 Floor(F32 v) noexcept {
    return (I32)_mm512_maskz_cvt_roundps_epi32(0xFFFF, (__m512)v, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
}
GX_INLINE inline U16 MultiplyHigh(U16 a, U16 b) noexcept { return (U16)_mm512_mulhi_epu16((__m512i)a, (__m512i)b); }
GX_INLINE inline U32 MultiplyAddPairs(U32 a, U32 b) noexcept { return (U32)_mm512_madd_epi16((__m512i)a, (__m512i)b); }
constexpr bool kJoinsByShift = false;
GX_INLINE inline U32 JoinHighBytes(U16 low, U16 high) noexcept { return (U32)(low >> 8 | (high & 0xFF00U)); }
GX_INLINE inline U32 Twice(U32 w) noexcept {
    const __m512i order =
        _mm512_maskz_broadcast_i32x4(0xFFFF, _mm_setr_epi8(0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8, 9, 12, 13, 12, 13));
    return (U32)_mm512_shuffle_epi8((__m512i)w, order);
}
GX_INLINE inline U32 AlphaBytes(U32 x) noexcept {
    const __m512i order =
        _mm512_maskz_broadcast_i32x4(0xFFFF, _mm_setr_epi8(3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15));
    return (U32)_mm512_shuffle_epi8((__m512i)x, order);
}
GX_INLINE inline U32 AlphaTwice(U32 x) noexcept {
    const __m512i order =
        _mm512_maskz_broadcast_i32x4(0xFFFF, _mm_setr_epi8(3, -1, 3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1));
    return (U32)_mm512_shuffle_epi8((__m512i)x, order);
}

GX_INLINE inline F32 Repeat(const float* four) noexcept {
    return (F32)_mm512_maskz_broadcast_f32x4(0xFFFF, _mm_loadu_ps(four));
}
GX_INLINE inline U32 Gather(const uint8_t* base, I32 offsets) noexcept {
    return (U32)_mm512_mask_i32gather_epi32(_mm512_setzero_si512(), 0xFFFF, (__m512i)offsets, base, 1);
}
/// Shuffles stay in their 128-bit quarters, so offsets are distributed first to make words come out in order.
GX_INLINE inline void GatherPairs(const uint8_t* base, I32 offsets, U32& first, U32& second) noexcept {
    const __m512i zero = _mm512_setzero_si512();
    const __m512i all =
        _mm512_maskz_permutexvar_epi64(0xFF, _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), (__m512i)offsets);
    const __m512i a = _mm512_mask_i32gather_epi64(zero, 0xFF, _mm512_maskz_extracti64x4_epi64(0xF, all, 0), base, 1);
    const __m512i b = _mm512_mask_i32gather_epi64(zero, 0xFF, _mm512_maskz_extracti64x4_epi64(0xF, all, 1), base, 1);
    first = (U32)_mm512_maskz_shuffle_ps(0xFFFF, (__m512)a, (__m512)b, 0x88);
    second = (U32)_mm512_maskz_shuffle_ps(0xFFFF, (__m512)a, (__m512)b, 0xDD);
}
constexpr uint32_t kNearWords = 32;
GX_INLINE inline U32 Pick(const uint8_t* words, size_t known, I32 at) noexcept {
    const uint32_t mask = known < 32 ? (1U << known) - 1U : ~0U;
    const __m512i a = _mm512_maskz_loadu_epi32(static_cast<__mmask16>(mask), words);
    const __m512i b = _mm512_maskz_loadu_epi32(static_cast<__mmask16>(mask >> 16), words + 64);
    return (U32)_mm512_permutex2var_epi32(a, (__m512i)at, b);
}
template <class V> GX_INLINE inline V Kept(V v) noexcept {
    __asm__("" : "+v"(v));
    return v;
}

GX_INLINE inline bool AllOpaque(U32 pixels) noexcept {
    return _mm512_cmpge_epu32_mask((__m512i)pixels, _mm512_set1_epi32(static_cast<int>(0xFF000000U))) == 0xFFFF;
}
GX_INLINE inline bool AllClear(U32 pixels) noexcept {
    return _mm512_test_epi32_mask((__m512i)pixels, _mm512_set1_epi32(static_cast<int>(0xFF000000U))) == 0;
}
/// By the estimate r of 1 / v, which is off by 2^-14 at most, and a step of Newton's, r (2 - v r): together with four
/// roundings it is off by less than 2^-21. So much is added to the dividend, which keeps the sum above the quotient, and
/// the next integer is taken.
GX_INLINE inline U32 ByteReciprocal(U32 v) noexcept {
    const F32 f = __builtin_convertvector((I32)v, F32);
    const auto r = (F32)_mm512_maskz_rcp14_ps(0xFFFF, (__m512)f);
    const F32 m = r * 16711688.0F * (2.0F - f * r);
    return (U32)_mm512_maskz_cvt_roundps_epi32(0xFFFF, (__m512)m, _MM_FROUND_TO_POS_INF | _MM_FROUND_NO_EXC);
}

// ---- Half a vector: eight lanes of 32 bits ----

using HalfU16 = uint16_t __attribute__((vector_size(GX_SIMD_BYTES / 2)));
using HalfU32 = uint32_t __attribute__((vector_size(GX_SIMD_BYTES / 2)));

GX_INLINE inline __mmask8 FirstOfHalf(size_t n) noexcept {
    return static_cast<__mmask8>(n < 8 ? (1U << n) - 1U : 0xFFU);
}
/// The first n words, then zeros; all eight from n = 8 on.
GX_INLINE inline HalfU32 LoadHalf(const void* p, size_t n) noexcept {
    return (HalfU32)_mm256_maskz_loadu_epi32(FirstOfHalf(n), p);
}
GX_INLINE inline void StoreHalf(void* p, size_t n, HalfU32 v) noexcept {
    _mm256_mask_storeu_epi32(p, FirstOfHalf(n), (__m256i)v);
}
GX_INLINE inline HalfU32 WidenHalf(const uint8_t* p) noexcept {
    return (HalfU32)_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}
/// The coverage bytes of eight pixels from their sample counts n, as words: 4 n - 1, and 0 for n = 0.
GX_INLINE inline HalfU32 ShapeWords(U64 counts) noexcept {
    const __m256i n = _mm512_maskz_cvtepi64_epi32(0xFF, (__m512i)counts);
    return (HalfU32)_mm256_subs_epu16(_mm256_slli_epi32(n, 2), _mm256_set1_epi32(1));
}
GX_INLINE inline HalfU32 Twice(HalfU32 w) noexcept {
    const __m256i order =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8, 9, 12, 13, 12, 13));
    return (HalfU32)_mm256_shuffle_epi8((__m256i)w, order);
}
GX_INLINE inline HalfU32 AlphaTwice(HalfU32 x) noexcept {
    const __m256i order =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(3, -1, 3, -1, 7, -1, 7, -1, 11, -1, 11, -1, 15, -1, 15, -1));
    return (HalfU32)_mm256_shuffle_epi8((__m256i)x, order);
}
GX_INLINE inline HalfU16 MultiplyHigh(HalfU16 a, HalfU16 b) noexcept {
    return (HalfU16)_mm256_mulhi_epu16((__m256i)a, (__m256i)b);
}

// ---- Lanes of 64 bits ----

GX_INLINE inline U64 Xor3(U64 a, U64 b, U64 c) noexcept {
    return (U64)_mm512_ternarylogic_epi64((__m512i)a, (__m512i)b, (__m512i)c, 0x96);
}
GX_INLINE inline U64 Majority(U64 a, U64 b, U64 c) noexcept {
    return (U64)_mm512_ternarylogic_epi64((__m512i)a, (__m512i)b, (__m512i)c, 0xE8);
}
GX_INLINE inline U64 SelectBits(U64 mask, U64 yes, U64 no) noexcept {
    return (U64)_mm512_ternarylogic_epi64((__m512i)mask, (__m512i)yes, (__m512i)no, 0xCA);
}
GX_INLINE inline U64 OrXor(U64 a, U64 b, U64 c) noexcept {
    return (U64)_mm512_ternarylogic_epi64((__m512i)a, (__m512i)b, (__m512i)c, 0xF6);
}
/// The bits of each byte value from 0 to 63, whose higher bits an index ignores.
template <int J> struct NegativeBits {
    static_assert(J < 6);
    uint8_t bytes[64];
    constexpr NegativeBits() noexcept : bytes() {
        for (int i = 0; i < 64; ++i) {
            bytes[i] = (-i >> J & 1) != 0 ? 0xFF : 0;
        }
    }
};
template <int J> GX_INLINE inline U64 BitsOfNegative(U8 v) noexcept {
    static constexpr NegativeBits<J> kBits;
    return (U64)_mm512_maskz_permutexvar_epi8(~__mmask64{0}, (__m512i)v, _mm512_loadu_si512(kBits.bytes));
}
GX_INLINE inline uint32_t MaskBits(I64 mask) noexcept { return _mm512_movepi64_mask((__m512i)mask); }
GX_INLINE inline F64 Lower(F64 a, F64 b) noexcept { return (F64)_mm512_maskz_min_pd(0xFF, (__m512d)a, (__m512d)b); }
GX_INLINE inline F64 Higher(F64 a, F64 b) noexcept { return (F64)_mm512_maskz_max_pd(0xFF, (__m512d)a, (__m512d)b); }
GX_INLINE inline U64 BitCount(U64 bits) noexcept { return (U64)_mm512_popcnt_epi64((__m512i)bits); }
GX_INLINE inline void StoreShape(uint8_t* out, const U64* counts) noexcept {
    const __m512i shape = _mm512_subs_epu16((__m512i)(counts[0] << 2), _mm512_set1_epi64(1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm512_maskz_cvtepi64_epi8(0xFF, shape));
}

/// The highest bit of each byte, and bytes of 0 or 255 from such bits: bit 8 i + j is that of byte j of lane i.
GX_INLINE inline uint64_t HighBits(U64 v) noexcept { return _mm512_movepi8_mask((__m512i)v); }
GX_INLINE inline U64 SpreadBits(uint64_t bits) noexcept { return (U64)_mm512_movm_epi8(bits); }

GX_INLINE inline uint32_t NonZeroBytes(const U64* v) noexcept {
    return static_cast<uint32_t>(__builtin_popcountll(_mm512_test_epi8_mask((__m512i)v[0], (__m512i)v[0])));
}
GX_INLINE inline U64 SpreadLastBytes(U64 v) noexcept {
    const __m512i order =
        _mm512_maskz_broadcast_i32x4(0xFFFF, _mm_setr_epi8(7, 7, 7, 7, 7, 7, 7, 7, 15, 15, 15, 15, 15, 15, 15, 15));
    return (U64)_mm512_shuffle_epi8((__m512i)v, order);
}

/// Eight long lanes are the sub-scanlines of a pixel row, one mask bit each.
using RowMask = __mmask8;
/// The lanes of `of` where a and b are equal.
GX_INLINE inline RowMask EqualLanes(RowMask of, I64 a, int64_t b) noexcept {
    return _mm512_mask_cmpeq_epi64_mask(of, (__m512i)a, _mm512_set1_epi64(b));
}
/// The low bytes of the lanes in a mask; 0 for the other lanes.
GX_INLINE inline uint64_t LowBytes(RowMask of, U64 v) noexcept {
    return static_cast<uint64_t>(_mm_cvtsi128_si64(_mm512_maskz_cvtepi64_epi8(of, (__m512i)v)));
}

GX_INLINE inline Pair PairColumns(I64 c, uint64_t taken) noexcept {
    return PairFrom(_mm512_maskz_cvtepi64_epi8(0xFF, (__m512i)c), taken);
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
