// SPDX-License-Identifier: MIT
// The row kernels with AVX-512: sixteen pixels at a time, tails by masks. Built with flags of its own. The zeroing
// forms of the intrinsics with a full mask are the plain instructions.
#if defined(__AVX512F__) && defined(__AVX512BW__) && defined(__AVX512VL__) && defined(__AVX512DQ__)
#include <immintrin.h>

#define GX_KERNEL_NAMESPACE Avx512
#define GX_KERNEL_BYTES 64
#include "SwKernelsVector.h"

namespace Graphics::Avx512 {

inline constexpr const char* kSetName = "avx512";
inline constexpr const SwKernels* const* kNarrower = &kSwKernelsAVX2;

GX_INLINE U32 Load(const void* p) noexcept { return (U32)_mm512_loadu_si512(p); }
GX_INLINE void Store(void* p, U32 v) noexcept { _mm512_storeu_si512(p, (__m512i)v); }

/// The first n lanes.
GX_INLINE __mmask16 Lanes(size_t n) noexcept { return static_cast<__mmask16>((1U << n) - 1U); }

GX_INLINE U32 LoadPart(const uint32_t* p, size_t n) noexcept { return (U32)_mm512_maskz_loadu_epi32(Lanes(n), p); }
GX_INLINE void StorePart(uint32_t* p, size_t n, U32 v) noexcept { _mm512_mask_storeu_epi32(p, Lanes(n), (__m512i)v); }

GX_INLINE U32 Widen(const uint8_t* p) noexcept {
    return (U32)_mm512_maskz_cvtepu8_epi32(0xFFFF, _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
}
GX_INLINE U32 WidenPart(const uint8_t* p, size_t n) noexcept {
    return (U32)_mm512_maskz_cvtepu8_epi32(0xFFFF, _mm_maskz_loadu_epi8(Lanes(n), p));
}
GX_INLINE void Narrow(uint8_t* p, U32 v) noexcept {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm512_maskz_cvtepi32_epi8(0xFFFF, (__m512i)v));
}
GX_INLINE void NarrowPart(uint8_t* p, size_t n, U32 v) noexcept {
    _mm_mask_storeu_epi8(p, Lanes(n), _mm512_maskz_cvtepi32_epi8(0xFFFF, (__m512i)v));
}

GX_INLINE U16 MultiplyHigh(U16 a, U16 b) noexcept { return (U16)_mm512_mulhi_epu16((__m512i)a, (__m512i)b); }
GX_INLINE F32 EstimateReciprocal(F32 v) noexcept { return (F32)_mm512_maskz_rcp14_ps(0xFFFF, (__m512)v); }
GX_INLINE F32 Sqrt(F32 v) noexcept { return (F32)_mm512_maskz_sqrt_ps(0xFFFF, (__m512)v); }
GX_INLINE bool AllSet(I32 mask) noexcept { return _mm512_movepi32_mask((__m512i)mask) == 0xFFFF; }
GX_INLINE bool BytesAre(const uint8_t* p, uint8_t v) noexcept {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(static_cast<char>(v)))) == 0xFFFF;
}

} // namespace Graphics::Avx512

#include "SwKernelsLoops.h"

const Graphics::SwKernels* const Graphics::kSwKernelsAVX512 = &Graphics::Avx512::kTable;
#else
#include "SwKernelSets.h"

const Graphics::SwKernels* const Graphics::kSwKernelsAVX512 = nullptr;
#endif
