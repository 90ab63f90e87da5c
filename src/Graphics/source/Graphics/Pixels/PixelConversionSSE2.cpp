// SPDX-License-Identifier: MIT
// The row converters on 16-byte registers.
#include "PixelRows.h"

#if defined(__SSE2__)

#include <emmintrin.h>

#include <cstring>

#include "PixelConversionLoops.h"

namespace Graphics {
namespace {

struct Sse2 {
    using Reg = __m128i;
    static constexpr size_t kPixels = 4;

    static Reg Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const Reg*>(p)); }
    static void Store(uint8_t* p, Reg v) { _mm_storeu_si128(reinterpret_cast<Reg*>(p), v); }
    static Reg Splat(uint32_t v) { return _mm_set1_epi32(static_cast<int>(v)); }
    static Reg And(Reg a, Reg b) { return _mm_and_si128(a, b); }
    static Reg Or(Reg a, Reg b) { return _mm_or_si128(a, b); }
    static Reg Select(Reg mask, Reg a, Reg b) { return Or(And(mask, a), _mm_andnot_si128(mask, b)); }
    static Reg IsZero32(Reg a) { return _mm_cmpeq_epi32(a, _mm_setzero_si128()); }
    static Reg Add16(Reg a, Reg b) { return _mm_add_epi16(a, b); }
    static Reg Add32(Reg a, Reg b) { return _mm_add_epi32(a, b); }
    static Reg MulLow16(Reg a, Reg b) { return _mm_mullo_epi16(a, b); }
    static Reg MulHigh16(Reg a, Reg b) { return _mm_mulhi_epu16(a, b); }
    static Reg MulAddPairs(Reg a, Reg b) { return _mm_madd_epi16(a, b); }
    static Reg MinU8(Reg a, Reg b) { return _mm_min_epu8(a, b); }
    template <int kBits> static Reg ShiftLeft32(Reg a) { return _mm_slli_epi32(a, kBits); }
    template <int kBits> static Reg ShiftRight32(Reg a) { return _mm_srli_epi32(a, kBits); }
    template <int kBits> static Reg ShiftRight16(Reg a) { return _mm_srli_epi16(a, kBits); }
    /// c * 255 / a, truncated; any value where a is 0.
    static Reg Quotient255(Reg c, Reg a) {
        const __m128 n = _mm_cvtepi32_ps(_mm_mullo_epi16(c, Splat(255)));
        return _mm_cvttps_epi32(_mm_div_ps(n, _mm_cvtepi32_ps(a)));
    }
    static Reg PackToBytes(Reg a, Reg b, Reg c, Reg d) {
        return _mm_packus_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, d));
    }
    static Reg Spread(const uint8_t* p) {
        int bytes;
        std::memcpy(&bytes, p, sizeof bytes);
        const Reg v = _mm_cvtsi32_si128(bytes);
        const Reg pairs = _mm_unpacklo_epi8(v, v);
        return _mm_unpacklo_epi16(pairs, pairs);
    }
};

} // namespace

bool PixelRows::InstallSSE2(ConversionTable& table) noexcept {
    PixelConversionLoops<Sse2>::Install(table, "sse2");
    return true;
}

} // namespace Graphics

#else

bool Graphics::PixelRows::InstallSSE2(ConversionTable&) noexcept { return false; }

#endif
