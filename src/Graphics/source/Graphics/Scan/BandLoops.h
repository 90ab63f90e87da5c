// SPDX-License-Identifier: MIT
// The text of the band loops. Each instruction set includes it in a file of its own; everything here has internal
// linkage, so that no set's code can end up in another.
#pragma once

#include <immintrin.h>

#include <cstring>

#include "BandKernels.h"

namespace Graphics {
namespace {

// ---- Vectors: the words of Lanes neighbouring pixels

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

// ---- Sweeping a row

/// a += b, numbers of K bits, bit j in element j.
template <int K> inline void AddPlanes(Vec::T* a, const Vec::T* b) {
    Vec::T carry = Vec::Zero();
    for (int j = 0; j < K; ++j) {
        const Vec::T sum = Vec::Xor3(a[j], b[j], carry);
        if (j + 1 < K) {
            carry = Vec::Majority(a[j], b[j], carry);
        }
        a[j] = sum;
    }
}

template <int K, int N> inline void AddShifted(Vec::T* a) {
    Vec::T up[K];
    for (int j = 0; j < K; ++j) {
        up[j] = Vec::Up<N>(a[j]);
    }
    AddPlanes<K>(a, up);
}

/// The shape bytes of a block of eight pixels. `carry` is the winding left of the block in every lane, then that right
/// of it. The block becomes zero.
template <int K> inline void SweepBlock(uint8_t* cells, size_t planeBytes, Vec::T* carry, uint8_t* out) {
    constexpr int kParts = 8 / Vec::kLanes;
    Vec::T counts[kParts];
    for (int part = 0; part < kParts; ++part) {
        Vec::T w[K];
        Vec::T right[K]; // winding in column 7 of each pixel, spread over all columns
        for (int j = 0; j < K; ++j) {
            auto* p = reinterpret_cast<uint64_t*>(cells + static_cast<size_t>(j) * planeBytes) + part * Vec::kLanes;
            w[j] = Vec::Load(p);
            Vec::Store(p, Vec::Zero());
            right[j] = Vec::SpreadColumn7(w[j]);
        }
        AddShifted<K, 1>(right);
        if constexpr (Vec::kLanes > 2) {
            AddShifted<K, 2>(right);
        }
        if constexpr (Vec::kLanes > 4) {
            AddShifted<K, 4>(right);
        }
        AddPlanes<K>(right, carry);
        Vec::T left[K];
        for (int j = 0; j < K; ++j) {
            left[j] = Vec::Exclusive(right[j], carry[j]);
            carry[j] = Vec::Last(right[j]);
        }
        AddPlanes<K>(w, left);
        Vec::T inside = w[0];
        for (int j = 1; j < K; ++j) {
            inside = Vec::Or(inside, w[j]);
        }
        counts[part] = Vec::Count(inside);
    }
    Vec::StoreShape(out, counts);
}

template <int K>
size_t SweepRow(const BandFrame& frame, uint8_t* cells, uint64_t* bits, uint8_t* shape, CoverageRun* runs) {
    Vec::T carry[K];
    for (int j = 0; j < K; ++j) {
        carry[j] = Vec::Zero();
    }
    CoverageRun* run = runs - 1; // the current one
    bool joins = false;          // the current run has shape and ends at `done`
    int32_t done = 0;            // pixels
    // Pixels [done, to) have the winding of `carry`.
    const auto gap = [&](int32_t to) {
        Vec::T inside = carry[0];
        for (int j = 1; j < K; ++j) {
            inside = Vec::Or(inside, carry[j]);
        }
        constexpr uint64_t kOnes = 0x0101010101010101U;
        const uint64_t count = ((Vec::Low(inside) & kOnes) * kOnes >> 56) * 8;
        if (count == 0) {
            joins = false;
        } else if (joins && to - done <= 8) {
            std::memset(shape + done, static_cast<int>(count * 4 - 1), static_cast<size_t>(to - done));
            run->x1 = frame.left + to;
        } else {
            *++run = {frame.left + done, frame.left + to, nullptr, static_cast<uint8_t>(count * 4 - 1)};
            joins = false;
        }
        done = to;
    };
    for (size_t word = 0; word < frame.bitWords; ++word) {
        uint64_t set = bits[word];
        if (set == 0) {
            continue;
        }
        bits[word] = 0;
        do {
            const auto block = static_cast<int32_t>(word * 64) + __builtin_ctzll(set);
            set &= set - 1;
            const int32_t from = block * 8;
            if (from > done) {
                gap(from < frame.width ? from : frame.width);
            }
            SweepBlock<K>(cells + static_cast<size_t>(from) * 8, frame.planeBytes, carry, shape + from);
            if (!joins) {
                *++run = {frame.left + from, 0, shape + from, 0};
                joins = true;
            }
            done = from + 8;
            run->x1 = frame.left + done;
        } while (set != 0);
    }
    if (done < frame.width) {
        gap(frame.width);
    } else if (run >= runs) {
        // The last block may lie across the right side, and the guard word wholly beyond it.
        run->x1 = frame.left + frame.width;
        run -= run->x0 >= run->x1 ? 1 : 0;
    }
    return static_cast<size_t>(run + 1 - runs);
}

// ---- Walking edges

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

#define GX_BAND_TABLE                                                                                                  \
    {                                                                                                                  \
        {&WalkList<1>, &WalkList<2>, &WalkList<4>, &WalkList<8>}, {                                                    \
            &SweepRow<1>, &SweepRow<2>, &SweepRow<4>, &SweepRow<8>                                                     \
        }                                                                                                              \
    }
