// SPDX-License-Identifier: MIT
// Resolves the windings of a pixel row that few edges cross: sorts each sub-scanline's crossings and adds only those to
// the row's single plane at which zero becomes non-zero, or the reverse. The row is then swept as if it were even-odd,
// and edges inside the figure cost no more than the sorting. Part of the band loops.
//
// Crossings are sorted in vectors, one lane for each sub-scanline. A crossing is a double, 2^52 + 4 column + 1 + d, with
// d = 1 or -1 for the edge's direction and 0 in sub-scanlines that it does not reach; so keys are compared as doubles
// and read as integers. Edges come in their order of the row above, so few lanes are out of order. Crossings in the same
// column may come in any order: what they toggle there cancels.
#pragma once

#include "BandPlanes.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

#ifdef GX_SIMD_QUADS
/// Keys are integers of 32 bits, 4 column + 1 + d, so a row's eight lie in two vectors; lanes of the row are also the bytes of a
/// word, as in the cells.
struct Crossings {
    I32 part[2];
};
GX_INLINE inline bool AnyAbove(const Crossings& a, const Crossings& b) noexcept {
    return !NoneSet((U32)(a.part[0] > b.part[0]) | (U32)(a.part[1] > b.part[1]));
}
GX_INLINE inline Crossings HigherOf(const Crossings& a, const Crossings& b) noexcept {
    return {{HigherWords(a.part[0], b.part[0]), HigherWords(a.part[1], b.part[1])}};
}
GX_INLINE inline Crossings LowerOf(const Crossings& a, const Crossings& b) noexcept {
    return {{LowerWords(a.part[0], b.part[0]), LowerWords(a.part[1], b.part[1])}};
}
#else
/// One key in each lane.
struct Crossings {
    static constexpr size_t kParts = 8 / kLongLanes;
    F64 part[kParts];
};
GX_INLINE inline bool AnyAbove(const Crossings& a, const Crossings& b) noexcept {
    uint32_t above = 0;
    for (size_t k = 0; k < Crossings::kParts; ++k) {
        above |= MaskBits((I64)(a.part[k] > b.part[k]));
    }
    return above != 0;
}
GX_INLINE inline Crossings HigherOf(const Crossings& a, const Crossings& b) noexcept {
    Crossings r;
    for (size_t k = 0; k < Crossings::kParts; ++k) {
        r.part[k] = Higher(a.part[k], b.part[k]);
    }
    return r;
}
GX_INLINE inline Crossings LowerOf(const Crossings& a, const Crossings& b) noexcept {
    Crossings r;
    for (size_t k = 0; k < Crossings::kParts; ++k) {
        r.part[k] = Lower(a.part[k], b.part[k]);
    }
    return r;
}
#endif

/// The crossings of a row's edges, each lane in order.
class SortedCrossings {
public:
    /// Inserts those of edge `active[i]` among the i before it. Edges whose crossings change places change them in `active` too,
    /// which is about their order in the next row. Returns the number of edges that it passed.
    GX_INLINE size_t Insert(Crossings v, uint32_t* active, size_t i) noexcept {
        const size_t place = i;
        const uint32_t index = active[i];
        for (; i != 0; --i) {
            const Crossings before = m_crossings[i - 1];
            if (!AnyAbove(before, v)) {
                break;
            }
            m_crossings[i] = HigherOf(before, v);
            v = LowerOf(before, v);
            active[i] = active[i - 1];
        }
        active[i] = index;
        m_crossings[i] = v;
        return place - i;
    }
    GX_INLINE const Crossings& operator[](size_t i) const noexcept { return m_crossings[i]; }

private:
    Crossings m_crossings[kMostResolved];
};

/// RowResolver, one for each form of crossings: CrossingsOf gives those of an edge in the row that begins at sub-scanline
/// `first`, Toggle toggles what bounds the inside.
#ifdef GX_SIMD_QUADS
class RowResolver {
public:
    explicit RowResolver(const BandFrame& frame) noexcept : m_frame(frame) {}

    void Toggle(const SortedCrossings& crossings, size_t count) const noexcept {
        // The sum of d + 1 over i crossings is i where the winding is 0.
        U32 sum[2] = {};
        U32 none{};
        for (size_t i = 0; i < count; ++i) {
            const U32 next = none + 1U;
            U32 changed[2];
            for (int k = 0; k < 2; ++k) {
                const auto before = (U32)(sum[k] == none);
                sum[k] += (U32)crossings[i].part[k] & 3U;
                changed[k] = before ^ (U32)(sum[k] == next);
            }
            none = next;
            const uint64_t lanes = WordOf(LowBytesOf(changed[0], changed[1]));
            if (lanes != 0) {
                ToggleAt(crossings[i], lanes);
            }
        }
    }

    GX_INLINE Crossings CrossingsOf(const BandEdge& e, int32_t first) const noexcept {
        const auto origin = static_cast<uint64_t>(Advance(e.x, e.step, first - e.y));
        const EightSums sums(static_cast<uint64_t>(e.step));
        U32 c[2] = {(U32)((I32)sums.HighHalves(origin, 0) >> (kBandFraction - 32)),
                    (U32)((I32)sums.HighHalves(origin, 4) >> (kBandFraction - 32))};
        const uint32_t code = (e.flags & kEdgeUp) != 0 ? 0 : 2;
        U32 codes[2] = {Splat(code), Splat(code)};
        if (e.y > first || e.end < first + 8) {
            // Elsewhere the nearest position, which is about in order, and a direction of 0.
            const auto begin = static_cast<uint8_t>(e.y > first ? e.y - first : 0);
            const auto end = static_cast<uint8_t>(e.end < first + 8 ? e.end - first : 8);
            const Eight lanes{0, 1, 2, 3, 4, 5, 6, 7};
            Eight nearest = lanes;
            nearest = nearest > begin ? nearest : Eight{} + begin;
            nearest = nearest < end ? nearest : static_cast<uint8_t>(end - 1) + Eight{};
            PickWords(c, nearest);
            for (uint32_t k = 0; k < 2; ++k) {
                const U32 lane = Ascending() + 4 * k;
                codes[k] = Select((I32)((lane >= begin) & (lane < end)), codes[k], Splat(1U));
            }
        }
        Crossings v;
        for (int k = 0; k < 2; ++k) {
            auto column = (I32)c[k];
            if ((e.flags & ~kEdgeUp) != 0) {
                column = LowerWords(HigherWords(column, I32{}), I32{} + m_frame.width * 8);
            }
            v.part[k] = (column << 2) + (I32)codes[k];
        }
        return v;
    }

private:
    GX_INLINE void ToggleAt(const Crossings& crossings, uint64_t lanes) const noexcept {
        const Eight columns = LowBytesOf((U32)crossings.part[0] >> 2, (U32)crossings.part[1] >> 2);
        const Eight masks = ShiftedUp(Eight{} + 0xFFU, columns & 7);
        const U32 pixels[2] = {(U32)crossings.part[0] >> 5, (U32)crossings.part[1] >> 5};
        do {
            int32_t key;
            __builtin_memcpy(&key, reinterpret_cast<const uint8_t*>(&crossings) + __builtin_ctzll(lanes) / 8 * 4, 4);
            const auto p = static_cast<uint32_t>(key) >> 5;
            const uint64_t here = WordOf(LowBytesOf((U32)(pixels[0] == p), (U32)(pixels[1] == p))) & lanes;
            m_frame.bits[p >> 9] |= uint64_t{1} << ((p >> 3) & 63);
            Graphics::GX_SIMD_NAMESPACE::Toggle<1, uint64_t>(m_frame.cells + size_t{p} * 8, 0, WordOf(masks) & here, 0);
            lanes &= ~here;
        } while (lanes != 0);
    }

    const BandFrame& m_frame;
};
#else
GX_INLINE inline void ToggleWord(uint8_t* p, uint64_t mask) noexcept { Toggle<1, uint64_t>(p, 0, mask, 0); }

class RowResolver {
public:
    explicit RowResolver(const BandFrame& frame) noexcept : m_frame(frame) {}

    void Toggle(const SortedCrossings& crossings, size_t count) const noexcept {
        // The sum of d + 1 over i crossings is i where the winding is 0.
        U64 sum[Crossings::kParts] = {};
        U64 none{};
        for (size_t i = 0; i < count; ++i) {
            const U64 next = none + 1U;
            uint32_t lanes = 0;
            for (size_t k = 0; k < Crossings::kParts; ++k) {
                const I64 before = sum[k] == none;
                sum[k] += (U64)crossings[i].part[k] & 3U;
                lanes |= (MaskBits(before) ^ MaskBits((I64)(sum[k] == next))) << (k * kLongLanes);
            }
            none = next;
            if (lanes != 0) {
                ToggleAt(crossings[i], lanes);
            }
        }
    }

    GX_INLINE Crossings CrossingsOf(const BandEdge& e, int32_t first) const noexcept {
        const auto origin = static_cast<uint64_t>(Advance(e.x, e.step, first - e.y));
        const int64_t begin = e.y > first ? e.y - first : 0;
        const int64_t end = e.end < first + 8 ? e.end - first : 8;
        const bool clamps = (e.flags & ~kEdgeUp) != 0;
        const int64_t code = (e.flags & kEdgeUp) != 0 ? 0 : 2;
        Crossings v;
        for (size_t k = 0; k < Crossings::kParts; ++k) {
            const I64 row = (I64)(LongAscending() + k * kLongLanes);
            I64 lane = row;
            if (end - begin != 8) {
                // Elsewhere the nearest position, which is about in order.
                lane = lane > begin ? lane : I64{} + begin;
                lane = lane < end ? lane : I64{} + (end - 1);
            }
            const U64 x = origin + (U64)lane * static_cast<uint64_t>(e.step);
            I64 c = (I64)(x >> kBandFraction);
            if (clamps) {
                const I64 most = I64{} + int64_t{m_frame.width} * 8;
                c = (I64)x < 0 ? I64{} : c; // a position is below 2^63
                c = c < most ? c : most;
            }
            v.part[k] = (F64)(kBase | c << 2 | (lane == row ? I64{} + code : I64{} + 1));
        }
        return v;
    }

private:
    static constexpr int64_t kBase = int64_t{0x433} << 52;

    GX_INLINE static uint32_t ColumnOf(const Crossings& crossings, int lane) noexcept {
        uint64_t key;
        __builtin_memcpy(&key, reinterpret_cast<const uint8_t*>(&crossings) + static_cast<size_t>(lane) * 8, 8);
        return static_cast<uint32_t>(key) >> 2;
    }

    GX_INLINE void ToggleAt(const Crossings& crossings, uint32_t lanes) const noexcept {
        uint8_t* const row = m_frame.cells;
        uint64_t* const bits = m_frame.bits;
        const auto mark = [&](uint32_t c) GX_INLINE { bits[c >> 12] |= uint64_t{1} << ((c >> 6) & 63); };
#if GX_SIMD_BYTES == 64
        const I64 c = (I64)((U64)crossings.part[0] << 32 >> 34);
        do {
            const uint32_t c0 = ColumnOf(crossings, __builtin_ctz(lanes));
            const uint32_t c1 = ColumnOf(crossings, 31 - __builtin_clz(lanes));
            const U64 columns = (U64{} + 0xFFU) << (U64)(c & 7);
            const RowMask first = EqualLanes(static_cast<RowMask>(lanes), c >> 3, c0 >> 3);
            const RowMask last = EqualLanes(static_cast<RowMask>(lanes & ~first), c >> 3, c1 >> 3);
            mark(c0);
            mark(c1);
            ToggleWord(row + (c0 & ~7U), LowBytes(first, columns));
            ToggleWord(row + (c1 & ~7U), LowBytes(last, columns));
            lanes &= ~(first | static_cast<uint32_t>(last));
        } while (lanes != 0);
#else
        do {
            const int lane = __builtin_ctz(lanes);
            lanes &= lanes - 1;
            const uint32_t c = ColumnOf(crossings, lane);
            mark(c);
            row[(c & ~7U) + static_cast<uint32_t>(lane)] ^= static_cast<uint8_t>(0xFFU << (c & 7));
        } while (lanes != 0);
#endif
    }

    const BandFrame& m_frame;
};
#endif

size_t ResolveRow(const BandFrame& frame, const BandEdge* edges, uint32_t* active, size_t& count, int32_t first) {
    const RowResolver resolver(frame);
    SortedCrossings crossings;
    size_t passed = 0;
    for (size_t i = 0; i < count; ++i) {
        passed += crossings.Insert(resolver.CrossingsOf(edges[active[i]], first), active, i);
    }
    resolver.Toggle(crossings, count);
    size_t kept = 0;
    for (size_t i = 0; i < count; ++i) {
        const uint32_t index = active[i];
        active[kept] = index;
        kept += edges[index].end > first + 8 ? 1 : 0;
    }
    count = kept;
    return passed;
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
