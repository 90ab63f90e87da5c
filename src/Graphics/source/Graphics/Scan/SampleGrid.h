// SPDX-License-Identifier: MIT
// The samples of a small fill, one bit each, 8 x 8 per pixel. They lie on a grid of 1/8 pixel, so moving a fill by
// whole eighths moves its samples: one grid gives the coverage at all 64 positions.
//
// A row of samples is a row of bytes, one a pixel, the lowest bit leftmost:
//
//     0 | pixel 0 | pixel 1 | ... | pixel width - 1 | 0 | pixel 0 of the next row | ...
//         ^ bits
//
// The zero byte between two rows is the right neighbour of the one and the left neighbour of the other.
#pragma once

#include "../ProcessHeap.h"

namespace Graphics {

/// A read-only grid; the caller owns the samples.
struct SampleView {
    const uint8_t* bits = nullptr; ///< pixel 0 of the first row of samples
    size_t strideBytes = 0;        ///< from one row of samples to the next
    int32_t width = 0;             ///< pixels
    int32_t height = 0;            ///< pixels, eight rows of samples each

    /// Zero bytes before the first row of samples.
    static constexpr size_t kGuardBytes = 1;
    /// Readable bytes behind the last row.
    static constexpr size_t kSlackBytes = 16;

    [[nodiscard]] static size_t StrideFor(int32_t width) noexcept { return static_cast<size_t>(width) + 1; }
    /// Size of the samples, including guard and slack.
    [[nodiscard]] size_t Bytes() const noexcept {
        return kGuardBytes + static_cast<size_t>(height) * 8 * strideBytes + kSlackBytes;
    }

    /// Size in pixels of the fill moved right and down by eighths (0 to 7 each).
    [[nodiscard]] int32_t WidthAt(int32_t right) const noexcept { return width + (right != 0 ? 1 : 0); }
    [[nodiscard]] int32_t HeightAt(int32_t down) const noexcept { return height + (down != 0 ? 1 : 0); }
    /// Coverage bytes from one pixel row to the next: a multiple of 16.
    [[nodiscard]] size_t CoverageStride(int32_t right) const noexcept {
        return (static_cast<size_t>(WidthAt(right)) + 15) / 16 * 16;
    }
    /// Writes HeightAt(down) rows of 8-bit coverage of the moved fill; bytes beyond its width are undefined. `out` is
    /// aligned to 16.
    void Coverage(int32_t right, int32_t down, uint8_t* out) const noexcept;
};

/// A grid under construction. Keeps its memory.
class SampleGrid {
public:
    /// Starts a grid with no sample set.
    void Begin(int32_t width, int32_t height);
    /// Sets the samples [x0, x1) of a row of samples; those outside the grid are ignored.
    void Add(int32_t row, int32_t x0, int32_t x1) noexcept;
    [[nodiscard]] const SampleView& View() const noexcept { return m_view; }

private:
    HeapArray<uint8_t> m_bytes;
    SampleView m_view;
};

} // namespace Graphics
