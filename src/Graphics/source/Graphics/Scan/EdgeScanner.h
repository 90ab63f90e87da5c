// SPDX-License-Identifier: MIT
// The sorting scanner: an active edge list, stepped by sub-scanlines, with trapezoid bands for sinks that accept them.
// Slower than the band scanner, but without its limits.
#pragma once

#include "CoverageBuffer.h"
#include "EdgeBuilder.h"
#include "SampleGrid.h"

namespace Graphics {

class EdgeScanner {
public:
    /// Scans the sub-scanlines [first, last). Consumes the edges.
    void Scan(HeapArray<Edge>& edges, bool evenOdd, bool trapezoids, int32_t first, int32_t last,
              const IntRect& visible, RasterizationSink& sink);

    /// Scans the sub-scanlines [first, last) into a grid, whose first sample is sub unit 0 of sub-scanline 0.
    void Scan(HeapArray<Edge>& edges, bool evenOdd, int32_t first, int32_t last, SampleGrid& grid);

    /// Frees arrays that grew large.
    void Trim() noexcept { m_active.Trim(); }

private:
    void Start(HeapArray<Edge>& edges, bool evenOdd);
    void Insert(const Edge* from, const Edge* to);
    void AddSpans() noexcept;
    void Step(int32_t next) noexcept;
    void Restore() noexcept;
    [[nodiscard]] int64_t FindBandEnd(int32_t s, int64_t limit) const noexcept;
    void EmitTrapezoids(int32_t s, int32_t end, RasterizationSink& sink);
    template <class F> void ForEachSpan(F&& f) noexcept(noexcept(f(size_t{}, size_t{})));

    HeapArray<Edge> m_active; // sorted by x
    CoverageBuffer m_row;
    bool m_evenOdd = false;
};

} // namespace Graphics
