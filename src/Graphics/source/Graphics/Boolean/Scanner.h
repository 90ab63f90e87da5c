// SPDX-License-Identifier: MIT
// Turns edges that cross, touch and overlap into a plane subdivision whose edges meet at common ends only, and finds
// the borders of the combined area on the way.
//
// Method: the sweep of Bentley and Ottmann (1979) over points of an integer grid. The status holds the edges that the
// sweep line crosses, in order; only neighbours are compared, and where two of them touch or cross, both are cut there.
// Edges with the same start and direction become one edge whose weight is the sum of theirs. Where nearly all edges
// cross, PairwiseWinder finds the border first and the sweep gets nothing but that.
//
// Rounding. A crossing is rounded to the grid, which bends both edges by about a unit, and bent edges may cross edges
// that they did not cross before.
//
// Claim 1: a sweep is the last one if none of its bends matters, that is, if no point that the sweep has passed lies in
// the thin triangle through which a bend turns its edge.
// How it is checked: the corners of the triangle are the edge's ends and the rounded crossing, all of them close to the
// edge's straight line; so whatever lies in the triangle lies near that line and inside the edge's box. At every point
// the sweep notes for both neighbours whether the point lies there (GridEdge::near, close). A bend of an edge without
// such a note changes no answer that the sweep has given.
// Proof: by the above, the final edges have every point on the side that the sweep found (Shamos and Hoey 1976). Take
// the first two final edges that meet elsewhere than at a common end. They would be neighbours just before; the next
// point at which they cease to be neighbours is an end of one of them, or a start between them, and lies on the wrong
// side of one. That contradicts the first sentence. Edges that share both ends are excepted from the argument: of these
// at most one may be a border. Where any of this fails, the pieces are swept again.
//
// Claim 2: there are at most kMostSweeps + 5 sweeps, each of O((n + k) log n) for n edges with k crossings.
//   1. Where bends are in each other's way, the sweep cuts nearby and goes on. If such bends are exceptions
//      (kEdgesPerException) and the order held, the border is right but for about a unit, and the border alone is swept
//      again with x and y exchanged: kMostSweeps times at most, mostly once.
//   2. Otherwise the sweep stops, and exact steps replace it: LineWinder finds the border from lines that are never
//      bent (one sweep), and PixelSnapper moves the border to the grid so that nothing crosses (three sweeps).
//   3. One last sweep links what is left.
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
