// SPDX-License-Identifier: MIT
// Finds the border of a combination by comparing every edge with every other: for areas of which nearly each edge
// crosses many others, where a sweep would stop at every crossing and keep all the pieces, most of which are no border.
//
// Along an edge the winding number at its left changes by the weight of what is crossed and by nothing else. So an edge
// is done by itself: its crossings, rounded to the grid and sorted along it, and the winding number where it begins.
// Rounding keeps the order of points along a line, so the points that are told apart come in their true order, and the
// winding numbers between them are the true ones: the border closes, and is off by half a unit of the grid at most.
// Where the edges rounded cross or touch each other, the sweep that follows sees to it.
//
// Edges that lie upon each other count as if the one with the smaller index were left. Their borders then add up to
// what lies between the areas left and right of all of them, whichever the order.
#pragma once

#include "../ProcessHeap.h"
#include "GridEdge.h"
#include "SlotSort.h"
#include "WindingTest.h"

namespace Graphics {

class PairwiseWinder {
public:
    /// `edges` are input edges, as yet uncut.
    PairwiseWinder(const HeapArray<GridEdge>& edges, const WindingTest& test) noexcept : m_edges(edges), m_test(test) {}
    PairwiseWinder(const PairwiseWinder&) = delete;
    PairwiseWinder& operator=(const PairwiseWinder&) = delete;

    /// Whether samples say that crossings are so many, each at a point of its own, that this is faster than a sweep.
    [[nodiscard]] bool Worthwhile();
    /// Puts the pieces of edges that are the border into `border`, weight 1 for the area at their left, -1 at the
    /// right, in operand A. False, and nothing put, where the samples were wrong: it stops as soon as what it has
    /// compared would have cost more than twice what a sweep needs for the crossings found so far, so that a wrong
    /// guess costs no more than a sweep does.
    [[nodiscard]] bool Run(HeapArray<GridEdge>& border);

    /// How many pairs have been compared.
    [[nodiscard]] uint64_t Pairs() const noexcept { return m_pairs; }

private:
    /// Edges in columns, so that two at a time are compared. All numbers are integers and below 2^52, hence exact.
    struct Columns {
        HeapArray<double> loX, loY, hiX, hiY, dx, dy;
        HeapArray<double> offset; // lo x (dx, dy)
        HeapArray<double> weight; // a + b * kWeightOfB
    };

    /// Where the winding number at the left changes by (a, b).
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
    HeapArray<double> m_sideOfLo, m_sideOfHi; // where the edge's ends lie as seen from each other edge
    HeapArray<uint32_t> m_crossed;            // edges that the edge in hand crosses
    HeapArray<Passage> m_passages;
    HeapArray<uint64_t> m_order; // distance from the edge's begin << 32 | passage
    SlotSort<uint64_t> m_sorter;
    uint64_t m_pairs = 0;
    int32_t m_a = 0, m_b = 0; // winding numbers at the left of the begin
};

} // namespace Graphics
