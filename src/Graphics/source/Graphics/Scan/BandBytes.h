// SPDX-License-Identifier: MIT
// Windings in bytes: a pixel is a line of 64 bytes, eight for each sub-scanline, one for each column. Part of the band
// loops.
//
// An edge that crosses sub-scanline s at column c adds +1 or -1 to that one byte, whatever the windings are; sums from
// left to right, modulo 256, are the windings. So overlapping figures cost what others cost, and only pixels that edges
// cross are ever read: marks have one bit for each pixel. With verbs for eight bytes a line lies by columns, eight bytes of
// sub-scanlines for each, so columns are added to columns.
#pragma once

#include <cstring>

#include "BandColumns.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

#ifdef GX_SIMD_QUADS
/// The columns of a pixel in its four vectors.
GX_INLINE inline U8 ColumnsOf(int vector) noexcept {
    const U8 first{0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1};
    return first + static_cast<uint8_t>(2 * vector);
}
#endif

/// Adds an edge to one pixel row after the other.
class Bytes {
    static constexpr size_t kParts = 8 / kLongLanes;

public:
    static constexpr int kMarkShift = 0;

#ifdef GX_SIMD_QUADS
    GX_INLINE Bytes(const BandFrame& /*frame*/, const BandEdge& e) noexcept
        : m_columns(e.step), m_step(e.step), m_unit((e.flags & kEdgeUp) != 0 ? 0xFF : 1) {}

    template <bool Clamp> GX_INLINE void Walk(uint8_t* row, uint64_t* bits, const RowPart& part) const noexcept {
        const int32_t p0 = part.c0 >> 3;
        const int32_t p1 = part.c1 >> 3;
        const int32_t more = p0 < p1 ? p1 - p0 : p0 - p1;
        if (Clamp || more >= EightColumns::kMostPixels) {
            WalkBytes<Clamp>(row, bits, part);
            return;
        }
        auto p = static_cast<uint32_t>(p0 < p1 ? p0 : p1);
        const Eight taken = EightOf(BytesTaken(part.s, part.stop));
        U8 columns = Twofold(m_columns.From(part, static_cast<int32_t>(p)) | ~taken); // those not taken are in no pixel
        const U8 minus = U8{} - static_cast<uint8_t>(m_unit);                         // times -1
        for (const uint32_t last = p + static_cast<uint32_t>(more);; ++p) {
            uint8_t* const cell = row + size_t{p} * 64;
            Quad sums = LoadQuad(cell);
            for (int i = 0; i < 4; ++i) {
                sums.v[i] = (U32)MultiplyAddBytes((U8)sums.v[i], (U8)(columns == ColumnsOf(i)), minus);
            }
            StoreQuad(cell, sums);
            bits[p >> 6] |= uint64_t{1} << (p & 63);
            if (p == last) {
                return;
            }
            columns -= 8;
        }
    }
#else
    GX_INLINE Bytes(const BandFrame& /*frame*/, const BandEdge& e) noexcept
        : m_step(e.step), m_unit((e.flags & kEdgeUp) != 0 ? 0xFF : 1) {
        for (size_t i = 0; i < kParts; ++i) {
            m_steps[i] = (LongAscending() + i * kLongLanes) * static_cast<uint64_t>(e.step);
        }
    }

    template <bool Clamp> GX_INLINE void Walk(uint8_t* row, uint64_t* bits, const RowPart& part) const noexcept {
        const auto p0 = static_cast<uint32_t>(part.c0) >> 3;
        const auto p1 = static_cast<uint32_t>(part.c1) >> 3;
        const bool near = p1 - p0 + kNear <= 2 * kNear;
        if (!kWide || !near || (Clamp && !kClamps)) {
            WalkBytes<Clamp>(row, bits, part);
            return;
        }
        const uint64_t origin = static_cast<uint64_t>(Advance(part.x, m_step, -part.s));
        U64 places[kParts]; // the byte of each sub-scanline's column: its unit shifted
        I64 pixels[kParts];
        for (size_t i = 0; i < kParts; ++i) {
            const U64 lane = LongAscending() + i * kLongLanes;
            I64 c = (I64)((origin + m_steps[i]) >> kBandFraction);
            if (Clamp) {
                c = (I64)(origin + m_steps[i]) >> kBandFraction;
                const I64 least{};
                const I64 most = I64{} + part.limit;
                c = c > least ? c : least;
                c = c < most ? c : most;
            }
            const I64 taken = ((I64)lane >= part.s) & ((I64)lane < part.stop);
            pixels[i] = c >> 3;
            places[i] = ((U64{} + m_unit) << ((U64)(c & 7) << 3)) & (U64)taken;
        }
        const auto add = [&](uint32_t p) GX_INLINE {
            uint8_t* const cell = row + size_t{p} * 64;
            for (size_t i = 0; i < kParts; ++i) {
                const I64 here = pixels[i] == static_cast<int64_t>(p);
                const U64 added = here ? places[i] : U64{};
                places[i] = here ? U64{} : places[i]; // p1 may be p0
                uint8_t* const at = cell + i * GX_SIMD_BYTES;
                Store(at, (U8)Load<U64>(at) + (U8)added);
            }
            bits[p >> 6] |= uint64_t{1} << (p & 63);
        };
        if (p1 - p0 + 1 <= 2) {
            // One pixel or two: both are done as two, because the branch would not be predictable.
            add(p0);
            add(p1);
            return;
        }
        const uint32_t high = p0 < p1 ? p1 : p0;
        for (uint32_t p = p0 < p1 ? p0 : p1; p <= high; ++p) {
            add(p);
        }
    }

#endif

    /// The same column c in sub-scanlines [s, stop).
    GX_INLINE void Upright(uint8_t* row, uint64_t* bits, uint32_t c, int32_t s, int32_t stop) const noexcept {
        for (; s < stop; ++s) {
            Add(row, bits, c, s);
        }
    }

    /// The shape bytes of eight pixels.
    struct Shapes {
        GX_INLINE void StoreShapes(uint8_t* out) const noexcept { std::memcpy(out, &bytes, sizeof bytes); }

        uint64_t bytes;
    };

    /// The windings of a row from left to right.
    class Sums {
    public:
        GX_INLINE explicit Sums(const BandFrame& /*frame*/) noexcept {
            for (U64& part : m_carry) {
                part = U64{};
            }
        }
        /// The number of samples inside, of a pixel in which no winding changes.
#ifdef GX_SIMD_QUADS
        GX_INLINE uint32_t Inside() const noexcept {
            return 64 + 4 * static_cast<uint32_t>(SumOfBytes((I8)((U8)m_carry[0] == 0)));
        }
#else
        GX_INLINE uint32_t Inside() const noexcept { return NonZeroBytes(m_carry); }
#endif
        /// Takes the first block of the marks off them. Returns its first pixel in the word.
        GX_INLINE static int32_t Next(uint64_t& marks, uint32_t& pixels) noexcept {
            const int block = __builtin_ctzll(marks) & ~7;
            pixels = static_cast<uint32_t>(marks >> block) & 0xFFU;
            marks &= ~(uint64_t{0xFF} << block);
            return block;
        }
        /// Sums the eight pixels from `pixel` on; zeroes the marked ones.
        GX_INLINE Shapes Block(uint8_t* row, size_t pixel, uint32_t pixels) noexcept {
            uint8_t* const cells = row + pixel * 64;
            uint64_t eight = ConstantShapes();
            do {
                const auto p = static_cast<size_t>(__builtin_ctz(pixels));
                pixels &= pixels - 1;
                const uint64_t own = ShapeOf(Sum(cells + p * 64));
                const uint64_t low = (uint64_t{1} << (8 * p)) - 1;
                eight = (eight & low) | (ConstantShapes() << 8 | own) << (8 * p);
            } while (pixels != 0);
            return {eight};
        }

    private:
        GX_INLINE uint64_t ConstantShapes() const noexcept { return ShapeOf(Inside()) * uint64_t{0x0101010101010101U}; }
        GX_INLINE static uint64_t ShapeOf(uint32_t count) noexcept { return count * 4 - (count != 0 ? 1 : 0); }
        /// The number of samples inside, of a pixel in which windings change. Zeroes it.
#ifdef GX_SIMD_QUADS
        GX_INLINE uint32_t Sum(uint8_t* cell) noexcept {
            const Quad changes = LoadQuad(cell);
            StoreQuad(cell, Quad{});
            I8 zeros{}; // -1 for each byte of 0
            auto carry = (U8)m_carry[0];
            for (const U32 v : changes.v) {
                const U8 windings = (U8)v + HalfMovedUp((U8)v) + carry;
                carry = UpperTwice(windings);
                zeros += (I8)(windings == 0);
            }
            m_carry[0] = (U64)carry;
            return static_cast<uint32_t>(64 + SumOfBytes(zeros));
        }

        U64 m_carry[1]; // of each sub-scanline, twice
#else
        GX_INLINE uint32_t Sum(uint8_t* cell) noexcept {
            U64 windings[kParts];
            for (size_t i = 0; i < kParts; ++i) {
                uint8_t* const at = cell + i * GX_SIMD_BYTES;
                auto v = Load<U64>(at);
                Store(at, U64{});
                v = (U64)((U8)v + (U8)(v << 8));
                v = (U64)((U8)v + (U8)(v << 16));
                v = (U64)((U8)v + (U8)(v << 32));
                windings[i] = (U64)((U8)v + (U8)m_carry[i]);
                m_carry[i] = SpreadLastBytes(windings[i]);
            }
            return NonZeroBytes(windings);
        }

        U64 m_carry[kParts];
#endif
    };

private:
    static constexpr uint32_t kNear = 4;             // pixels that an edge may cross in a row to be added by pixels
    static constexpr bool kWide = kLongLanes >= 4;   // the set shifts each lane by its own count
    static constexpr bool kClamps = kLongLanes == 8; // and to the right with the sign

    GX_INLINE void Add(uint8_t* row, uint64_t* bits, uint32_t c, int32_t s) const noexcept {
#ifdef GX_SIMD_QUADS
        uint8_t& at = row[size_t{c} * 8 + static_cast<uint32_t>(s)];
#else
        uint8_t& at = row[size_t{c & ~7U} * 8 + (c & 7) + static_cast<uint32_t>(s) * 8];
#endif
        at = static_cast<uint8_t>(at + m_unit);
        bits[c >> 9] |= uint64_t{1} << ((c >> 3) & 63);
    }

    /// Flat edges skip pixels; blocks of eight between those that they change are marked all the same, because runs are
    /// cut at the blocks from an edge's first to its last column in whatever form windings are kept.
    template <bool Clamp> void WalkBytes(uint8_t* row, uint64_t* bits, const RowPart& part) const noexcept {
        int64_t x = part.x;
        for (int32_t s = part.s; s < part.stop; ++s) {
            Add(row, bits, static_cast<uint32_t>(Column<Clamp>(x, part.limit)), s);
            x = Advance(x, m_step, 1);
        }
        const int32_t block0 = part.c0 >> 6;
        const int32_t block1 = part.c1 >> 6;
        const auto last = static_cast<uint32_t>(block0 < block1 ? block1 : block0);
        for (auto block = static_cast<uint32_t>(block0 < block1 ? block0 : block1) + 1; block < last; ++block) {
            bits[block >> 3] |= uint64_t{1} << (block & 7) * 8;
        }
    }

#ifdef GX_SIMD_QUADS
    EightColumns m_columns;
#else
    U64 m_steps[kParts];
#endif
    int64_t m_step;
    uint64_t m_unit;
};

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
