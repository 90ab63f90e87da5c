// SPDX-License-Identifier: MIT
// Turns edges that cross, touch and overlap at will into a plane subdivision whose edges meet at common ends only, and
// finds the borders of the combined area on the way.
//
// A sweep (Bentley and Ottmann 1979) over grid points keeps the edges under the sweep line in order and looks at
// neighbours alone: where two of them touch or cross, both are cut. Edges of one start and direction become one edge
// with the sum of their weights, so what overlaps is handled once. Where nearly all edges cross, PairwiseWinder finds
// the border beforehand and the sweep gets nothing else.
//
// A crossing is rounded to the grid, which bends the two edges by a unit or so; bent edges may cross others. A sweep is
// the last one if it bends nothing, or if no bend matters. A bend takes effect ahead of the sweep, where all is still
// to be looked at, and behind it, where the edge turns through a thin triangle. Corners of the triangle are the edge's
// ends, which stray little from its line, and the line is straight: what lies in the triangle is near the line and in
// the edge's box. So at every point the sweep notes of both neighbours whether the point lies there (GridEdge::near,
// close). A bend of an edge without such a note changes no answer given before: the final edges have passed every point
// at the side that was found. By the argument of Shamos and Hoey (1976) they don't cross then: the first two to meet
// would have been neighbours just before, and the next point at which they cease to be neighbours, an end of one of
// them or a start between them, would have been at the wrong side of one. Edges that share both ends are the exception;
// of these no two may be borders. Otherwise the pieces are swept again.
//
// The number of sweeps is bounded. Where bends are in each other's way, a sweep cuts nearby and goes on. If such bends
// are exceptions and its order held, its border is right but for a unit or so, and the border alone is swept again, x
// and y exchanged: kMostSweeps times at most, mostly once. Else the sweep stops at once, and all begins anew with lines
// that are never bent: LineWinder finds the border by the exact order, one sweep, and PixelSnapper moves it to the grid
// so that nothing crosses, three sweeps. The last sweep only links what is left. So there are kMostSweeps + 5 at most,
// each of (n + k) log n.
#pragma once

#include "BorderLinker.h"
#include "EdgeCutter.h"
#include "EdgePieces.h"
#include "EventQueue.h"
#include "SweepState.h"
#include "SweepStatus.h"
#include "WindingTest.h"

namespace Graphics {

class Scanner {
public:
    using Counts = SweepCounts;

    explicit Scanner(const WindingTest& test) noexcept
        : m_test(test), m_status(m_edges.All()), m_cutter(m_edges, m_queue, m_state), m_linker(m_edges, test) {}
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;

    /// An edge of a closed ring of operand A or B.
    void AddEdge(const GridPoint& from, const GridPoint& to, bool ofB) { m_edges.Add(from, to, ofB); }
    /// An edge that stands for several, whose weights add up to (a, b); its ends differ.
    void AddEdge(const GridPoint& from, const GridPoint& to, int32_t a, int32_t b) { m_edges.Add(from, to, a, b); }
    /// Says how many edges will be added next.
    void Expect(size_t edges) { m_edges.Expect(edges); }
    /// Cuts and winds. Afterwards the edges with a border are linked to closed borders, inside at the same hand.
    void Run();

    [[nodiscard]] HeapArray<GridEdge>& Edges() noexcept { return m_edges.All(); }
    /// How many points there are at which several borders meet.
    [[nodiscard]] uint32_t Junctions() const noexcept { return m_linker.Junctions(); }
    /// Whether x and y of the edges are exchanged, and with them left and right.
    [[nodiscard]] bool Transposed() const noexcept { return m_edges.Transposed(); }
    [[nodiscard]] Counts Work() noexcept {
        return {m_state.sweeps + m_exactSweeps, m_points, m_cutter.Comparisons(), m_edges.Cuts(), m_pairs};
    }

private:
    static constexpr uint32_t kNone = GridEdge::kNone;
    static constexpr uint32_t kMostSweeps = 4;
    static constexpr size_t kEdgesPerException = 1024;
    using Place = SweepStatus::Place;
    using Stray = GridEdge::Stray;

    void KeepBorder();
    void SnapBorder();
    [[nodiscard]] bool Doubtful() const noexcept;
    void Sweep();
    void ProcessPoint();
    [[nodiscard]] bool PassPoint();
    [[nodiscard]] Place TakeOutEnds();
    [[nodiscard]] bool Touches(uint32_t edge, int hand) noexcept;
    void TakeOutStragglers(Place& place);
    void SortStarts();
    void MergeStarts();

    const WindingTest m_test;
    EdgePieces m_edges;
    SweepStatus m_status;
    EventQueue m_queue;
    SweepState m_state;
    EdgeCutter m_cutter;
    BorderLinker m_linker;
    HeapArray<GridEdge> m_pairBorder; // what PairwiseWinder has found
    bool m_fromPairs = false, m_snapped = false;
    size_t m_exceptionsAllowed = 0;
    uint32_t m_exactSweeps = 0;
    uint64_t m_pairs = 0;
    uint64_t m_points = 0;
    uint32_t m_taken = 0; // how many edges in the status end at the point
    HeapArray<uint32_t> m_endHints, m_ends, m_starts;
};

} // namespace Graphics
