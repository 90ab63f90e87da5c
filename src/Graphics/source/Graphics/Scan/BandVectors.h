// SPDX-License-Identifier: MIT
// The vectors of the band loops: the words of kLanes neighbouring pixels, as wide as the including source's flags
// allow.
#pragma once

#include <immintrin.h>

#include <cstdint>

namespace Graphics {
namespace {

#if defined(__AVX512BW__)

struct Vec {
    using T = __m512i;
    static constexpr int kLanes = 8;
    static T Zero() { return _mm512_setzero_si512(); }
    static T Load(const uint64_t* p) { return _mm512_load_si512(p); }
    static void Store(uint64_t* p, T v) { _mm512_store_si512(p, v); }
    static T Xor3(T a, T b, T c) { return _mm512_ternarylogic_epi64(a, b, c, 0x96); }
    static T Majority(T a, T b, T c) { return _mm512_ternarylogic_epi64(a, b, c, 0xE8); }
    static T Or(T a, T b) { return _mm512_or_si512(a, b); }
    static T SpreadColumn7(T v) { return _mm512_movm_epi8(_mm512_movepi8_mask(v)); }
    template <int N> static T Up(T v) { return _mm512_alignr_epi64(v, _mm512_setzero_si512(), 8 - N); }
    static T Exclusive(T inclusive, T carry) { return _mm512_alignr_epi64(inclusive, carry, 7); }
    static T Last(T v) { return _mm512_permutexvar_epi64(_mm512_set1_epi64(7), v); }
    static uint64_t Low(T v) { return static_cast<uint64_t>(_mm_cvtsi128_si64(_mm512_castsi512_si128(v))); }
    static T Count(T v) {
        const T table = _mm512_broadcast_i32x4(_mm_setr_epi8(0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4));
        const T low = _mm512_set1_epi8(15);
        const T n = _mm512_add_epi8(_mm512_shuffle_epi8(table, _mm512_and_si512(v, low)),
                                    _mm512_shuffle_epi8(table, _mm512_and_si512(_mm512_srli_epi64(v, 4), low)));
        return _mm512_sad_epu8(n, _mm512_setzero_si512());
    }
    /// 4 n - 1, and 0 for n = 0.
    static void StoreShape(uint8_t* out, const T* counts) {
        const T shape = _mm512_subs_epu16(_mm512_slli_epi64(counts[0], 2), _mm512_set1_epi64(1));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm512_cvtepi64_epi8(shape));
    }
};

#else

inline void StoreShape8(uint8_t* out, __m128i low, __m128i high) {
    // Eight 16-bit counts from eight 64-bit ones, of which each argument holds four as 32-bit lanes.
    __m128i n = _mm_packs_epi32(low, high);
    n = _mm_subs_epu16(_mm_slli_epi16(n, 2), _mm_set1_epi16(1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(n, n));
}

#if defined(__AVX2__)

struct Vec {
    using T = __m256i;
    static constexpr int kLanes = 4;
    static T Zero() { return _mm256_setzero_si256(); }
    static T Load(const uint64_t* p) { return _mm256_load_si256(reinterpret_cast<const T*>(p)); }
    static void Store(uint64_t* p, T v) { _mm256_store_si256(reinterpret_cast<T*>(p), v); }
    static T Xor3(T a, T b, T c) { return _mm256_xor_si256(_mm256_xor_si256(a, b), c); }
    static T Majority(T a, T b, T c) {
        return _mm256_or_si256(_mm256_and_si256(a, b), _mm256_and_si256(c, _mm256_or_si256(a, b)));
    }
    static T Or(T a, T b) { return _mm256_or_si256(a, b); }
    static T SpreadColumn7(T v) { return _mm256_cmpgt_epi8(_mm256_setzero_si256(), v); }
    template <int N> static T Up(T v) {
        if constexpr (N == 1) {
            return _mm256_blend_epi32(_mm256_permute4x64_epi64(v, 0x90), _mm256_setzero_si256(), 3);
        } else {
            return _mm256_permute2x128_si256(v, v, 0x08);
        }
    }
    static T Exclusive(T inclusive, T carry) {
        return _mm256_blend_epi32(_mm256_permute4x64_epi64(inclusive, 0x90), carry, 3);
    }
    static T Last(T v) { return _mm256_permute4x64_epi64(v, 0xFF); }
    static uint64_t Low(T v) { return static_cast<uint64_t>(_mm_cvtsi128_si64(_mm256_castsi256_si128(v))); }
    static T Count(T v) {
        const T table = _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4));
        const T low = _mm256_set1_epi8(15);
        const T n = _mm256_add_epi8(_mm256_shuffle_epi8(table, _mm256_and_si256(v, low)),
                                    _mm256_shuffle_epi8(table, _mm256_and_si256(_mm256_srli_epi64(v, 4), low)));
        return _mm256_sad_epu8(n, _mm256_setzero_si256());
    }
    static __m128i Narrow(T v) {
        const T even = _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 2, 4, 6, 0, 2, 4, 6));
        return _mm256_castsi256_si128(even);
    }
    static void StoreShape(uint8_t* out, const T* counts) { StoreShape8(out, Narrow(counts[0]), Narrow(counts[1])); }
};

#else

struct Vec {
    using T = __m128i;
    static constexpr int kLanes = 2;
    static T Zero() { return _mm_setzero_si128(); }
    static T Load(const uint64_t* p) { return _mm_load_si128(reinterpret_cast<const T*>(p)); }
    static void Store(uint64_t* p, T v) { _mm_store_si128(reinterpret_cast<T*>(p), v); }
    static T Xor3(T a, T b, T c) { return _mm_xor_si128(_mm_xor_si128(a, b), c); }
    static T Majority(T a, T b, T c) { return _mm_or_si128(_mm_and_si128(a, b), _mm_and_si128(c, _mm_or_si128(a, b))); }
    static T Or(T a, T b) { return _mm_or_si128(a, b); }
    static T SpreadColumn7(T v) { return _mm_cmpgt_epi8(_mm_setzero_si128(), v); }
    template <int N> static T Up(T v) {
        static_assert(N == 1);
        return _mm_slli_si128(v, 8);
    }
    static T Exclusive(T inclusive, T carry) { return _mm_unpacklo_epi64(carry, inclusive); }
    static T Last(T v) { return _mm_unpackhi_epi64(v, v); }
    static uint64_t Low(T v) { return static_cast<uint64_t>(_mm_cvtsi128_si64(v)); }
    static T Count(T v) {
        const T m1 = _mm_set1_epi8(0x55);
        const T m2 = _mm_set1_epi8(0x33);
        const T m4 = _mm_set1_epi8(0x0F);
        v = _mm_sub_epi8(v, _mm_and_si128(_mm_srli_epi64(v, 1), m1));
        v = _mm_add_epi8(_mm_and_si128(v, m2), _mm_and_si128(_mm_srli_epi64(v, 2), m2));
        v = _mm_and_si128(_mm_add_epi8(v, _mm_srli_epi64(v, 4)), m4);
        return _mm_sad_epu8(v, _mm_setzero_si128());
    }
    static __m128i Narrow(T a, T b) {
        return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), 0x88));
    }
    static void StoreShape(uint8_t* out, const T* c) { StoreShape8(out, Narrow(c[0], c[1]), Narrow(c[2], c[3])); }
};

#endif
#endif

} // namespace
} // namespace Graphics
