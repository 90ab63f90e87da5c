// SPDX-License-Identifier: MIT
// Finds the border of a combination by comparing every edge with every other. Suits areas in which nearly every edge
// crosses many others: a sweep would stop at every crossing and keep all pieces, most of which are no border.
//
// 1. Along an edge, the winding number at its left changes only by the weight of crossed edges. So each edge is
//    processed separately: its crossings, rounded to the grid and sorted along it, and the winding number where it
//    begins.
// 2. Rounding preserves the order of points along a line. So distinct points are in their true order, and the winding
//    numbers between them are exact: the border closes and is off by at most half a grid unit. Where rounded edges
//    cross or touch, the following sweep cuts them.
// 3. Of edges that coincide, the one with the smaller index counts as the left one. Their borders then add up to the
//    border between the areas left and right of all of them, for any order.
#pragma once

#include "../ProcessHeap.h"
#include "GridEdge.h"
#include "SlotSort.h"
#include "WindingTest.h"

namespace Graphics {

class PairwiseWinder {
public:
    /// `edges` are input edges, not yet cut.
    PairwiseWinder(const HeapArray<GridEdge>& edges, const WindingTest& test) noexcept : m_edges(edges), m_test(test) {}
    PairwiseWinder(const PairwiseWinder&) = delete;
    PairwiseWinder& operator=(const PairwiseWinder&) = delete;

    /// Estimates from samples whether crossings at distinct points are so many that this is faster than a sweep.
    [[nodiscard]] bool Worthwhile();
    /// Adds the pieces of edges that are borders to `border`, as operand A, weight 1 if the area is at their left, -1
    /// if at the right. Stops and returns false, with nothing added, as soon as the comparisons made cost more than
    /// twice a sweep for the crossings found so far; so a wrong estimate costs no more than a sweep.
    [[nodiscard]] bool Run(HeapArray<GridEdge>& border);

    /// Number of pairs compared.
    [[nodiscard]] uint64_t Pairs() const noexcept { return m_pairs; }

private:
    /// Edges as columns, to compare several at a time. All numbers are integers below 2^52, hence exact.
    struct Columns {
        HeapArray<double> loX, loY, hiX, hiY, dx, dy;
        HeapArray<double> offset; // lo x (dx, dy)
        HeapArray<double> weight; // a + b * kWeightOfB
    };

    /// A point where the winding number at the left changes by (a, b).
    struct Passage {
        GridPoint at;
        int32_t a, b;
    };

    [[nodiscard]] bool SampledPairsCross() const noexcept;
    [[nodiscard]] size_t LonelyPassages() const noexcept;
    void LoadColumns();
    void Wind(uint32_t edge);
    void Meet(uint32_t edge);
    void Overlap(const GridEdge& e, const GridEdge& f);
    void Pass(const GridEdge& e, const GridPoint& at, int32_t a, int32_t b);
    void Walk(const GridEdge& e, HeapArray<GridEdge>& border) const;

    const HeapArray<GridEdge>& m_edges;
    const WindingTest m_test;
    Columns m_columns;
    HeapArray<double> m_sideOfLo, m_sideOfHi; // the sides of the current edge's ends on each other edge
    HeapArray<uint32_t> m_crossed;            // edges that the current edge crosses
    HeapArray<Passage> m_passages;
    HeapArray<uint64_t> m_order; // distance from the edge's start << 32 | passage
    SlotSort<uint64_t> m_sorter;
    uint64_t m_pairs = 0;
    int32_t m_a = 0, m_b = 0; // winding numbers at the left of the start
};

} // namespace Graphics
