// SPDX-License-Identifier: MIT
// Whole pixels for upright rectangles. Inline, since most rectangles of a page take no other route.
#pragma once

#include <algorithm>

#include "EdgeBuilder.h"

namespace Graphics {

struct PixelRange {
    int32_t low;
    int32_t high; // exclusive
};

/// Whole pixels for the sub units [a, b]: their length rounded up. If the touched pixels are one too many, it is
/// dropped at the end that lies less deep in its pixel; at the far end if both are equal.
[[nodiscard]] inline PixelRange SnapToPixels(int32_t a, int32_t b) noexcept {
    PixelRange r{a >> 3, (b + 7) >> 3};
    int32_t length = (b - a + 7) >> 3;
    if (b - a + 7 < 8) {
        length = 1;
        if (r.low == r.high) {
            ++r.high;
        }
    }
    if (r.high - r.low >= length + 1) {
        if ((a & 7) <= r.high * 8 - b) {
            --r.high;
        } else {
            ++r.low;
        }
    }
    return r;
}

/// The whole pixels that a snapped fill of the upright rectangle between two opposite corners would send, without
/// running the fill. False if it has no height.
[[nodiscard]] inline bool SnapRectangle(const IntRect& clipPixels, const Vertex& a, const Vertex& b,
                                        IntRect& out) noexcept {
    const int32_t clipFirst = clipPixels.top * 8;
    const int32_t clipLast = clipPixels.bottom * 8;
    // The result of edge set-up for a constant x.
    const int32_t first = std::min(a.y, b.y) >> 4;
    const int32_t last = std::max(a.y, b.y) >> 4;
    // EdgeBuilder drops vertices that are all at or beyond the clip's left side, including those exactly on it.
    if (first == last || first >= clipLast || last <= clipFirst || std::max(a.x, b.x) <= clipPixels.left * 128) {
        return false;
    }
    const PixelRange x = SnapToPixels(UprightColumn(std::min(a.x, b.x)), UprightColumn(std::max(a.x, b.x)));
    const PixelRange y = SnapToPixels(std::max(first, clipFirst), last);
    out = {x.low, y.low, x.high, y.high};
    return true;
}

} // namespace Graphics
