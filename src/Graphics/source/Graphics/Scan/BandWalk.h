// SPDX-License-Identifier: MIT
// Walking edges through a band: each sub-scanline's column is toggled in its row's bits. Part of the band loops.
#pragma once

#include <immintrin.h>

#include <cstring>

#include "BandKernels.h"

namespace Graphics {
namespace {

/// Adds the bits of `mask` with carry into the planes; `flip` is 0 to add and all ones to subtract.
template <int K, class Word> inline void Toggle(uint8_t* p, size_t planeBytes, Word mask, Word flip) {
    for (int j = 0; j < K; ++j) {
        Word w;
        std::memcpy(&w, p, sizeof(Word));
        const auto changed = static_cast<Word>(w ^ mask);
        std::memcpy(p, &changed, sizeof(Word));
        if (j + 1 < K) {
            mask = static_cast<Word>(mask & (w ^ flip));
            if (K > 2 && mask == 0) {
                return;
            }
            p += planeBytes;
        }
    }
}

inline void MarkBlocks(uint64_t* bits, int32_t x0, int32_t x1) {
    auto b0 = static_cast<uint32_t>(x0) >> 6;
    auto b1 = static_cast<uint32_t>(x1) >> 6;
    if (b0 == b1) {
        bits[b0 >> 6] |= uint64_t{1} << (b0 & 63);
        return;
    }
    if (b0 > b1) {
        const uint32_t t = b0;
        b0 = b1;
        b1 = t;
    }
    for (; b0 >> 6 != b1 >> 6; b0 = (b0 | 63) + 1) {
        bits[b0 >> 6] |= ~uint64_t{0} << (b0 & 63);
    }
    bits[b0 >> 6] |= (~uint64_t{0} << (b0 & 63)) & (~uint64_t{0} >> (63 - (b1 & 63)));
}

template <bool Clamp> inline int32_t Column(int64_t x, int32_t limit) {
    auto c = static_cast<int32_t>(x >> kBandFraction);
    if (Clamp) {
        c = c < 0 ? 0 : c;
        c = c > limit ? limit : c;
    }
    return c;
}

inline int64_t Advance(int64_t x, int64_t step, int32_t count) {
    return static_cast<int64_t>(static_cast<uint64_t>(x) + static_cast<uint64_t>(step) * static_cast<uint64_t>(count));
}

/// Sub-scanlines [s, end) of one pixel row; x belongs to s.
template <int K, bool Clamp>
inline void WalkScalar(uint8_t* row, size_t planeBytes, int64_t x, int64_t step, int32_t s, int32_t end, int32_t limit,
                       uint64_t flip) {
    for (; s < end; ++s) {
        const auto c = static_cast<uint32_t>(Column<Clamp>(x, limit));
        Toggle<K, uint8_t>(row + (c & ~7U) + static_cast<uint32_t>(s), planeBytes,
                           static_cast<uint8_t>(0xFFU << (c & 7)), static_cast<uint8_t>(flip));
        x = Advance(x, step, 1);
    }
}

template <int K, bool Clamp>
inline void WalkEdge(const BandFrame& frame, const BandEdge& e, int64_t x, int32_t y, int32_t end) {
    const int64_t step = e.step;
    const size_t planeBytes = frame.planeBytes;
    const int32_t limit = frame.width * 8;
    const uint64_t flip = (e.flags & kEdgeUp) != 0 ? ~uint64_t{0} : 0;
    uint8_t* row = frame.cells + static_cast<size_t>(y >> 3) * frame.rowBytes;
    uint64_t* bits = frame.bits + static_cast<size_t>(y >> 3) * frame.bitWords;
#if defined(__AVX512BW__)
    const __m512i lane = _mm512_setr_epi64(0, 1, 2, 3, 4, 5, 6, 7);
    const __m512i steps = _mm512_mullo_epi64(lane, _mm512_set1_epi64(step));
#elif defined(__AVX2__)
    const int64_t s2 = Advance(0, step, 2);
    const int64_t s3 = Advance(0, step, 3);
    const __m256i steps = _mm256_setr_epi64x(0, step, s2, s3);
#endif
    do {
        const int32_t s = y & 7;
        const int32_t stop = end - y < 8 - s ? s + (end - y) : 8;
        const int32_t c0 = Column<Clamp>(x, limit);
        const int32_t c1 = Column<Clamp>(Advance(x, step, stop - s - 1), limit);
        MarkBlocks(bits, c0, c1);
#if defined(__AVX512BW__)
        // Lane = sub-scanline; lanes outside [s, stop) give no bits.
        __m512i c = _mm512_srai_epi64(_mm512_add_epi64(_mm512_set1_epi64(Advance(x, step, -s)), steps), kBandFraction);
        if (Clamp) {
            c = _mm512_min_epi64(_mm512_max_epi64(c, _mm512_setzero_si512()), _mm512_set1_epi64(limit));
        }
        const auto lanes = static_cast<__mmask8>((0xFFU >> (8 - stop)) & (0xFFU << s));
        const __m512i columns = _mm512_sllv_epi64(_mm512_set1_epi64(0xFF), _mm512_and_si512(c, _mm512_set1_epi64(7)));
        const int32_t p0 = c0 >> 3;
        const int32_t p1 = c1 >> 3;
        const __m512i pixels = _mm512_srli_epi64(c, 3);
        if (static_cast<uint32_t>(p1 - p0 + 1) <= 2) {
            // One pixel or two: always as two, since which it is cannot be predicted.
            const __mmask8 here = _mm512_mask_cmpeq_epi64_mask(lanes, pixels, _mm512_set1_epi64(p0));
            const auto there = static_cast<__mmask8>(lanes & ~here);
            const auto mask0 = static_cast<uint64_t>(_mm_cvtsi128_si64(_mm512_maskz_cvtepi64_epi8(here, columns)));
            const auto mask1 = static_cast<uint64_t>(_mm_cvtsi128_si64(_mm512_maskz_cvtepi64_epi8(there, columns)));
            Toggle<K, uint64_t>(row + static_cast<size_t>(p0) * 8, planeBytes, mask0, flip);
            Toggle<K, uint64_t>(row + static_cast<size_t>(p1) * 8, planeBytes, mask1, flip);
        } else if (p0 - p1 <= 4 && p1 - p0 <= 4) {
            const int32_t low = p0 < p1 ? p0 : p1;
            const int32_t high = p0 < p1 ? p1 : p0;
            for (int32_t p = low; p <= high; ++p) {
                const __mmask8 here = _mm512_mask_cmpeq_epi64_mask(lanes, pixels, _mm512_set1_epi64(p));
                const auto mask = static_cast<uint64_t>(_mm_cvtsi128_si64(_mm512_maskz_cvtepi64_epi8(here, columns)));
                Toggle<K, uint64_t>(row + static_cast<size_t>(p) * 8, planeBytes, mask, flip);
            }
        } else {
            WalkScalar<K, Clamp>(row, planeBytes, x, step, s, stop, limit, flip);
        }
#else
        if (stop - s == 8 && c0 >> 3 == c1 >> 3) {
            uint64_t mask;
            if (step == 0) {
                mask = ((0xFFU << (c0 & 7)) & 0xFFU) * uint64_t{0x0101010101010101U};
            } else if (Clamp) {
                int64_t at = x;
                mask = 0;
                for (int k = 0; k < 64; k += 8) {
                    mask |= uint64_t{(0xFFU << (Column<Clamp>(at, limit) & 7)) & 0xFFU} << k;
                    at = Advance(at, step, 1);
                }
            } else {
#if defined(__AVX2__)
                const __m256i seven = _mm256_set1_epi64x(7);
                const __m256i full = _mm256_set1_epi64x(0xFF);
                const __m256i xa = _mm256_add_epi64(_mm256_set1_epi64x(x), steps);
                const __m256i xb = _mm256_add_epi64(xa, _mm256_set1_epi64x(Advance(0, step, 4)));
                __m256i ma = _mm256_sllv_epi64(full, _mm256_and_si256(_mm256_srli_epi64(xa, kBandFraction), seven));
                __m256i mb = _mm256_sllv_epi64(full, _mm256_and_si256(_mm256_srli_epi64(xb, kBandFraction), seven));
                ma = _mm256_sllv_epi64(_mm256_and_si256(ma, full), _mm256_setr_epi64x(0, 8, 16, 24));
                mb = _mm256_sllv_epi64(_mm256_and_si256(mb, full), _mm256_setr_epi64x(32, 40, 48, 56));
                const __m256i both = _mm256_or_si256(ma, mb);
                const __m128i half = _mm_or_si128(_mm256_castsi256_si128(both), _mm256_extracti128_si256(both, 1));
                mask = static_cast<uint64_t>(_mm_cvtsi128_si64(_mm_or_si128(half, _mm_unpackhi_epi64(half, half))));
#else
                int64_t at = x;
                mask = 0;
                for (int k = 0; k < 64; k += 8) {
                    mask |= uint64_t{(0xFFU << (Column<false>(at, limit) & 7)) & 0xFFU} << k;
                    at = Advance(at, step, 1);
                }
#endif
            }
            Toggle<K, uint64_t>(row + static_cast<size_t>(c0 >> 3) * 8, planeBytes, mask, flip);
        } else {
            WalkScalar<K, Clamp>(row, planeBytes, x, step, s, stop, limit, flip);
        }
#endif
        x = Advance(x, step, stop - s);
        y += stop - s;
        row += frame.rowBytes;
        bits += frame.bitWords;
    } while (y < end);
}

template <int K>
uint32_t WalkList(const BandFrame& frame, BandEdge* edges, uint32_t head, int32_t bandFirst, int32_t bandLast,
                  uint32_t following) {
    while (head != kNoEdge) {
        BandEdge& e = edges[head];
        const uint32_t next = e.next;
        const int32_t end = e.end < bandLast ? e.end : bandLast;
        if ((e.flags & kEdgeClamp) == 0) {
            WalkEdge<K, false>(frame, e, e.x, e.y - bandFirst, end - bandFirst);
        } else {
            WalkEdge<K, true>(frame, e, e.x, e.y - bandFirst, end - bandFirst);
        }
        if (e.end > bandLast) {
            e.x = Advance(e.x, e.step, end - e.y);
            e.y = end;
            e.next = following;
            following = head;
        }
        head = next;
    }
    return following;
}

} // namespace
} // namespace Graphics
