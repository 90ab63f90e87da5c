// SPDX-License-Identifier: MIT
// The samples of one upright rectangle in closed form. Pixel (x, y) holds columns(x) * rows(y) samples, and there are
// at most three kinds of columns and of rows: the first, the last, and those between, which have eight.
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

#include "../Kernels/RowKernels.h"
#include "EdgeBuilder.h"

namespace Graphics {

/// The coverage byte of n samples, 0 to 64: 4 n - 1, and 0 for n = 0.
[[nodiscard]] inline constexpr uint8_t ShapeOfSamples(int32_t n) noexcept {
    return static_cast<uint8_t>(n == 0 ? 0 : n * 4 - 1);
}

class SampleRectangle {
public:
    /// The rectangle between two opposite corners (fine units) inside the sub-scanlines [clipFirst, clipLast) and the
    /// visible pixels. False if it lies beyond the range in which edges are stepped exactly; the caller then builds
    /// edges.
    [[nodiscard]] bool Set(const Vertex& a, const Vertex& b, int32_t clipFirst, int32_t clipLast,
                           const IntRect& visible) noexcept;

    /// The pixels around the rectangle between two corners, including the band scanner's margin.
    [[nodiscard]] static IntRect Box(const Vertex& a, const Vertex& b) noexcept;

    [[nodiscard]] bool Empty() const noexcept { return m_first >= m_last; }
    [[nodiscard]] bool OnPixels() const noexcept { return ((m_from | m_to | m_first | m_last) & 7) == 0; }
    /// The pixels that have samples.
    [[nodiscard]] IntRect Pixels() const noexcept {
        return {m_from >> 3, m_first >> 3, (m_to + 7) >> 3, (m_last + 7) >> 3};
    }

    /// The rectangle's sub columns, [From(), To()).
    [[nodiscard]] int32_t From() const noexcept { return m_from; }
    [[nodiscard]] int32_t To() const noexcept { return m_to; }
    [[nodiscard]] int32_t Columns(int32_t pixel) const noexcept {
        return std::clamp(m_to - pixel * 8, 0, 8) - std::clamp(m_from - pixel * 8, 0, 8);
    }
    /// The pixel columns of the band scanner's frame, and whether its right edge lies in them.
    [[nodiscard]] int32_t FrameLeft() const noexcept { return m_frameLeft; }
    [[nodiscard]] int32_t FrameRight() const noexcept { return m_frameRight; }
    [[nodiscard]] bool SeesRightEdge() const noexcept { return m_seesRightEdge; }

    /// Calls f(y0, y1, rows) for each of the at most three groups of pixel rows with `rows` sub-scanlines each.
    template <class F> void ForRows(F&& f) const {
        const int32_t top = m_first >> 3;
        const int32_t bottom = m_last >> 3; // end of the full rows
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

    /// The counts of samples, for one call that paints them all. Requires !Empty().
    [[nodiscard]] SampleFrame Frame() const noexcept {
        const IntRect pixels = Pixels();
        const auto columns = [this](int32_t pixel) { return static_cast<uint32_t>(Columns(pixel)); };
        SampleFrame frame{columns(pixels.left), columns(pixels.right - 1), {}};
        SampleFrame::Rows* next = frame.rows;
        ForRows([&](int32_t y0, int32_t y1, int32_t rows) {
            *next++ = {static_cast<uint32_t>(rows), static_cast<size_t>(y1 - y0)};
        });
        return frame;
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
