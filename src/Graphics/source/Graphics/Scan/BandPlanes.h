// SPDX-License-Identifier: MIT
// Windings in bit planes: a pixel is a 64-bit word in each plane, byte = sub-scanline, bit = column. Part of the band
// loops. One plane is the fastest form for the even-odd rule and for figures that do not overlap; twelve or sixteen
// planes hold the windings that a byte cannot.
//
// Marks have one bit for eight pixels.
#pragma once

#include <cstring>

#include "BandColumns.h"

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

#if GX_SIMD_BYTES == 64
/// Toggles the columns c of `lanes`, all in the pixels p0 to p1; each pixel takes the lanes whose column lies in it.
template <int K>
GX_INLINE inline void ToggleLanes(uint8_t* row, size_t planeBytes, I64 c, RowMask lanes, int32_t p0, int32_t p1,
                                  uint64_t flip) noexcept {
    const U64 columns = (U64{} + 0xFFU) << (U64)(c & 7);
    const I64 pixels = c >> 3;
    const auto toggle = [&](int32_t p, uint64_t mask) GX_INLINE {
        Toggle<K, uint64_t>(row + static_cast<size_t>(p) * 8, planeBytes, mask, flip);
    };
    if (static_cast<uint32_t>(p1 - p0 + 1) <= 2) {
        // One pixel or two: both are done as two, because the branch would not be predictable.
        const RowMask here = EqualLanes(lanes, pixels, p0);
        toggle(p0, LowBytes(here, columns));
        toggle(p1, LowBytes(static_cast<RowMask>(lanes & ~here), columns));
        return;
    }
    const int32_t high = p0 < p1 ? p1 : p0;
    for (int32_t p = p0 < p1 ? p0 : p1; p <= high; ++p) {
        toggle(p, LowBytes(EqualLanes(lanes, pixels, p), columns));
    }
}

/// Toggles an edge in part of a pixel row: in each sub-scanline the byte 0xFF << (c & 7) in the word of pixel c >> 3,
/// where c is the edge's column there. Sub-scanlines are lanes.
class RowColumns {
public:
    GX_INLINE explicit RowColumns(int64_t step) noexcept
        : m_step(step), m_steps(LongAscending() * static_cast<uint64_t>(step)) {}

    /// In the single plane, an edge that stays in the pixels `low` and `low` + 1. Reads and writes both.
    template <bool Clamp> GX_INLINE void TogglePair(uint8_t* row, const RowPart& part, int32_t low) const noexcept {
        const I64 c = Columns<Clamp>(part);
        TogglePixels(row + static_cast<size_t>(low) * 8, (U64{} + 0xFFU) << (U64)(c & 7), Lanes(part),
                     EqualLanes(Lanes(part), c >> 3, low + 1));
    }

    template <int K, bool Clamp>
    GX_INLINE void Walk(uint8_t* row, size_t planeBytes, const RowPart& part, uint64_t flip) const noexcept {
        const I64 c = Columns<Clamp>(part);
        const int32_t p0 = part.c0 >> 3;
        const int32_t p1 = part.c1 >> 3;
        if (p0 - p1 <= 4 && p1 - p0 <= 4) {
            ToggleLanes<K>(row, planeBytes, c, Lanes(part), p0, p1, flip);
        } else {
            WalkScalar<K, Clamp>(row, planeBytes, part, m_step, flip);
        }
    }

private:
    GX_INLINE static RowMask Lanes(const RowPart& part) noexcept {
        return static_cast<RowMask>((0xFFU >> (8 - part.stop)) & (0xFFU << part.s));
    }
    template <bool Clamp> GX_INLINE I64 Columns(const RowPart& part) const noexcept {
        I64 c = (I64)(static_cast<uint64_t>(Advance(part.x, m_step, -part.s)) + m_steps) >> kBandFraction;
        if (Clamp) {
            const I64 least{};
            const I64 most = I64{} + part.limit;
            c = c > least ? c : least;
            c = c < most ? c : most;
        }
        return c;
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
    GX_INLINE void Walk(uint8_t* row, size_t planeBytes, const RowPart& part, uint64_t flip) const noexcept {
        const int32_t p0 = part.c0 >> 3;
        const int32_t p1 = part.c1 >> 3;
        const int32_t low = p0 < p1 ? p0 : p1;
        const int32_t more = p0 < p1 ? p1 - p0 : p0 - p1;
        if (Clamp || more >= EightColumns::kMostPixels) {
            WalkScalar<K, Clamp>(row, planeBytes, part, m_step, flip);
            return;
        }
        const Eight columns = m_columns.From(part, low);
        const Eight masks = ShiftedUp(Eight{} + 0xFFU, columns & 7) & EightOf(EightColumns::Taken(part));
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
    GX_INLINE explicit RowColumns(int64_t step) noexcept
        : m_step(step), m_steps(LongAscending() * static_cast<uint64_t>(step)) {}

    template <int K, bool Clamp>
    GX_INLINE void Walk(uint8_t* row, size_t planeBytes, const RowPart& part, uint64_t flip) const noexcept {
        auto [x, s, stop, c0, c1, limit] = part;
        if (stop - s != 8 || c0 >> 3 != c1 >> 3) {
            WalkScalar<K, Clamp>(row, planeBytes, part, m_step, flip);
            return;
        }
        uint64_t mask = 0;
        if (m_step == 0) {
            mask = ((0xFFU << (c0 & 7)) & 0xFFU) * uint64_t{0x0101010101010101U};
        } else if constexpr (kLongLanes == 4 && !Clamp) {
            const U64 full = U64{} + 0xFFU;
            const U64 low = static_cast<uint64_t>(x) + m_steps;
            const U64 high = low + static_cast<uint64_t>(Advance(0, m_step, 4));
            const U64 places = LongAscending() * 8;
            const U64 first = (full << (low >> kBandFraction & 7)) & full;
            const U64 last = (full << (high >> kBandFraction & 7)) & full;
            const U64 both = first << places | last << (places + 32);
            const U64 pairs = both | MovedUp<2>(both, both);
            mask = pairs[0] | pairs[1];
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
    U64 m_steps;
};
#endif

/// a += b for numbers of K bits; element j holds bit j.
template <int K> inline void AddPlanes(U64* a, const U64* b) {
    U64 carry = U64{};
    for (int j = 0; j < K; ++j) {
        const U64 sum = Xor3(a[j], b[j], carry);
        if (j + 1 < K) {
            carry = Majority(a[j], b[j], carry);
        }
        a[j] = sum;
    }
}

#if GX_SIMD_BYTES == 64
/// The winding in column 7 of each pixel of a block, summed from the left. A bit for each sample of that column is all that
/// is summed: bit 8 p + s belongs to pixel p and sub-scanline s. Element j holds bit j of the windings. General registers
/// do that faster than vectors, and beside them.
template <int K> class ColumnSums {
public:
    /// Takes the sum left of the block further to that right of it. `left` is the sum left of each pixel, in all columns.
    GX_INLINE void Add(const U64* w, U64* left) noexcept {
        uint64_t sum[K];
        for (int j = 0; j < K; ++j) {
            sum[j] = HighBits(w[j]);
        }
        AddMoved<8>(sum);
        AddMoved<16>(sum);
        AddMoved<32>(sum);
        uint64_t carry[K];
        for (int j = 0; j < K; ++j) {
            carry[j] = m_carry[j] * kOnes;
        }
        AddBits(sum, carry);
        for (int j = 0; j < K; ++j) {
            left[j] = SpreadBits(sum[j] << 8 | m_carry[j]);
            m_carry[j] = sum[j] >> 56;
        }
    }

    /// The number of sub-scanlines in which the sum is not 0.
    GX_INLINE uint32_t Inside() const noexcept {
        uint64_t inside = m_carry[0];
        for (int j = 1; j < K; ++j) {
            inside |= m_carry[j];
        }
        return static_cast<uint32_t>(__builtin_popcountll(inside));
    }

private:
    static constexpr uint64_t kOnes = 0x0101010101010101U;

    GX_INLINE static void AddBits(uint64_t* a, const uint64_t* b) noexcept {
        uint64_t carry = 0;
        for (int j = 0; j < K; ++j) {
            const uint64_t sum = a[j] ^ b[j] ^ carry;
            carry = (a[j] & b[j]) | (carry & (a[j] | b[j]));
            a[j] = sum;
        }
    }
    template <int kBits> GX_INLINE static void AddMoved(uint64_t* a) noexcept {
        uint64_t up[K];
        for (int j = 0; j < K; ++j) {
            up[j] = a[j] << kBits;
        }
        AddBits(a, up);
    }

    uint64_t m_carry[K] = {};
};
#else
template <int K, size_t N> inline void AddShifted(U64* a) {
    U64 up[K];
    for (int j = 0; j < K; ++j) {
        up[j] = MovedUp<N>(a[j], U64{});
    }
    AddPlanes<K>(a, up);
}

/// The winding in column 7 of each pixel of a block, summed from the left. Element j holds bit j of the windings, in all
/// columns of each sub-scanline.
template <int K> class ColumnSums {
public:
    /// Takes the sum left of the pixels w further to that right of them. `left` is the sum left of each pixel.
    GX_INLINE void Add(const U64* w, U64* left) noexcept {
        U64 right[K];
        for (int j = 0; j < K; ++j) {
            right[j] = (U64)((I8)w[j] < 0);
        }
        AddShifted<K, 1>(right);
        if constexpr (kLongLanes > 2) {
            AddShifted<K, 2>(right);
        }
        AddPlanes<K>(right, m_carry);
        for (int j = 0; j < K; ++j) {
            left[j] = MovedUp<1>(right[j], m_carry[j]);
            m_carry[j] = Last(right[j]);
        }
    }

    /// The number of sub-scanlines in which the sum is not 0.
    GX_INLINE uint32_t Inside() const noexcept {
        U64 inside = m_carry[0];
        for (int j = 1; j < K; ++j) {
            inside |= m_carry[j];
        }
        constexpr uint64_t kOnes = 0x0101010101010101U;
        return static_cast<uint32_t>((inside[0] & kOnes) * kOnes >> 56);
    }

private:
    U64 m_carry[K] = {};
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
        U64 left[K];
        sums.Add(w, left);
        AddPlanes<K>(w, left);
        U64 inside = w[0];
        for (int j = 1; j < K; ++j) {
            inside |= w[j];
        }
        counts.parts[part] = BitCount(inside);
    }
    return counts;
}

template <int K> class Planes {
public:
    static constexpr int kMarkShift = 3;

    GX_INLINE Planes(const BandFrame& frame, const BandEdge& e) noexcept
        : m_columns(e.step), m_planeBytes(frame.planeBytes), m_flip((e.flags & kEdgeUp) != 0 ? ~uint64_t{0} : 0) {}

    template <bool Clamp> GX_INLINE void Walk(uint8_t* row, uint64_t* bits, const RowPart& part) const noexcept {
#if GX_SIMD_BYTES == 64
        if constexpr (K == 1) {
            const int32_t p0 = part.c0 >> 3;
            const int32_t p1 = part.c1 >> 3;
            if (static_cast<uint32_t>(p1 - p0 + 1) <= 2) {
                // One pixel or two: both are done as two, because the branch would not be predictable.
                m_columns.template TogglePair<Clamp>(row, part, p0 < p1 ? p0 : p1);
                MarkPixel(bits, p0);
                MarkPixel(bits, p1);
                return;
            }
        }
#endif
        MarkBlocks(bits, part.c0, part.c1);
        m_columns.template Walk<K, Clamp>(row, m_planeBytes, part, m_flip);
    }

    /// The same column c in sub-scanlines [s, stop).
    GX_INLINE void Upright(uint8_t* row, uint64_t* bits, uint32_t c, int32_t s, int32_t stop) const noexcept {
        const uint64_t column = ((0xFFU << (c & 7)) & 0xFFU) * uint64_t{0x0101010101010101U};
        const uint64_t lanes = (~uint64_t{0} >> (64 - 8 * stop)) & (~uint64_t{0} << (8 * s));
        bits[c >> 12] |= uint64_t{1} << ((c >> 6) & 63);
        Toggle<K, uint64_t>(row + (c >> 3) * 8, m_planeBytes, column & lanes, m_flip);
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
