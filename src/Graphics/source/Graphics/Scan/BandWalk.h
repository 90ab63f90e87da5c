// SPDX-License-Identifier: MIT
// Walks edges through a band: toggles each sub-scanline's column in its row's bits. Part of the band loops.
#pragma once

#include <cstring>

#include "../Simd/Vectors.h"
#include "BandKernels.h"

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

/// Sub-scanlines [s, end) of one pixel row; x is the edge's position at s.
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

/// Toggles an edge in one pixel row: in each of its sub-scanlines [s, stop) the byte 0xFF << (c & 7) in the word of
/// pixel c >> 3, where c is the edge's column there. x is the position at s; c0 and c1 are the columns at s and stop -
/// 1.
#if GX_SIMD_BYTES == 64
/// Sub-scanlines are lanes; each pixel takes the lanes whose column lies in it.
class RowColumns {
public:
    GX_INLINE explicit RowColumns(int64_t step) noexcept
        : m_step(step), m_steps(LongAscending() * static_cast<uint64_t>(step)) {}

    template <int K, bool Clamp>
    GX_INLINE void Walk(uint8_t* row, size_t planeBytes, int64_t x, int32_t s, int32_t stop, int32_t c0, int32_t c1,
                        int32_t limit, uint64_t flip) const noexcept {
        I64 c = (I64)(static_cast<uint64_t>(Advance(x, m_step, -s)) + m_steps) >> kBandFraction;
        if (Clamp) {
            const I64 least{};
            const I64 most = I64{} + limit;
            c = c > least ? c : least;
            c = c < most ? c : most;
        }
        const auto lanes = static_cast<RowMask>((0xFFU >> (8 - stop)) & (0xFFU << s));
        const U64 columns = (U64{} + 0xFFU) << (U64)(c & 7);
        const I64 pixels = c >> 3;
        const auto toggle = [&](int32_t p, uint64_t mask) GX_INLINE {
            Toggle<K, uint64_t>(row + static_cast<size_t>(p) * 8, planeBytes, mask, flip);
        };
        const int32_t p0 = c0 >> 3;
        const int32_t p1 = c1 >> 3;
        if (static_cast<uint32_t>(p1 - p0 + 1) <= 2) {
            // One pixel or two: both are done as two, because the branch would not be predictable.
            const RowMask here = EqualLanes(lanes, pixels, p0);
            const uint64_t mask0 = LowBytes(here, columns);
            const uint64_t mask1 = LowBytes(static_cast<RowMask>(lanes & ~here), columns);
            toggle(p0, mask0);
            toggle(p1, mask1);
        } else if (p0 - p1 <= 4 && p1 - p0 <= 4) {
            const int32_t high = p0 < p1 ? p1 : p0;
            for (int32_t p = p0 < p1 ? p0 : p1; p <= high; ++p) {
                toggle(p, LowBytes(EqualLanes(lanes, pixels, p), columns));
            }
        } else {
            WalkScalar<K, Clamp>(row, planeBytes, x, m_step, s, stop, limit, flip);
        }
    }

private:
    int64_t m_step;
    U64 m_steps;
};
#else
/// Rows in which the edge stays inside one pixel are toggled at once, all others by sub-scanlines.
class RowColumns {
public:
    GX_INLINE explicit RowColumns(int64_t step) noexcept
        : m_step(step), m_steps(LongAscending() * static_cast<uint64_t>(step)) {}

    template <int K, bool Clamp>
    GX_INLINE void Walk(uint8_t* row, size_t planeBytes, int64_t x, int32_t s, int32_t stop, int32_t c0, int32_t c1,
                        int32_t limit, uint64_t flip) const noexcept {
        if (stop - s != 8 || c0 >> 3 != c1 >> 3) {
            WalkScalar<K, Clamp>(row, planeBytes, x, m_step, s, stop, limit, flip);
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

template <int K, bool Clamp>
inline void WalkEdge(const BandFrame& frame, const BandEdge& e, int64_t x, int32_t y, int32_t end) {
    const int64_t step = e.step;
    const size_t planeBytes = frame.planeBytes;
    const int32_t limit = frame.width * 8;
    const uint64_t flip = (e.flags & kEdgeUp) != 0 ? ~uint64_t{0} : 0;
    uint8_t* row = frame.cells + static_cast<size_t>(y >> 3) * frame.rowBytes;
    uint64_t* bits = frame.bits + static_cast<size_t>(y >> 3) * frame.bitWords;
    const RowColumns columns(step);
    do {
        const int32_t s = y & 7;
        const int32_t stop = end - y < 8 - s ? s + (end - y) : 8;
        const int32_t c0 = Column<Clamp>(x, limit);
        const int32_t c1 = Column<Clamp>(Advance(x, step, stop - s - 1), limit);
        MarkBlocks(bits, c0, c1);
        columns.template Walk<K, Clamp>(row, planeBytes, x, s, stop, c0, c1, limit, flip);
        x = Advance(x, step, stop - s);
        y += stop - s;
        row += frame.rowBytes;
        bits += frame.bitWords;
    } while (y < end);
}

/// Toggles an upright edge in the rows of [y, end) that change. Its column is the same in all of them.
template <int K> inline void WalkUpright(const BandFrame& frame, const BandEdge& e, int32_t bandFirst, int32_t end) {
    const auto c = static_cast<uint32_t>(Column<true>(e.x, frame.width * 8));
    const uint64_t column = ((0xFFU << (c & 7)) & 0xFFU) * uint64_t{0x0101010101010101U};
    const uint64_t flip = (e.flags & kEdgeUp) != 0 ? ~uint64_t{0} : 0;
    const int32_t behind = (end + 7) >> 3;
    for (int32_t r = NextChange(frame.changes, e.y >> 3, behind); r < behind;
         r = NextChange(frame.changes, r + 1, behind)) {
        const int32_t first = r * 8;
        const int32_t s = e.y > first ? e.y - first : 0;
        const int32_t stop = end - first < 8 ? end - first : 8;
        const uint64_t lanes = (~uint64_t{0} >> (64 - 8 * stop)) & (~uint64_t{0} << (8 * s));
        const auto row = static_cast<size_t>(r - (bandFirst >> 3));
        frame.bits[row * frame.bitWords + (c >> 12)] |= uint64_t{1} << ((c >> 6) & 63);
        Toggle<K, uint64_t>(frame.cells + row * frame.rowBytes + (c >> 3) * 8, frame.planeBytes, column & lanes, flip);
    }
}

template <int K>
uint32_t WalkList(const BandFrame& frame, BandEdge* edges, uint32_t head, int32_t bandFirst, int32_t bandLast,
                  uint32_t following) {
    while (head != kNoEdge) {
        BandEdge& e = edges[head];
        const uint32_t next = e.next;
        const int32_t end = e.end < bandLast ? e.end : bandLast;
        if (e.flags <= kEdgeUp) {
            WalkEdge<K, false>(frame, e, e.x, e.y - bandFirst, end - bandFirst);
        } else if ((e.flags & kEdgeInChanges) != 0) {
            WalkUpright<K>(frame, e, bandFirst, end);
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
} // namespace Graphics::GX_SIMD_NAMESPACE
