// SPDX-License-Identifier: MIT
// Combination where no single grid will do: far coordinates would make it too coarse for near detail.
//
// 1. Bands of x and bands of y (FloatBands) cut the plane into cells. In a cell the grid is even along x and along y,
// and
//    no finer than the floats, so all that was proved of a Scanner on one grid holds in it, and what it gives are
//    floats.
// 2. A line that leaves a cell is cut at the border, at the point of the border's grid nearest to where the line as it
// was
//    put in meets it. Both cells get the same point, and bends of several cells do not add up.
// 3. For a cell, all that lies outside of it is moved to the nearest point of its border. That is a continuous map
// which
//    leaves the cell as it is: rings stay closed, and winding numbers inside stay what they were. On a border the moved
//    edges are added up to one weight for each stretch; it changes only where a line meets the border, so the sums are
//    no more than what crosses the border, however much lies behind it.
// 4. Edges of the result that lie in a cell are within the closed cell, since every cut point lies in the box of what
// it
//    cuts. So results of two cells meet at common borders only, where both say what is inside (BorderPuzzle). Nothing
//    crosses, whatever was rounded in either.
// 5. Every point of the result is off by one and a half grid steps along x and along y at most: as many floats where
// floats
//    are coarse, and less than the tolerance elsewhere. A point that was put in beyond the even grid stays as it is.
//
// The plane is halved again and again, with what it holds, until a single cell is left, or a few edges that meet at
// common ends only: those need no cut. An edge meets at most one border for each band: time is that of a sweep over all
// pieces, of which there are at most two for each bound that a line passes.
#pragma once

#include "BorderPuzzle.h"
#include "FloatBands.h"
#include "SweepState.h"
#include "WindingTest.h"

namespace Graphics {

class CellCombiner {
public:
    /// What the work was, for those who measure it.
    struct Counts {
        uint64_t pieces = 0; // of edges in all cells
        uint64_t cells = 0;  // that were swept
        SweepCounts sweep;   // of all together; but the most sweeps of one
    };

    CellCombiner(const WindingTest& test, const FloatBands& bands, BorderPuzzle& result) noexcept
        : m_test(test), m_bands(bands), m_result(result) {}
    CellCombiner(const CellCombiner&) = delete;
    CellCombiner& operator=(const CellCombiner&) = delete;

    /// A closed ring of operand A or B.
    void AddRing(const HeapArray<Point>& ring, bool ofB);
    void Run();
    [[nodiscard]] Counts Work() const noexcept { return m_work; }

private:
    static constexpr uint32_t kNone = 0xFFFFFFFFU;
    static constexpr size_t kFewEdges = 16;

    struct Line {
        Point from, to;
    };
    struct Edge {
        Point from, to;
        uint32_t line; // that it is a piece of; kNone for sums on borders
        int32_t a, b;
    };
    /// Bands first ... last - 1 along x and along y.
    struct Region {
        size_t first[2], last[2];
    };
    struct Box {
        float low[2], high[2]; // along x and y
        [[nodiscard]] bool OnBorder(const Point& p, const Point& q) const noexcept {
            return (p.x == q.x && (p.x == low[0] || p.x == high[0])) ||
                   (p.y == q.y && (p.y == low[1] || p.y == high[1]));
        }
    };
    struct WeightStep {
        float at;
        int32_t a, b;
    };

    [[nodiscard]] Box BoxOf(const Region& region) const noexcept;
    void Divide(const Region& region, HeapArray<Edge>& edges);
    void Halve(PlaneAxis axis, float at, const HeapArray<Edge>& edges, HeapArray<Edge>& low, HeapArray<Edge>& high);
    void AddStep(const WeightStep& step);
    void MoveToBorder(PlaneAxis axis, float at, const HeapArray<Edge>& from, size_t count, HeapArray<Edge>& to);
    void PutEdge(const Box& box, const Point& from, const Point& to);
    [[nodiscard]] bool Simple(const HeapArray<Edge>& edges) const noexcept;
    void PutSimple(const Box& box, const HeapArray<Edge>& edges);
    void PutSimpleEdge(const Box& box, const HeapArray<Edge>& edges, Edge e);
    void PutBorders(const Box& box, const HeapArray<Edge>& edges);
    void Sweep(const Region& region, const Box& box, const HeapArray<Edge>& edges);

    const WindingTest m_test;
    const FloatBands& m_bands;
    BorderPuzzle& m_result;
    HeapArray<Line> m_lines;
    HeapArray<Edge> m_edges;
    HeapArray<WeightStep> m_steps;
    uint32_t m_inner[kFewEdges]{}; // edges of the region in hand that are not on its border
    size_t m_inners = 0;
    Counts m_work;
};

} // namespace Graphics
