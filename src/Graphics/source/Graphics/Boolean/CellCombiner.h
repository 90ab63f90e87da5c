// SPDX-License-Identifier: MIT
// Combination for inputs whose far coordinates would make a single grid too coarse for near detail.
//
// 1. Bands of x and bands of y (FloatBands) cut the plane into cells. In a cell the grid is even along x and along y,
//    and no finer than the floats. So everything proved of a Scanner on one grid holds in the cell, and its output are
//    floats.
// 2. A line that leaves a cell is cut at the border, at the point of the border's grid nearest to the crossing of the
//    input line. Both cells get the same point, and deviations of several cells do not add up.
// 3. For a cell, everything outside is moved to the nearest point of its border. This map is continuous and leaves the
//    cell unchanged: rings stay closed, and winding numbers inside stay the same. Moved edges are summed into one
//    weight for each part of the border. The weight changes only where a line meets the border, so there are no more
//    sums than crossings, however much lies behind the border.
// 4. Result edges of a cell lie within the closed cell, since every cut point lies in the box of the cut line. So
//    results of two cells meet only at common borders, where both record what is inside (BorderPuzzle). Nothing
//    crosses, whatever was rounded in either cell.
// 5. A point of the result is off by at most one and a half grid steps along x and along y: that many floats where
//    floats are coarse, less than the tolerance elsewhere. An input point beyond the even grid keeps its coordinates.
//
// The plane is halved recursively with its content until a single cell is left, or a few edges that meet only at common
// ends and need no cut. An edge meets at most one border per band. So the time is that of a sweep over all pieces, and
// there are at most two pieces for each bound that a line crosses.
#pragma once

#include "BorderPuzzle.h"
#include "FloatBands.h"
#include "SweepState.h"
#include "WindingTest.h"

namespace Graphics {

class CellCombiner {
public:
    /// Operation counts, for tests and benchmarks.
    struct Counts {
        uint64_t pieces = 0; // of edges in all cells
        uint64_t cells = 0;  // number swept
        SweepCounts sweep;   // sum over all cells; `sweeps` is the largest of one cell
    };

    CellCombiner(const WindingTest& test, const FloatBands& bands, BorderPuzzle& result) noexcept
        : m_test(test), m_bands(bands), m_result(result) {}
    CellCombiner(const CellCombiner&) = delete;
    CellCombiner& operator=(const CellCombiner&) = delete;

    /// Adds a closed ring of operand A or B.
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
        uint32_t line; // the line of which this is a piece; kNone for sums on borders
        int32_t a, b;
    };
    /// The bands from `first` to `last` - 1, along x and along y.
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
    uint32_t m_inner[kFewEdges]{}; // edges of the current region that are not on its border
    size_t m_inners = 0;
    Counts m_work;
};

} // namespace Graphics
