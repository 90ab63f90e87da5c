// SPDX-License-Identifier: MIT
// Windings in bit planes: a pixel is a 64-bit word in each plane, byte = sub-scanline, bit = column. Part of the band
// loops. One plane is the fastest form for the even-odd rule and for figures that do not overlap; up to five are faster than
// bytes where pairs of pixels are toggled at once; twelve or sixteen planes hold the windings that a byte cannot.
//
// Marks have one bit for eight pixels.
#pragma once

#include <cstring>

#include "BandColumns.h"
#include "ColumnSums.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// Adds the bits of `mask` to the planes with carry if `flip` is 0; subtracts them if it is all ones.
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

GX_INLINE inline void MarkPixel(uint64_t* bits, int32_t p) {
    bits[static_cast<uint32_t>(p) >> 9] |= uint64_t{1} << (static_cast<uint32_t>(p) >> 3 & 63);
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
    SetBits(bits, b0, b1);
}

template <int K, bool Clamp>
inline void WalkScalar(uint8_t* row, size_t planeBytes, const RowPart& part, int64_t step, uint64_t flip) {
    int64_t x = part.x;
    for (int32_t s = part.s; s < part.stop; ++s) {
        const auto c = static_cast<uint32_t>(Column<Clamp>(x, part.limit));
        Toggle<K, uint8_t>(row + (c & ~7U) + static_cast<uint32_t>(s), planeBytes,
                           static_cast<uint8_t>(0xFFU << (c & 7)), static_cast<uint8_t>(flip));
        x = Advance(x, step, 1);
    }
}

#ifdef GX_SIMD_PAIRS
/// Toggle for two neighbouring pixels.
template <int K> GX_INLINE inline void TogglePair(uint8_t* p, size_t planeBytes, Pair mask, uint64_t flip) noexcept {
    const Pair flips = Pair{} + flip;
    for (int j = 0; j < K; ++j, p += planeBytes) {
        const auto w = Load<Pair>(p);
        Store(p, w ^ mask);
        mask &= w ^ flips;
        if (j >= 5 && (mask[0] | mask[1]) == 0) { // of many planes carries reach the first few only
            return;
        }
    }
}

/// Toggles an edge in part of a pixel row: in each sub-scanline the byte 0xFF << (c & 7) in the word of pixel c >> 3,
/// where c is the edge's column there. Sub-scanlines are lanes.
class RowColumns {
public:
    GX_INLINE explicit RowColumns(int64_t step) noexcept
        : m_step(step), m_steps(LongAscending() * static_cast<uint64_t>(step)) {}

    template <int K, bool Clamp>
    GX_INLINE void Walk(uint8_t* row, uint64_t* bits, size_t planeBytes, const RowPart& part,
                        uint64_t flip) const noexcept {
        const int32_t p0 = part.c0 >> 3;
        const int32_t p1 = part.c1 >> 3;
        const int32_t low = p0 < p1 ? p0 : p1;
        const int32_t more = p0 < p1 ? p1 - p0 : p0 - p1;
        if (more >= kMostInPairs) {
            MarkBlocks(bits, part.c0, part.c1);
            WalkScalar<K, Clamp>(row, planeBytes, part, m_step, flip);
            return;
        }
        uint8_t* at = row + static_cast<size_t>(low) * 8;
        Pair columns = Columns<Clamp>(part, low * 8);
        if (more <= 1) {
            // One pixel or two: both are done as two, because the branch would not be predictable.
            TogglePair<K>(at, planeBytes, PairMasks(columns), flip);
            MarkPixel(bits, p0);
            MarkPixel(bits, p1);
            return;
        }
        MarkBlocks(bits, part.c0, part.c1);
        for (int32_t i = 0; i <= more; i += 2) {
            TogglePair<K>(at, planeBytes, PairMasks(columns), flip);
            at += 16;
            columns = NextPair(columns);
        }
    }

private:
    /// From column `from` on, the first of the leftmost pixel.
    template <bool Clamp> GX_INLINE Pair Columns(const RowPart& part, int32_t from) const noexcept {
        // It may wrap where the edge has not begun.
        const uint64_t origin =
            static_cast<uint64_t>(Advance(part.x, m_step, -part.s)) - (static_cast<uint64_t>(from) << kBandFraction);
        const U64 x = origin + m_steps;
#if GX_SIMD_BYTES == 64
        auto c = (I64)x >> kBandFraction;
#else
        auto c = HighWords(x, x + static_cast<uint64_t>(Advance(0, m_step, 4))) >> (kBandFraction - 32);
#endif
        if (Clamp) {
            const auto least = decltype(c){} - from;
            const auto most = decltype(c){} + (part.limit - from);
            c = c > least ? c : least;
            c = c < most ? c : most;
        }
        return PairColumns(c, BytesTaken(part.s, part.stop));
    }

    int64_t m_step;
    U64 m_steps;
};
#elif defined(GX_SIMD_QUADS)
/// The same by bytes: sub-scanlines are eight of them.
class RowColumns {
public:
    GX_INLINE explicit RowColumns(int64_t step) noexcept : m_columns(step), m_step(step) {}

    template <int K, bool Clamp>
    GX_INLINE void Walk(uint8_t* row, uint64_t* bits, size_t planeBytes, const RowPart& part,
                        uint64_t flip) const noexcept {
        MarkBlocks(bits, part.c0, part.c1);
        const int32_t p0 = part.c0 >> 3;
        const int32_t p1 = part.c1 >> 3;
        const int32_t low = p0 < p1 ? p0 : p1;
        const int32_t more = p0 < p1 ? p1 - p0 : p0 - p1;
        if (Clamp || more >= EightColumns::kMostPixels) {
            WalkScalar<K, Clamp>(row, planeBytes, part, m_step, flip);
            return;
        }
        const Eight columns = m_columns.From(part, low);
        const Eight masks = ShiftedUp(Eight{} + 0xFFU, columns & 7) & EightOf(BytesTaken(part.s, part.stop));
        uint8_t* at = row + static_cast<size_t>(low) * 8;
        if (more == 0) {
            Toggle<K, uint64_t>(at, planeBytes, WordOf(masks), flip);
            return;
        }
        const Eight pixels = columns >> 3;
        for (int32_t p = 0; p <= more; ++p, at += 8) {
            const auto here = (Eight)(pixels == static_cast<uint8_t>(p));
            Toggle<K, uint64_t>(at, planeBytes, WordOf(masks & here), flip);
        }
    }

private:
    EightColumns m_columns;
    int64_t m_step;
};
#else
/// The same for narrower sets: rows in which the edge stays inside one pixel are toggled at once, all others by
/// sub-scanlines.
class RowColumns {
public:
    GX_INLINE explicit RowColumns(int64_t step) noexcept : m_step(step) {}

    template <int K, bool Clamp>
    GX_INLINE void Walk(uint8_t* row, uint64_t* bits, size_t planeBytes, const RowPart& part,
                        uint64_t flip) const noexcept {
        MarkBlocks(bits, part.c0, part.c1);
        auto [x, s, stop, c0, c1, limit] = part;
        if (stop - s != 8 || c0 >> 3 != c1 >> 3) {
            WalkScalar<K, Clamp>(row, planeBytes, part, m_step, flip);
            return;
        }
        uint64_t mask = 0;
        if (m_step == 0) {
            mask = ((0xFFU << (c0 & 7)) & 0xFFU) * kEachByte;
        } else {
            for (int k = 0; k < 64; k += 8) {
                mask |= uint64_t{(0xFFU << (Column<Clamp>(x, limit) & 7)) & 0xFFU} << k;
                x = Advance(x, m_step, 1);
            }
        }
        Toggle<K, uint64_t>(row + static_cast<size_t>(c0 >> 3) * 8, planeBytes, mask, flip);
    }

private:
    int64_t m_step;
};
#endif

/// The sample counts of eight pixels.
struct Counts {
    static constexpr size_t kParts = 8 / kLongLanes;

    GX_INLINE void StoreShapes(uint8_t* out) const noexcept { StoreShape(out, parts); }

    U64 parts[kParts];
};

/// Counts the samples inside of a block of eight pixels and zeroes it.
template <int K> GX_INLINE inline Counts SweepBlock(uint8_t* cells, size_t planeBytes, ColumnSums<K>& sums) {
    Counts counts;
    for (size_t part = 0; part < Counts::kParts; ++part) {
        U64 w[K];
        for (int j = 0; j < K; ++j) {
            auto* p = reinterpret_cast<uint64_t*>(cells + static_cast<size_t>(j) * planeBytes) + part * kLongLanes;
            w[j] = Load<U64>(p);
            Store(p, U64{});
        }
        counts.parts[part] = BitCount(sums.Samples(w));
    }
    return counts;
}

template <int K> class Planes {
public:
    static constexpr int kMarkShift = 3;

    GX_INLINE Planes(const BandFrame& frame, const BandEdge& e) noexcept
        : m_columns(e.step), m_planeBytes(frame.planeBytes), m_flip((e.flags & kEdgeUp) != 0 ? ~uint64_t{0} : 0) {}

    template <bool Clamp> GX_INLINE void Walk(uint8_t* row, uint64_t* bits, const RowPart& part) const noexcept {
        m_columns.template Walk<K, Clamp>(row, bits, m_planeBytes, part, m_flip);
    }

    /// The same column c in sub-scanlines [s, stop).
    GX_INLINE void Upright(uint8_t* row, uint64_t* bits, uint32_t c, int32_t s, int32_t stop) const noexcept {
        const uint64_t column = ((0xFFU << (c & 7)) & 0xFFU) * kEachByte;
        bits[c >> 12] |= uint64_t{1} << ((c >> 6) & 63);
        Toggle<K, uint64_t>(row + (c >> 3) * 8, m_planeBytes, column & BytesTaken(s, stop), m_flip);
    }

    /// The windings of a row from left to right.
    class Sums {
    public:
        GX_INLINE explicit Sums(const BandFrame& frame) noexcept : m_planeBytes(frame.planeBytes) {}
        /// The number of samples inside, of a pixel in which no winding changes.
        GX_INLINE uint32_t Inside() const noexcept { return m_sums.Inside() * 8; }
        /// Takes the first block of the marks off them. Returns its first pixel in the word.
        GX_INLINE static int32_t Next(uint64_t& marks, uint32_t& /*pixels*/) noexcept {
            const int block = __builtin_ctzll(marks);
            marks &= marks - 1;
            return block * 8;
        }
        GX_INLINE Counts Block(uint8_t* row, size_t pixel, uint32_t /*pixels*/) noexcept {
            return SweepBlock<K>(row + pixel * 8, m_planeBytes, m_sums);
        }

    private:
        ColumnSums<K> m_sums;
        size_t m_planeBytes;
    };

private:
    RowColumns m_columns;
    size_t m_planeBytes;
    uint64_t m_flip;
};

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
