// SPDX-License-Identifier: MIT
// Coverage of upright rectangles that stand in a row or in a column, as the dashes of a ruled line do: no edges, no
// sweep. Gives the counts of the other scanners.
#pragma once

#include "EdgeBuilder.h"
#include "RasterizationSink.h"

namespace Graphics {

class BoxScanner {
public:
    /// Takes a non-zero fill of figures that are all rectangles. False when they do not stand in one row or column, one
    /// after another, or when `snap` could make whole pixels of them.
    [[nodiscard]] bool Prepare(const EdgeBuilder& builder, const IntRect& visible, bool snap);

    /// As Rasterizer tells RasterizationSink::Begin; first >= last when there is nothing.
    [[nodiscard]] int32_t First() const noexcept { return m_first; }
    [[nodiscard]] int32_t Last() const noexcept { return m_last; }

    void Send(RasterizationSink& sink);
    /// Gives back the arrays that many boxes left.
    void Trim() noexcept {
        m_boxes.Trim();
        m_spans.Trim();
        m_stretches.Trim();
    }

private:
    /// Sub units.
    struct Span {
        int32_t from;
        int32_t to;
    };
    struct Box {
        Span x;
        Span y;
    };
    /// Pixels.
    struct Stretch {
        int32_t from;
        int32_t to;
    };

    void CountColumns(const Span* spans, size_t count);
    void SendRows(RasterizationSink& sink, int32_t from, int32_t to, int32_t subRows);

    HeapArray<Box> m_boxes;
    HeapArray<Span> m_spans;        // along the row or column, ascending, apart from each other
    HeapArray<Stretch> m_stretches; // columns with coverage, short gaps included
    HeapArray<uint8_t> m_counts;    // covered sub columns of each pixel from m_left on
    HeapArray<uint8_t> m_shape;     // bytes of a row with m_shapeRows sub rows
    HeapArray<uint8_t> m_scratch;   // what a sink may change
    HeapArray<CoverageRun> m_runs;
    Span m_clipX{};
    Span m_clipY{};
    int32_t m_first = 0;
    int32_t m_last = 0;
    int32_t m_left = 0;
    int32_t m_shapeRows = 0;
    bool m_isRow = false;
};

} // namespace Graphics
