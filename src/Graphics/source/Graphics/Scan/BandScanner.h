// SPDX-License-Identifier: MIT
// The fast scanner: bands of pixel rows, edge after edge through each band, no sorting. Gives the counts of the sorting
// scanner.
#pragma once

#include "BandKernels.h"
#include "EdgeBuilder.h"

namespace Graphics {

class BandScanner {
public:
    /// Another table than the best one, for tests.
    void UseKernels(const BandKernels& kernels) noexcept { m_kernels = &kernels; }

    /// A position is at most 1.5 sub units right of its side and half a one left of it: so many fine units are room
    /// enough around a fill.
    static constexpr int32_t kRoom = 32;

    /// Whether the band form holds sides inside these limits (fine units) exactly over so many sub-scanlines.
    [[nodiscard]] static bool Holds(int32_t minX, int32_t minY, int32_t maxX, int32_t maxY, int32_t subRows) noexcept;

    /// False, with nothing sent, when the fill is outside what the band form can hold exactly.
    [[nodiscard]] bool Scan(const EdgeBuilder& builder, const FillShape& shape, const IntRect& visible,
                            RasterizationSink& sink);

    /// Gives back the arrays that a large path left.
    void Trim() noexcept {
        m_edges.Trim();
        m_heads.Trim();
    }

private:
    void AddSide(const Vertex& from, const Vertex& to);
    /// Finds the rows that differ from the row before. False, with nothing found, where that is not worth a look.
    [[nodiscard]] bool FindChanges(int32_t rows);
    /// How many rows from `row` on are like the one before.
    [[nodiscard]] int32_t EqualRows(int32_t row, int32_t rows) const noexcept;
    /// Sends rows [y0, y1) with the same runs.
    void SendEqual(RasterizationSink& sink, int32_t y0, int32_t y1, std::span<CoverageRun> runs);

    const BandKernels* m_kernels = &KernelTable<BandKernels>::Active();
    HeapArray<uint8_t> m_cells; // zero between fills
    HeapArray<uint64_t> m_bits; // likewise
    HeapArray<BandEdge> m_edges;
    HeapArray<uint32_t> m_heads;   // first edge of each band
    HeapArray<uint64_t> m_changes; // one bit a row
    HeapArray<uint8_t> m_shape;    // of a row, and room for a copy
    HeapArray<CoverageRun> m_runs; // likewise
    bool m_dirty = false;          // a fill was abandoned

    // Of the current fill.
    BandEdge* m_nextEdge = nullptr;
    int32_t m_first = 0; // sub-scanlines to produce
    int32_t m_last = 0;
    int32_t m_origin = 0; // first sub-scanline of the frame, a multiple of 8
    int32_t m_bandShift = 0;
    size_t m_rowBlocks = 0;
    bool m_hasUpright = false; // an edge of several rows
    int32_t m_leftSub = 0;
    int32_t m_allLeft = 0; // fine units: a side with no x above this is left of the frame; likewise the others
    int32_t m_allRight = 0;
    int32_t m_insideLeft = 0;
    int32_t m_insideRight = 0;
};

} // namespace Graphics
