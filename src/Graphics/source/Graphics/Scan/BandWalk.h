// SPDX-License-Identifier: MIT
// Walks edges through a band and adds them to the windings of its rows. Part of the band loops.
#pragma once

#include "BandColumns.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// Sub-scanlines [y, end) of the band; x is the edge's position at y.
template <class Windings, bool Clamp>
inline void WalkEdge(const BandFrame& frame, const BandEdge& e, int64_t x, int32_t y, int32_t end) {
    const int64_t step = e.step;
    const int32_t limit = frame.width * 8;
    uint8_t* row = frame.cells + static_cast<size_t>(y >> 3) * frame.rowBytes;
    uint64_t* bits = frame.bits + static_cast<size_t>(y >> 3) * frame.bitWords;
    const Windings windings(frame, e);
    do {
        const int32_t s = y & 7;
        const int32_t stop = end - y < 8 - s ? s + (end - y) : 8;
        const int32_t c0 = Column<Clamp>(x, limit);
        const int32_t c1 = Column<Clamp>(Advance(x, step, stop - s - 1), limit);
        windings.template Walk<Clamp>(row, bits, {x, s, stop, c0, c1, limit});
        x = Advance(x, step, stop - s);
        y += stop - s;
        row += frame.rowBytes;
        bits += frame.bitWords;
    } while (y < end);
}

/// Adds an upright edge to the rows of [y, end) that change. Its column is the same in all of them.
template <class Windings>
inline void WalkUpright(const BandFrame& frame, const BandEdge& e, int32_t bandFirst, int32_t end) {
    const auto c = static_cast<uint32_t>(Column<true>(e.x, frame.width * 8));
    const Windings windings(frame, e);
    const int32_t behind = (end + 7) >> 3;
    for (int32_t r = NextChange(frame.changes, e.y >> 3, behind); r < behind;
         r = NextChange(frame.changes, r + 1, behind)) {
        const int32_t first = r * 8;
        const int32_t s = e.y > first ? e.y - first : 0;
        const int32_t stop = end - first < 8 ? end - first : 8;
        const auto row = static_cast<size_t>(r - (bandFirst >> 3));
        windings.Upright(frame.cells + row * frame.rowBytes, frame.bits + row * frame.bitWords, c, s, stop);
    }
}

template <class Windings>
uint32_t WalkList(const BandFrame& frame, BandEdge* edges, uint32_t head, int32_t bandFirst, int32_t bandLast,
                  uint32_t following) {
    while (head != kNoEdge) {
        BandEdge& e = edges[head];
        const uint32_t next = e.next;
        const int32_t end = e.end < bandLast ? e.end : bandLast;
        if (e.flags <= kEdgeUp) {
            WalkEdge<Windings, false>(frame, e, e.x, e.y - bandFirst, end - bandFirst);
        } else if ((e.flags & kEdgeInChanges) != 0) {
            WalkUpright<Windings>(frame, e, bandFirst, end);
        } else {
            WalkEdge<Windings, true>(frame, e, e.x, e.y - bandFirst, end - bandFirst);
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
