// SPDX-License-Identifier: MIT
// Coverage of upright rectangles that stand in one row or one column, like the dashes of a ruled line: no edges, no
// sweep. Gives the same counts as the other scanners.
#pragma once

#include "EdgeBuilder.h"
#include "RasterizationSink.h"

namespace Graphics {

class BoxScanner {
public:
    /// Takes a non-zero fill whose figures are all rectangles. False if they do not stand in one row or column, one
    /// after another, or if `snap` might turn them into whole pixels.
    [[nodiscard]] bool Prepare(const EdgeBuilder& builder, const IntRect& visible, bool snap);

    /// The sub-scanlines for RasterizationSink::Begin; first >= last if the fill is empty.
    [[nodiscard]] int32_t First() const noexcept { return m_first; }
    [[nodiscard]] int32_t Last() const noexcept { return m_last; }

    void Send(RasterizationSink& sink);
    /// Frees arrays that grew large.
    void Trim() noexcept {
        m_boxes.Trim();
        m_spans.Trim();
        m_columns.Trim();
    }

private:
    /// In sub units.
    struct Span {
        int32_t from;
        int32_t to;
    };
    struct Box {
        Span x;
        Span y;
    };
    /// In pixels.
    struct Columns {
        int32_t from;
        int32_t to;
    };

    void CountColumns(const Span* spans, size_t count);
    void SendRows(RasterizationSink& sink, int32_t from, int32_t to, int32_t subRows);

    HeapArray<Box> m_boxes;
    HeapArray<Span> m_spans;      // along the row or column, ascending and disjoint
    HeapArray<Columns> m_columns; // columns with coverage, including short gaps
    HeapArray<uint8_t> m_counts;  // covered sub columns of each pixel from m_left on
    HeapArray<uint8_t> m_shape;   // bytes of a row with m_shapeRows sub rows
    HeapArray<uint8_t> m_scratch; // the copy given to a sink, which may change it
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
