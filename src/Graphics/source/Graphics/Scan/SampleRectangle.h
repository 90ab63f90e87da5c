// SPDX-License-Identifier: MIT
// The samples of one upright rectangle in closed form: pixel (x, y) holds columns(x) * rows(y) of them, so there are at
// most three kinds of columns and three of rows, the first, the last, and all between, which have eight.
//
//          +--+--------------+--+
//          |  |              |  |   first row, 1 to 8 sub-scanlines
//          +--+--------------+--+
//          |  |              |  |
//          |  | full pixels  |  |   full rows
//          |  |              |  |
//          +--+--------------+--+
//          |  |              |  |   last row
//          +--+--------------+--+
#pragma once

#include <algorithm>

#include "EdgeBuilder.h"

namespace Graphics {

/// The shape byte of n samples, 0 to 64: 4 n - 1, and 0 for none.
[[nodiscard]] inline constexpr uint8_t ShapeOfSamples(int32_t n) noexcept {
    return static_cast<uint8_t>(n == 0 ? 0 : n * 4 - 1);
}

class SampleRectangle {
public:
    /// The rectangle between two opposite corners (fine units) inside the sub-scanlines [clipFirst, clipLast) and the
    /// visible pixels. False when it is further out than edges are stepped exactly; the general road knows what they
    /// do there.
    [[nodiscard]] bool Set(const Vertex& a, const Vertex& b, int32_t clipFirst, int32_t clipLast,
                           const IntRect& visible) noexcept;

    /// Pixels around the rectangle between two corners, with the room that the band scanner keeps beside it.
    [[nodiscard]] static IntRect Box(const Vertex& a, const Vertex& b) noexcept;

    [[nodiscard]] bool Empty() const noexcept { return m_first >= m_last; }
    [[nodiscard]] bool OnPixels() const noexcept { return ((m_from | m_to | m_first | m_last) & 7) == 0; }
    /// The pixels with samples.
    [[nodiscard]] IntRect Pixels() const noexcept {
        return {m_from >> 3, m_first >> 3, (m_to + 7) >> 3, (m_last + 7) >> 3};
    }

    /// Sub columns, [From(), To()).
    [[nodiscard]] int32_t From() const noexcept { return m_from; }
    [[nodiscard]] int32_t To() const noexcept { return m_to; }
    [[nodiscard]] int32_t Columns(int32_t pixel) const noexcept {
        return std::clamp(m_to - pixel * 8, 0, 8) - std::clamp(m_from - pixel * 8, 0, 8);
    }
    /// Pixel columns that the band scanner would look at, and whether it would see the right edge in them.
    [[nodiscard]] int32_t FrameLeft() const noexcept { return m_frameLeft; }
    [[nodiscard]] int32_t FrameRight() const noexcept { return m_frameRight; }
    [[nodiscard]] bool SeesRightEdge() const noexcept { return m_seesRightEdge; }

    /// Calls f(y0, y1, rows) for each of the at most three groups of pixel rows with `rows` sub-scanlines each.
    template <class F> void ForRows(F&& f) const {
        const int32_t top = m_first >> 3;
        const int32_t bottom = m_last >> 3; // of the rows that are full at their end
        if (top == (m_last - 1) >> 3) {
            f(top, top + 1, m_last - m_first);
            return;
        }
        const int32_t fullTop = (m_first + 7) >> 3;
        if (top < fullTop) {
            f(top, fullTop, fullTop * 8 - m_first);
        }
        if (fullTop < bottom) {
            f(fullTop, bottom, 8);
        }
        if (bottom * 8 < m_last) {
            f(bottom, bottom + 1, m_last - bottom * 8);
        }
    }

private:
    int32_t m_from = 0; // sub columns
    int32_t m_to = 0;
    int32_t m_first = 0; // sub-scanlines
    int32_t m_last = 0;
    int32_t m_frameLeft = 0;
    int32_t m_frameRight = 0;
    bool m_seesRightEdge = false;
};

} // namespace Graphics
