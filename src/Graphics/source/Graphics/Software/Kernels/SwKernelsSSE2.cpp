// SPDX-License-Identifier: MIT
// The row kernels with SSE2: four pixels at a time.
#if defined(__SSE2__)
#include <emmintrin.h>

#define GX_KERNEL_NAMESPACE Sse2
#define GX_KERNEL_BYTES 16
#include "SwKernelsVector.h"

namespace Graphics::Sse2 {

inline constexpr const char* kSetName = "sse2";
inline constexpr const SwKernels* const* kNarrower = &kSwKernelsScalar;

GX_INLINE U32 Load(const void* p) noexcept { return (U32)_mm_loadu_si128(static_cast<const __m128i*>(p)); }
GX_INLINE void Store(void* p, U32 v) noexcept { _mm_storeu_si128(static_cast<__m128i*>(p), (__m128i)v); }

GX_INLINE U32 LoadPart(const uint32_t* p, size_t n) noexcept {
    U32 v = {};
    if (n != 0) {
        v[0] = p[0];
    }
    if (n > 1) {
        v[1] = p[1];
    }
    if (n > 2) {
        v[2] = p[2];
    }
    return v;
}
GX_INLINE void StorePart(uint32_t* p, size_t n, U32 v) noexcept {
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

GX_INLINE U32 WidenWord(uint32_t bytes) noexcept {
    const __m128i zero = _mm_setzero_si128();
    const __m128i halves = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(bytes)), zero);
    return (U32)_mm_unpacklo_epi16(halves, zero);
}
GX_INLINE U32 Widen(const uint8_t* p) noexcept {
    uint32_t bytes;
    __builtin_memcpy(&bytes, p, 4);
    return WidenWord(bytes);
}
GX_INLINE U32 WidenPart(const uint8_t* p, size_t n) noexcept {
    uint32_t bytes = 0;
    for (size_t i = 0; i < n; ++i) {
        bytes |= static_cast<uint32_t>(p[i]) << (8 * i);
    }
    return WidenWord(bytes);
}

GX_INLINE uint32_t NarrowWord(U32 v) noexcept {
    const __m128i halves = _mm_packs_epi32((__m128i)v, (__m128i)v);
    return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(halves, halves)));
}
GX_INLINE void Narrow(uint8_t* p, U32 v) noexcept {
    const uint32_t bytes = NarrowWord(v);
    __builtin_memcpy(p, &bytes, 4);
}
GX_INLINE void NarrowPart(uint8_t* p, size_t n, U32 v) noexcept {
    const uint32_t bytes = NarrowWord(v);
    for (size_t i = 0; i < n; ++i) {
        p[i] = static_cast<uint8_t>(bytes >> (8 * i));
    }
}

GX_INLINE U16 MultiplyHigh(U16 a, U16 b) noexcept { return (U16)_mm_mulhi_epu16((__m128i)a, (__m128i)b); }
GX_INLINE F32 EstimateReciprocal(F32 v) noexcept { return (F32)_mm_rcp_ps((__m128)v); }
GX_INLINE F32 Sqrt(F32 v) noexcept { return (F32)_mm_sqrt_ps((__m128)v); }
GX_INLINE bool AllSet(I32 mask) noexcept { return _mm_movemask_epi8((__m128i)mask) == 0xFFFF; }
GX_INLINE bool BytesAre(const uint8_t* p, uint8_t v) noexcept {
    uint32_t bytes;
    __builtin_memcpy(&bytes, p, 4);
    return bytes == v * 0x01010101U;
}

} // namespace Graphics::Sse2

#include "SwKernelsLoops.h"

const Graphics::SwKernels* const Graphics::kSwKernelsSSE2 = &Graphics::Sse2::kTable;
#else
#include "SwKernelSets.h"

const Graphics::SwKernels* const Graphics::kSwKernelsSSE2 = nullptr;
#endif
