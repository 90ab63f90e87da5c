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

/// One key in each lane.
struct Crossings {
    static constexpr size_t kParts = 8 / kLongLanes;
    F64 part[kParts];
};

GX_INLINE inline void ToggleWord(uint8_t* p, uint64_t mask) noexcept { Toggle<1, uint64_t>(p, 0, mask, 0); }

class RowResolver {
public:
    explicit RowResolver(const BandFrame& frame) noexcept : m_frame(frame) {}

    /// Inserts edge `i` into the sorted crossings of those before it, in the row that begins at sub-scanline `first`.
    /// Edges whose crossings change places change them in `active` too, which is about their order in the next row.
    /// Returns the number of edges that it passed.
    size_t Insert(const BandEdge* edges, uint32_t* active, size_t i, int32_t first) noexcept {
        const size_t place = i;
        const uint32_t index = active[i];
        const BandEdge& e = edges[index];
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
        for (; i != 0; --i) {
            Crossings& before = m_crossings[i - 1];
            if (!AnyAbove(before, v)) {
                break;
            }
            for (size_t k = 0; k < Crossings::kParts; ++k) {
                m_crossings[i].part[k] = Higher(before.part[k], v.part[k]);
                v.part[k] = Lower(before.part[k], v.part[k]);
            }
            active[i] = active[i - 1];
        }
        active[i] = index;
        m_crossings[i] = v;
        return place - i;
    }

    /// Toggles what bounds the inside.
    void Toggle(size_t count) const noexcept {
        // The sum of d + 1 over i crossings is i where the winding is 0.
        U64 sum[Crossings::kParts] = {};
        U64 none{};
        for (size_t i = 0; i < count; ++i) {
            const U64 next = none + 1U;
            uint32_t lanes = 0;
            for (size_t k = 0; k < Crossings::kParts; ++k) {
                const I64 before = sum[k] == none;
                sum[k] += (U64)m_crossings[i].part[k] & 3U;
                lanes |= (MaskBits(before) ^ MaskBits((I64)(sum[k] == next))) << (k * kLongLanes);
            }
            none = next;
            if (lanes != 0) {
                ToggleAt(m_crossings[i], lanes);
            }
        }
    }

private:
    static constexpr int64_t kBase = int64_t{0x433} << 52;

    GX_INLINE static bool AnyAbove(const Crossings& a, const Crossings& b) noexcept {
        uint32_t above = 0;
        for (size_t k = 0; k < Crossings::kParts; ++k) {
            above |= MaskBits((I64)(a.part[k] > b.part[k]));
        }
        return above != 0;
    }

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
    Crossings m_crossings[kMostResolved];
};

size_t ResolveRow(const BandFrame& frame, const BandEdge* edges, uint32_t* active, size_t& count, int32_t first) {
    RowResolver resolver(frame);
    size_t passed = 0;
    for (size_t i = 0; i < count; ++i) {
        passed += resolver.Insert(edges, active, i, first);
    }
    resolver.Toggle(count);
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
