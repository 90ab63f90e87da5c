// SPDX-License-Identifier: MIT
// Turns edges that cross, touch and overlap at will into a plane subdivision whose edges meet at common ends only, and
// finds the borders of the combined area on the way.
//
// A sweep (Bentley and Ottmann 1979) over grid points keeps the edges under the sweep line in order and looks at
// neighbours alone: where two of them touch or cross, both are cut. Edges of one start and direction become one edge
// with the sum of their weights, so what overlaps is handled once. A crossing is rounded to the grid, which bends the
// two edges by at most about one unit; bent edges may cross others. Therefore the pieces are swept again, until a sweep
// bends nothing: all its questions were exact, so by the argument of Shamos and Hoey (1976) nothing crosses any more,
// and its winding numbers and borders are right. Every cut point lies in the box of what it cuts: the lengths |dx| +
// |dy| of the pieces add up to that of the edge, each is at least 1, so the repetition ends; in practice after two or
// three.
//
// That is done eagerly at first: where a bend is in the way, the first sweep cuts nearby and goes on in the right
// order, so that it finds all crossings, however many, at once. If such bends are more than exceptions, or four sweeps
// were not enough, everything begins anew by the patient way, in which a sweep leaves such pairs to the next.
//
// Cut points are computed from the input edges rather than from their bent pieces: bends do not add up.
#pragma once

#include "EventQueue.h"
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

    explicit Scanner(const WindingTest& test) noexcept : m_givenTest(test), m_test(test), m_status(m_edges) {}
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;

    /// An edge of a closed ring of operand A or B.
    void AddEdge(const GridPoint& from, const GridPoint& to, bool ofB) {
        // Up or down is as good as random: no branches.
        const uint64_t begin = SweepKey(from), end = SweepKey(to);
        const int32_t weight = begin < end ? 1 : -1;
        GridEdge edge;
        edge.lo = PointOf(begin < end ? begin : end);
        edge.hi = PointOf(begin < end ? end : begin);
        edge.a = ofB ? 0 : weight;
        edge.b = ofB ? weight : 0;
        edge.line = static_cast<uint32_t>(m_edges.size());
        if (begin != end) {
            m_edges.push_back(edge);
        }
    }
    /// Says how many edges will be added next.
    void Expect(size_t edges) { m_edges.reserve(m_edges.size() + edges); }
    /// Cuts and winds. Afterwards the edges with a border are linked to closed borders, inside at the same hand.
    void Run();

    [[nodiscard]] HeapArray<GridEdge>& Edges() noexcept { return m_edges; }
    /// How many points there are at which several borders meet.
    [[nodiscard]] uint32_t Junctions() const noexcept { return m_junctions; }
    /// Whether x and y of the edges are exchanged, and with them left and right.
    [[nodiscard]] bool Transposed() const noexcept { return m_transposed; }
    [[nodiscard]] const Counts& Work() const noexcept { return m_counts; }

private:
    static constexpr uint32_t kNone = GridEdge::kNone;
    static constexpr uint32_t kEagerSweeps = 4;
    static constexpr size_t kEdgesPerException = 1024;
    static constexpr int32_t kFewUnits = 2;
    using Place = SweepStatus::Place;
    using Stray = GridEdge::Stray;

    struct Line {
        GridPoint from, to;
        int32_t a, b;
    };

    struct LaterCut {
        uint32_t edge;
        GridPoint at;
    };

    void Prepare();
    void KeepBorders() noexcept;
    [[nodiscard]] bool BordersClose() const noexcept;
    [[nodiscard]] bool BordersContinue() const noexcept;
    [[nodiscard]] bool Doubtful() const noexcept;
    void Restart();
    [[nodiscard]] bool EagerSweep() const noexcept { return m_eager && m_counts.sweeps == 1; }
    void Sweep();
    void ProcessPoint();
    [[nodiscard]] bool PassPoint();
    [[nodiscard]] Place TakeOutEnds();
    [[nodiscard]] bool Touches(uint32_t edge, int hand) noexcept;
    void TakeOutStragglers(Place& place);
    void SortStarts();
    void MergeStarts();
    void WindStarts(uint32_t left);
    void LinkBorders(uint32_t left);
    void JoinBorders(uint32_t first, uint32_t second);

    [[nodiscard]] uint32_t PieceEndingAt(uint32_t edge, const GridPoint& p) const noexcept;
    [[nodiscard]] uint32_t Cut(uint32_t edge, GridPoint at);
    void CutNeighbours(uint32_t left, uint32_t right);
    void CutBoth(uint32_t left, uint32_t right, GridPoint at);
    void CutCrossing(uint32_t left, uint32_t right);
    [[nodiscard]] bool NoteBoth(uint32_t left, uint32_t right, const GridPoint& at);
    [[nodiscard]] bool NoteEnds(uint32_t left, uint32_t right);
    [[nodiscard]] bool CutLater(uint32_t edge, const GridPoint& at);
    void CutNoted();
    [[nodiscard]] static Stray DistanceOf(const Line& line, const GridPoint& p) noexcept;
    [[nodiscard]] bool CrossingPoint(const GridEdge& e, const GridEdge& f, GridPoint& at) const noexcept;
    [[nodiscard]] bool Usable(const GridEdge& e, const GridEdge& f, const GridPoint& at) const noexcept;
    void Bend(GridEdge& e, const GridPoint& at) noexcept;
    void Disorder() noexcept {
        m_ordered = false;
        m_bent = true;
    }
    [[nodiscard]] int64_t SideOf(uint32_t edge, const GridPoint& p) noexcept {
        ++m_counts.comparisons;
        return m_edges[edge].SideOf(p);
    }

    const WindingTest m_givenTest;
    WindingTest m_test;
    HeapArray<GridEdge> m_edges;
    HeapArray<Line> m_lines; // the input
    SweepStatus m_status;
    EventQueue m_queue;
    GridPoint m_point{};
    uint32_t m_taken = 0;            // how many edges in the status end at the point
    HeapArray<uint32_t> m_lastPiece; // of each edge that the sweep began with, the one that ends where it ended
    HeapArray<uint32_t> m_endHints, m_ends, m_starts, m_around;
    HeapArray<LaterCut> m_later;
    uint32_t m_junctions = 0;
    bool m_transposed = false;
    size_t m_exceptions = 0; // cuts elsewhere than where the lines cross, as bends were in the way
    bool m_eager = true;
    bool m_bent = false;   // in this sweep
    bool m_ordered = true; // no sign in this sweep that bent edges stood in a wrong order
    bool m_hot = false;    // in any sweep so far: whatever comes near a point goes through it
    Counts m_counts;
};

} // namespace Graphics
