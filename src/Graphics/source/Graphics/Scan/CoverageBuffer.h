// SPDX-License-Identifier: MIT
// One pixel row of coverage, built from spans in sub units of 1/8 pixel. Used by the sorting scanner.
#pragma once

#include <span>

#include "../ProcessHeap.h"
#include "RasterizationSink.h"

namespace Graphics {

/// The coverage byte for a sample count of 0 to 64.
[[nodiscard]] constexpr uint8_t ShapeOfCount(int32_t count) noexcept {
    return static_cast<uint8_t>(count == 0 ? 0 : count * 4 - 1);
}

class CoverageBuffer {
public:
    /// Keeps the pixel columns [left, right).
    void Begin(int32_t left, int32_t right);
    /// Adds the span [x0, x1) in sub units, x0 < x1.
    void Add(int32_t x0, int32_t x1) noexcept;
    /// Returns the runs of the row and empties the buffer.
    [[nodiscard]] std::span<CoverageRun> Take();

private:
    HeapArray<int32_t> m_change; // of the count from each pixel to the next; zero between rows
    HeapArray<uint8_t> m_shape;
    HeapArray<CoverageRun> m_runs;
    int32_t m_left = 0;
    int32_t m_width = 0;
    int32_t m_low = 0; // touched pixels, relative to m_left
    int32_t m_high = -1;
};

} // namespace Graphics
