// SPDX-License-Identifier: MIT
// The row converters on 32-byte registers; built with flags of its own.
#include "PixelRows.h"

#if defined(__AVX2__)

#include <immintrin.h>

#include "PixelConversionLoops.h"

namespace Graphics {
namespace {

struct Avx2 {
    using Reg = __m256i;
    static constexpr size_t kPixels = 8;

    static Reg Load(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const Reg*>(p)); }
    static void Store(uint8_t* p, Reg v) { _mm256_storeu_si256(reinterpret_cast<Reg*>(p), v); }
    static Reg Splat(uint32_t v) { return _mm256_set1_epi32(static_cast<int>(v)); }
    static Reg And(Reg a, Reg b) { return _mm256_and_si256(a, b); }
    static Reg Or(Reg a, Reg b) { return _mm256_or_si256(a, b); }
    static Reg Select(Reg mask, Reg a, Reg b) { return _mm256_blendv_epi8(b, a, mask); }
    static Reg IsZero32(Reg a) { return _mm256_cmpeq_epi32(a, _mm256_setzero_si256()); }
    static Reg Add16(Reg a, Reg b) { return _mm256_add_epi16(a, b); }
    static Reg Add32(Reg a, Reg b) { return _mm256_add_epi32(a, b); }
    static Reg MulLow16(Reg a, Reg b) { return _mm256_mullo_epi16(a, b); }
    static Reg MulHigh16(Reg a, Reg b) { return _mm256_mulhi_epu16(a, b); }
    static Reg MulAddPairs(Reg a, Reg b) { return _mm256_madd_epi16(a, b); }
    static Reg MinU8(Reg a, Reg b) { return _mm256_min_epu8(a, b); }
    template <int kBits> static Reg ShiftLeft32(Reg a) { return _mm256_slli_epi32(a, kBits); }
    template <int kBits> static Reg ShiftRight32(Reg a) { return _mm256_srli_epi32(a, kBits); }
    template <int kBits> static Reg ShiftRight16(Reg a) { return _mm256_srli_epi16(a, kBits); }
    /// c * 255 / a, truncated; any value where a is 0.
    static Reg Quotient255(Reg c, Reg a) {
        const __m256 n = _mm256_cvtepi32_ps(_mm256_mullo_epi16(c, Splat(255)));
        return _mm256_cvttps_epi32(_mm256_div_ps(n, _mm256_cvtepi32_ps(a)));
    }
    /// The packs work within each half: the last step puts the groups of four back in order.
    static Reg PackToBytes(Reg a, Reg b, Reg c, Reg d) {
        const Reg mixed = _mm256_packus_epi16(_mm256_packs_epi32(a, b), _mm256_packs_epi32(c, d));
        return _mm256_permutevar8x32_epi32(mixed, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
    }
    static Reg Spread(const uint8_t* p) {
        const Reg v = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
        const Reg order = _mm256_setr_epi8(0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12, //
                                           0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12);
        return _mm256_shuffle_epi8(v, order);
    }
};

/// B G R triples to opaque pixels, eight at a time. The second load reads 28 bytes from the first one's start, so the
/// last pixels of a row, which have no 28 bytes left, are not done here.
void AddAlpha24Avx2(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    size_t i = 0;
    if (!PixelConversionLoops<Avx2>::MustGoByPixel(dst, count * 4, src, count * 3)) {
        const __m256i order = _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, //
                                               0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1);
        for (; i + 10 <= count; i += 8) {
            const auto* p = src + i * 3;
            const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
            const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 12));
            const __m256i both = _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
            Avx2::Store(dst + i * 4, PixelConversionLoops<Avx2>::Opaque(_mm256_shuffle_epi8(both, order)));
        }
    }
    PixelRows::AddAlpha24(dst + i * 4, 0, src + i * 3, 0, count - i);
}

} // namespace

bool PixelRows::InstallAVX2(ConversionTable& table) noexcept {
    PixelConversionLoops<Avx2>::Install(table, "avx2");
    table.rows[GXPixelFormatBGR24][GXPixelFormatPBGRA32] = AddAlpha24Avx2;
    table.rows[GXPixelFormatBGR24][GXPixelFormatBGRA32] = AddAlpha24Avx2;
    table.rows[GXPixelFormatBGR24][GXPixelFormatBGRX32] = AddAlpha24Avx2;
    return true;
}

} // namespace Graphics

#else

bool Graphics::PixelRows::InstallAVX2(ConversionTable&) noexcept { return false; }

#endif
