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
// The repetition ends. Every cut point lies in the box of what it cuts, so the lengths |dx| + |dy| of the pieces add up
// to that of the edge, and each is at least 1; merging and leaving out edges only takes away. So the sum over all
// pieces of their length less 1 never grows, shrinks with every cut, and is never negative. And a sweep that is not the
// last has cut: without a bend its questions are exact and all crossings have a cut point. (The bound is astronomical;
// in practice there are one or two sweeps.) Beginning anew, see below, happens once.
//
// Where a bend is in the way, the first sweep cuts nearby and goes on in the right order, so that it finds all
// crossings, however many, at once. If such bends are more than exceptions, or four sweeps were not enough, everything
// begins anew by the patient way, in which a sweep leaves such pairs to the next.
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
    /// What the work was, for those who measure it.
    struct Counts {
        uint32_t sweeps = 0;
        uint64_t points = 0;      // stops of the sweeps
        uint64_t comparisons = 0; // of a point with an edge
        uint64_t cuts = 0;
    };

    explicit Scanner(const WindingTest& test) noexcept
        : m_test(test), m_status(m_edges.All()), m_cutter(m_edges, m_queue, m_state), m_linker(m_edges, test) {}
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;

    /// An edge of a closed ring of operand A or B.
    void AddEdge(const GridPoint& from, const GridPoint& to, bool ofB) { m_edges.Add(from, to, ofB); }
    /// Says how many edges will be added next.
    void Expect(size_t edges) { m_edges.Expect(edges); }
    /// Cuts and winds. Afterwards the edges with a border are linked to closed borders, inside at the same hand.
    void Run();

    [[nodiscard]] HeapArray<GridEdge>& Edges() noexcept { return m_edges.All(); }
    /// How many points there are at which several borders meet.
    [[nodiscard]] uint32_t Junctions() const noexcept { return m_linker.Junctions(); }
    /// Whether x and y of the edges are exchanged, and with them left and right.
    [[nodiscard]] bool Transposed() const noexcept { return m_edges.Transposed(); }
    [[nodiscard]] Counts Work() noexcept { return {m_state.sweeps, m_points, m_cutter.Comparisons(), m_edges.Cuts()}; }

private:
    static constexpr uint32_t kNone = GridEdge::kNone;
    static constexpr uint32_t kEagerSweeps = 4;
    static constexpr size_t kEdgesPerException = 1024;
    using Place = SweepStatus::Place;
    using Stray = GridEdge::Stray;

    void Prepare();
    [[nodiscard]] bool Doubtful() const noexcept;
    void Restart();
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
    uint64_t m_points = 0;
    uint32_t m_taken = 0; // how many edges in the status end at the point
    HeapArray<uint32_t> m_endHints, m_ends, m_starts;
};

} // namespace Graphics
