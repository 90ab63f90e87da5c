// SPDX-License-Identifier: MIT
// The row kernels with AVX2: eight pixels at a time. Built with flags of its own.
#if defined(__AVX2__)
#include <immintrin.h>

#define GX_KERNEL_NAMESPACE Avx2
#define GX_KERNEL_BYTES 32
#include "SwKernelsVector.h"

namespace Graphics::Avx2 {

inline constexpr const char* kSetName = "avx2";
inline constexpr const SwKernels* const* kNarrower = &kSwKernelsSSE2;

GX_INLINE U32 Load(const void* p) noexcept { return (U32)_mm256_loadu_si256(static_cast<const __m256i*>(p)); }
GX_INLINE void Store(void* p, U32 v) noexcept { _mm256_storeu_si256(static_cast<__m256i*>(p), (__m256i)v); }

/// The first n lanes.
GX_INLINE __m256i Lanes(size_t n) noexcept {
    return _mm256_cmpgt_epi32(_mm256_set1_epi32(static_cast<int>(n)), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
}
GX_INLINE U32 LoadPart(const uint32_t* p, size_t n) noexcept {
    return (U32)_mm256_maskload_epi32(reinterpret_cast<const int*>(p), Lanes(n));
}
GX_INLINE void StorePart(uint32_t* p, size_t n, U32 v) noexcept {
    _mm256_maskstore_epi32(reinterpret_cast<int*>(p), Lanes(n), (__m256i)v);
}

GX_INLINE U32 WidenWord(uint64_t bytes) noexcept {
    return (U32)_mm256_cvtepu8_epi32(_mm_cvtsi64_si128(static_cast<long long>(bytes)));
}
GX_INLINE U32 Widen(const uint8_t* p) noexcept {
    uint64_t bytes;
    __builtin_memcpy(&bytes, p, 8);
    return WidenWord(bytes);
}
GX_INLINE U32 WidenPart(const uint8_t* p, size_t n) noexcept {
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

GX_INLINE uint64_t NarrowWord(U32 v) noexcept {
    const __m128i low = _mm256_castsi256_si128((__m256i)v);
    const __m128i high = _mm256_extracti128_si256((__m256i)v, 1);
    const __m128i halves = _mm_packs_epi32(low, high);
    return static_cast<uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(halves, halves)));
}
GX_INLINE void Narrow(uint8_t* p, U32 v) noexcept {
    const uint64_t bytes = NarrowWord(v);
    __builtin_memcpy(p, &bytes, 8);
}
GX_INLINE void NarrowPart(uint8_t* p, size_t n, U32 v) noexcept {
    const uint64_t bytes = NarrowWord(v);
    for (size_t i = 0; i < n; ++i) {
        p[i] = static_cast<uint8_t>(bytes >> (8 * i));
    }
}

GX_INLINE U16 MultiplyHigh(U16 a, U16 b) noexcept { return (U16)_mm256_mulhi_epu16((__m256i)a, (__m256i)b); }
GX_INLINE F32 EstimateReciprocal(F32 v) noexcept { return (F32)_mm256_rcp_ps((__m256)v); }
GX_INLINE F32 Sqrt(F32 v) noexcept { return (F32)_mm256_sqrt_ps((__m256)v); }
GX_INLINE bool AllSet(I32 mask) noexcept { return _mm256_movemask_epi8((__m256i)mask) == -1; }
GX_INLINE bool BytesAre(const uint8_t* p, uint8_t v) noexcept {
    uint64_t bytes;
    __builtin_memcpy(&bytes, p, 8);
    return bytes == v * 0x0101010101010101U;
}

} // namespace Graphics::Avx2

#include "SwKernelsLoops.h"

const Graphics::SwKernels* const Graphics::kSwKernelsAVX2 = &Graphics::Avx2::kTable;
#else
#include "SwKernelSets.h"

const Graphics::SwKernels* const Graphics::kSwKernelsAVX2 = nullptr;
#endif
