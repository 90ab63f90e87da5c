// SPDX-License-Identifier: MIT
// The vectors of the paint loops: kLanes words, and what the language cannot say about them, for each instruction set.
// Each set's file includes this header once; everything lies in its unnamed namespace.
#pragma once

#if defined(__SSE2__)
#include <immintrin.h>
#endif

#include "SwPaintKernels.h"
#include "SwPixelMath.h"

namespace Graphics {
namespace {

#if defined(__AVX512F__)
constexpr size_t kLanes = 16;
#elif defined(__AVX2__)
constexpr size_t kLanes = 8;
#else
constexpr size_t kLanes = 4;
#endif

#define GX_INLINE __attribute__((always_inline))

typedef float Floats __attribute__((vector_size(kLanes * 4)));
typedef int32_t Ints __attribute__((vector_size(kLanes * 4)));
typedef uint32_t Words __attribute__((vector_size(kLanes * 4)));
typedef uint16_t Halves __attribute__((vector_size(kLanes * 4)));

inline uint32_t BitsOf(float v) noexcept {
    uint32_t bits;
    __builtin_memcpy(&bits, &v, 4);
    return bits;
}

#if defined(__AVX2__) && !defined(__AVX512F__)
GX_INLINE inline __m256i FirstLanes(size_t lanes) noexcept {
    return _mm256_cmpgt_epi32(_mm256_set1_epi32(static_cast<int>(lanes)), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
}
#endif

/// The first `lanes` of a vector, zeros beyond.
template <class V> GX_INLINE inline V Load(const void* p, size_t lanes) noexcept {
    V v{};
    if (lanes == kLanes) {
        __builtin_memcpy(&v, p, kLanes * 4);
        return v;
    }
#if defined(__AVX512F__)
    return (V)_mm512_maskz_loadu_epi32(static_cast<__mmask16>((1U << lanes) - 1U), p);
#elif defined(__AVX2__)
    return (V)_mm256_maskload_epi32(static_cast<const int*>(p), FirstLanes(lanes));
#else
    __builtin_memcpy(&v, p, lanes * 4);
    return v;
#endif
}

template <class V> GX_INLINE inline void Store(void* p, V v, size_t lanes) noexcept {
    if (lanes == kLanes) {
        __builtin_memcpy(p, &v, kLanes * 4);
        return;
    }
#if defined(__AVX512F__)
    _mm512_mask_storeu_epi32(p, static_cast<__mmask16>((1U << lanes) - 1U), (__m512i)v);
#elif defined(__AVX2__)
    _mm256_maskstore_epi32(static_cast<int*>(p), FirstLanes(lanes), (__m256i)v);
#else
    __builtin_memcpy(p, &v, lanes * 4);
#endif
}

/// Calls body(first, lanes) for whole blocks, then for the rest.
template <class Body> GX_INLINE inline void Blocks(size_t count, Body&& body) noexcept {
    size_t k = 0;
    for (; k + kLanes <= count; k += kLanes) {
        body(k, kLanes);
    }
    if (k < count) {
        body(k, count - k);
    }
}

GX_INLINE inline Floats Select(Ints mask, Floats a, Floats b) noexcept { return mask ? a : b; }
GX_INLINE inline Ints Select(Ints mask, Ints a, Ints b) noexcept { return mask ? a : b; }
GX_INLINE inline Words Select(Ints mask, Words a, Words b) noexcept { return mask ? a : b; }
GX_INLINE inline Floats Splat(float v) noexcept { return v - Floats{}; }

/// Four floats again and again.
GX_INLINE inline Floats Repeat(const float* four) noexcept {
#if defined(__AVX512F__)
    return (Floats)_mm512_maskz_broadcast_f32x4(0xFFFF, _mm_loadu_ps(four));
#elif defined(__AVX2__)
    return (Floats)_mm256_broadcast_ps(reinterpret_cast<const __m128*>(four));
#else
    return Load<Floats>(four, kLanes);
#endif
}

/// 0, 1, 2, ...
GX_INLINE inline Words Ascending() noexcept {
    Words v{};
    for (uint32_t i = 0; i < kLanes; ++i) {
        v[i] = i;
    }
    return v;
}

/// A constant that stays in its register through a loop: the compiler would build it anew for every block.
template <class V> GX_INLINE inline V Kept(V v) noexcept {
#if defined(__AVX512F__)
    __asm__("" : "+v"(v));
#elif defined(__SSE2__)
    __asm__("" : "+x"(v));
#endif
    return v;
}

/// Words below 65536, in both halves.
GX_INLINE inline Words Twice(Words w) noexcept {
#if defined(__AVX512BW__)
    const auto order = Words{} + 0x01000100U + (Ascending() % 4 * 0x04040404U);
    return (Words)_mm512_shuffle_epi8((__m512i)w, (__m512i)order);
#elif defined(__AVX2__)
    const auto order = Words{} + 0x01000100U + (Ascending() % 4 * 0x04040404U);
    return (Words)_mm256_shuffle_epi8((__m256i)w, (__m256i)order);
#else
    return w | w << 16;
#endif
}

/// One bit for each lane of a mask.
GX_INLINE inline uint32_t Bits(Ints mask) noexcept {
#if defined(__AVX512F__)
    return _mm512_movepi32_mask((__m512i)mask);
#elif defined(__AVX2__)
    return static_cast<uint32_t>(_mm256_movemask_ps((__m256)mask));
#elif defined(__SSE2__)
    return static_cast<uint32_t>(_mm_movemask_ps((__m128)mask));
#else
    return (mask[0] & 1U) | (mask[1] & 2U) | (mask[2] & 4U) | (mask[3] & 8U);
#endif
}
GX_INLINE inline bool All(Ints mask) noexcept { return Bits(mask) == (1U << kLanes) - 1U; }

/// True when a < x and b < y in all lanes.
GX_INLINE inline bool AllBelow(Words a, Words x, Words b, Words y) noexcept {
#if defined(__AVX512F__)
    const __mmask16 first = _mm512_cmplt_epu32_mask((__m512i)a, (__m512i)x);
    return _mm512_mask_cmplt_epu32_mask(first, (__m512i)b, (__m512i)y) == 0xFFFF;
#else
    return All((Ints)(a < x) & (Ints)(b < y));
#endif
}

/// The higher, the lower of two; b where one is not a number.
GX_INLINE inline Floats Higher(Floats a, Floats b) noexcept {
#if defined(__AVX512F__)
    return (Floats)_mm512_maskz_max_ps(0xFFFF, (__m512)a, (__m512)b);
#elif defined(__AVX2__)
    return (Floats)_mm256_max_ps((__m256)a, (__m256)b);
#elif defined(__SSE2__)
    return (Floats)_mm_max_ps((__m128)a, (__m128)b);
#else
    return a > b ? a : b;
#endif
}
GX_INLINE inline Floats Lower(Floats a, Floats b) noexcept {
#if defined(__AVX512F__)
    return (Floats)_mm512_maskz_min_ps(0xFFFF, (__m512)a, (__m512)b);
#elif defined(__AVX2__)
    return (Floats)_mm256_min_ps((__m256)a, (__m256)b);
#elif defined(__SSE2__)
    return (Floats)_mm_min_ps((__m128)a, (__m128)b);
#else
    return a < b ? a : b;
#endif
}

GX_INLINE inline Floats SquareRoot(Floats v) noexcept {
#if defined(__AVX512F__)
    return (Floats)_mm512_maskz_sqrt_ps(0xFFFF, (__m512)v);
#elif defined(__AVX2__)
    return (Floats)_mm256_sqrt_ps((__m256)v);
#elif defined(__SSE2__)
    return (Floats)_mm_sqrt_ps((__m128)v);
#else
    for (size_t i = 0; i < kLanes; ++i) {
        v[i] = __builtin_sqrtf(v[i]);
    }
    return v;
#endif
}

/// Truncated; anything outside the range of int32 gives a word whose low byte is 0.
GX_INLINE inline Ints Truncate(Floats v) noexcept {
#if defined(__AVX512F__)
    return (Ints)_mm512_maskz_cvttps_epi32(0xFFFF, (__m512)v);
#elif defined(__AVX2__)
    return (Ints)_mm256_cvttps_epi32((__m256)v);
#elif defined(__SSE2__)
    return (Ints)_mm_cvttps_epi32((__m128)v);
#else
    Ints r{};
    for (size_t i = 0; i < kLanes; ++i) {
        r[i] = v[i] > -2147483648.0F && v[i] < 2147483648.0F ? (int32_t)v[i] : INT32_MIN;
    }
    return r;
#endif
}

/// a * b >> 16 of each half.
GX_INLINE inline Halves HighProduct(Halves a, Halves b) noexcept {
#if defined(__AVX512BW__)
    return (Halves)_mm512_mulhi_epu16((__m512i)a, (__m512i)b);
#elif defined(__AVX2__)
    return (Halves)_mm256_mulhi_epu16((__m256i)a, (__m256i)b);
#elif defined(__SSE2__)
    return (Halves)_mm_mulhi_epu16((__m128i)a, (__m128i)b);
#else
    for (size_t i = 0; i < kLanes * 2; ++i) {
        a[i] = static_cast<uint16_t>(static_cast<uint32_t>(a[i]) * b[i] >> 16);
    }
    return a;
#endif
}

/// The words at base + offsets, in bytes.
GX_INLINE inline Words Gather(const uint8_t* base, Ints offsets) noexcept {
#if defined(__AVX512F__)
    return (Words)_mm512_mask_i32gather_epi32(_mm512_setzero_si512(), 0xFFFF, (__m512i)offsets, base, 1);
#elif defined(__AVX2__)
    return (Words)_mm256_i32gather_epi32(reinterpret_cast<const int*>(base), (__m256i)offsets, 1);
#else
    Words r{};
    for (size_t i = 0; i < kLanes; ++i) {
        uint32_t word;
        __builtin_memcpy(&word, base + offsets[i], 4);
        r[i] = word;
    }
    return r;
#endif
}

/// The words at base + offsets, and those that follow them. Shuffles stay in their quarters of 128 bits: offsets are
/// dealt out before, so that words come out in order.
GX_INLINE inline void GatherPairs(const uint8_t* base, Ints offsets, Words& first, Words& second) noexcept {
#if defined(__AVX512F__)
    const __m512i zero = _mm512_setzero_si512();
    const __m512i all =
        _mm512_maskz_permutexvar_epi64(0xFF, _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), (__m512i)offsets);
    const __m512i a = _mm512_mask_i32gather_epi64(zero, 0xFF, _mm512_maskz_extracti64x4_epi64(0xF, all, 0), base, 1);
    const __m512i b = _mm512_mask_i32gather_epi64(zero, 0xFF, _mm512_maskz_extracti64x4_epi64(0xF, all, 1), base, 1);
    first = (Words)_mm512_maskz_shuffle_ps(0xFFFF, (__m512)a, (__m512)b, 0x88);
    second = (Words)_mm512_maskz_shuffle_ps(0xFFFF, (__m512)a, (__m512)b, 0xDD);
#elif defined(__AVX2__)
    const auto* p = reinterpret_cast<const long long*>(base);
    const __m256i all = _mm256_permute4x64_epi64((__m256i)offsets, 0xD8);
    const __m256 a = (__m256)_mm256_i32gather_epi64(p, _mm256_castsi256_si128(all), 1);
    const __m256 b = (__m256)_mm256_i32gather_epi64(p, _mm256_extracti128_si256(all, 1), 1);
    first = (Words)_mm256_shuffle_ps(a, b, 0x88);
    second = (Words)_mm256_shuffle_ps(a, b, 0xDD);
#else
#if defined(__SSE2__)
    const auto two = [&](int i, int j) GX_INLINE {
        const __m128i one = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(base + offsets[i]));
        return _mm_loadh_pi((__m128)one, reinterpret_cast<const __m64*>(base + offsets[j]));
    };
    const __m128 a = two(0, 1);
    const __m128 b = two(2, 3);
    first = (Words)_mm_shuffle_ps(a, b, 0x88);
    second = (Words)_mm_shuffle_ps(a, b, 0xDD);
#else
    first = Gather(base, offsets);
    second = Gather(base + 4, offsets);
#endif
#endif
}

/// words[at] where all `at` are below kNearWords and `known` words are there, at least one; 0 beyond them.
#if defined(__AVX512F__)
constexpr uint32_t kNearWords = 32;

GX_INLINE inline Words Pick(const uint8_t* words, size_t known, Ints at) noexcept {
    const uint32_t mask = known < 32 ? (1U << known) - 1U : ~0U;
    const __m512i a = _mm512_maskz_loadu_epi32(static_cast<__mmask16>(mask), words);
    const __m512i b = _mm512_maskz_loadu_epi32(static_cast<__mmask16>(mask >> 16), words + 64);
    return (Words)_mm512_permutex2var_epi32(a, (__m512i)at, b);
}
#elif defined(__AVX2__)
constexpr uint32_t kNearWords = 8;

GX_INLINE inline Words Pick(const uint8_t* words, size_t known, Ints at) noexcept {
    const __m256i lanes = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    const __m256i mask = _mm256_cmpgt_epi32(_mm256_set1_epi32(known < 8 ? static_cast<int>(known) : 8), lanes);
    const __m256i a = _mm256_maskload_epi32(reinterpret_cast<const int*>(words), mask);
    return (Words)_mm256_permutevar8x32_epi32(a, (__m256i)at);
}
#else
constexpr uint32_t kNearWords = 0;

GX_INLINE inline Words Pick(const uint8_t*, size_t, Ints) noexcept { return Words{}; }
#endif

/// Channels in the high bytes of their halves, so that a high product with a factor up to 256 shifts by 8 in one step:
/// blue and red, green and alpha.
GX_INLINE inline Halves Even(Words c) noexcept { return (Halves)c << 8; }
GX_INLINE inline Halves Odd(Words c) noexcept { return (Halves)c & 0xFF00U; }
GX_INLINE inline Words Join(Halves even, Halves odd) noexcept { return (Words)(even | odd << 8); }

/// Every byte times the factor in its word's two halves, shifted right by 8.
GX_INLINE inline Words Scale(Words c, Halves factor) noexcept {
    return Join(HighProduct(Even(c), factor), HighProduct(Odd(c), factor));
}
/// a * (257 - w) / 256 + b * w / 256; the weight stands in both halves.
GX_INLINE inline Words Mix(Halves evenA, Halves oddA, Halves evenB, Halves oddB, Halves weight) noexcept {
    const Halves rest = 257U - weight;
    return Join(HighProduct(evenA, rest) + HighProduct(evenB, weight),
                HighProduct(oddA, rest) + HighProduct(oddB, weight));
}
GX_INLINE inline Words Mix(Words a, Words b, Words weight) noexcept {
    return Mix(Even(a), Odd(a), Even(b), Odd(b), (Halves)weight);
}
/// Two rows of two corners, mixed across, then down. A low product leaves its channel in the high byte of the half, a
/// high product in the low one: taken in turns, they put each channel where the next step needs it.
struct CornerMix {
    Halves low = Kept(Halves{} + 0x00FFU);
    Halves high = Kept(Halves{} + 0xFF00U);
    Halves whole = Kept(Halves{} + 257U);

    GX_INLINE Words operator()(const Words* c, Words acrossWeight, Words downWeight) const noexcept {
        const auto across = (Halves)acrossWeight;
        const auto down = (Halves)downWeight;
        const Halves restAcross = whole - across;
        const Halves restDown = whole - down;
        const auto even = [&](const Words* row) GX_INLINE {
            const Halves a = ((Halves)row[0] & low) * restAcross;
            const Halves b = ((Halves)row[1] & low) * across;
            return (a & high) + (b & high);
        };
        const auto odd = [&](const Words* row) GX_INLINE {
            return HighProduct((Halves)row[0] & high, restAcross) + HighProduct((Halves)row[1] & high, across);
        };
        const Halves evens = HighProduct(even(c), restDown) + HighProduct(even(c + 2), down);
        const Halves odds = ((odd(c) * restDown) & high) + ((odd(c + 2) * down) & high);
        return (Words)(evens | odds);
    }
};
GX_INLINE inline Words Premultiply(Words c) noexcept {
    const Words a = (c >> 24) + 1;
    const Words colors = Words{} + 0x00FFFFFFU;
    return (Scale(c, (Halves)(a | a << 16)) & colors) | (c & ~colors);
}

} // namespace
} // namespace Graphics
