// SPDX-License-Identifier: MIT
// The fast scanner: processes bands of pixel rows, adding edge after edge to each band without sorting. Gives the same
// counts as the sorting scanner.
#pragma once

#include "BandKernels.h"
#include "EdgeBuilder.h"

namespace Graphics {

class BandScanner {
public:
    /// Replaces the best kernel table, for tests.
    void UseKernels(const BandKernels& kernels) noexcept { m_kernels = &kernels; }

    /// Margin around a fill in fine units: a position lies at most 1.5 sub units right and 0.5 sub units left of its
    /// side.
    static constexpr int32_t kRoom = 32;

    /// Whether band edges represent sides inside these limits (fine units) exactly over `subRows` sub-scanlines.
    [[nodiscard]] static bool Holds(int32_t minX, int32_t minY, int32_t maxX, int32_t maxY, int32_t subRows) noexcept;

    /// False, with nothing sent, if the fill exceeds what band edges represent exactly.
    [[nodiscard]] bool Scan(const EdgeBuilder& builder, const FillShape& shape, const IntRect& visible,
                            RasterizationSink& sink);

    /// Frees arrays that grew large.
    void Trim() noexcept {
        m_edges.Trim();
        m_heads.Trim();
    }

private:
    void AddSide(const Vertex& from, const Vertex& to);
    /// Sizes and clears the arrays of a fill of `rows` rows; all that may fail.
    void Prepare(const EdgeBuilder& builder, BandFrame& frame, int32_t bandRows, int32_t rows, bool resolves);
    /// Sets the limits that AddSide compares with, for a frame inside `visible`.
    void SetLimits(const BandFrame& frame, const IntRect& visible) noexcept;
    /// Walks and sweeps band after band, from `row` on, into which the edges in the list `following` continue.
    void ScanBands(const BandFrame& frame, size_t form, int32_t bandRows, int32_t rows, int32_t row, uint32_t following,
                   RasterizationSink& sink);
    /// Resolves and sweeps row after row, as long as rows have few edges and these keep about the same order. Returns
    /// the first row that it leaves.
    [[nodiscard]] int32_t ScanRows(const BandFrame& frame, int32_t rows, RasterizationSink& sink);
    /// Puts the edges of a list among the active ones, which are about in order. False, with nothing changed, if they
    /// are too many.
    [[nodiscard]] bool Activate(uint32_t head) noexcept;
    /// Moves the active edges down to `row` and makes a list of them.
    [[nodiscard]] uint32_t Relink(int32_t row) noexcept;
    /// Sweeps the rows [first, behind) of the fill, which begin the frame, and sends or paints them.
    void SweepRows(const BandFrame& frame, size_t form, int32_t first, int32_t behind, int32_t rows,
                   RasterizationSink& sink);
    /// Sweeps row `row` of the fill and sends it, and the equal rows behind it.
    void Sweep(const BandFrame& frame, size_t form, size_t bandRow, int32_t row, int32_t rows, RasterizationSink& sink);
    /// Finds the rows that differ from the row before. False, with nothing found, where the search would not pay.
    [[nodiscard]] bool FindChanges(int32_t rows);
    /// Sends rows [y0, y1), which all have the same runs.
    void SendEqual(RasterizationSink& sink, int32_t y0, int32_t y1, std::span<CoverageRun> runs);

    const BandKernels* m_kernels = &KernelTable<BandKernels>::Active();
    HeapArray<uint8_t> m_cells; // zero between fills
    HeapArray<uint64_t> m_bits; // zero between fills
    HeapArray<BandEdge> m_edges;
    HeapArray<uint32_t> m_heads;      // first edge that begins in each row or band
    HeapArray<uint64_t> m_changes;    // one bit per row
    uint32_t m_active[kMostResolved]; // edges of a row
    HeapArray<uint8_t> m_shape;       // bytes of a row, and room for a copy
    HeapArray<CoverageRun> m_runs;    // runs of a row, and room for a copy
    bool m_dirty = false;             // a fill was abandoned: cells are not zero

    // The current fill.
    BandEdge* m_nextEdge = nullptr;
    int32_t m_first = 0; // sub-scanlines to produce
    int32_t m_last = 0;
    int32_t m_origin = 0;    // first sub-scanline of the frame, a multiple of 8
    int32_t m_headShift = 3; // log2 of the sub-scanlines of a head
    int64_t m_edgeRows = 0;  // sum of the rows that edges cross
    size_t m_rowBlocks = 0;
    size_t m_activeCount = 0;
    bool m_isOneColor = false;
    SolidRows m_solid{}; // from the frame's first row on; valid if m_isOneColor
    bool m_hasEqualRows = false;
    bool m_hasUpright = false; // an upright edge spans several rows
    int32_t m_leftSub = 0;
    int32_t m_allLeft = 0; // fine units: a side with no x above this lies left of the frame; the next three likewise
    int32_t m_allRight = 0;
    int32_t m_insideLeft = 0;
    int32_t m_insideRight = 0;
};

} // namespace Graphics
