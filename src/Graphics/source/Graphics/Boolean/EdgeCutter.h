// SPDX-License-Identifier: MIT
// Cuts the edges of a sweep where they meet: neighbours that touch or cross ahead of the sweep.
#pragma once

#include "EdgePieces.h"
#include "EventQueue.h"
#include "SweepState.h"

namespace Graphics {

class EdgeCutter {
public:
    EdgeCutter(EdgePieces& edges, EventQueue& queue, SweepState& state) noexcept
        : m_edges(edges), m_queue(queue), m_state(state) {}

    /// If two neighbours in the status meet ahead, cuts them there. Either may be kNone.
    void CutNeighbours(uint32_t left, uint32_t right);
    /// Records that the edge will be bent to end at `at`, a point of its box.
    void Bend(GridEdge& e, const GridPoint& at) noexcept;

    [[nodiscard]] int64_t SideOf(uint32_t edge, const GridPoint& p) noexcept {
        ++m_comparisons;
        return m_edges[edge].SideOf(p);
    }
    /// Comparisons of a point with an edge so far.
    [[nodiscard]] uint64_t& Comparisons() noexcept { return m_comparisons; }

private:
    static constexpr uint32_t kNone = GridEdge::kNone;
    using Stray = GridEdge::Stray;

    void CutBoth(uint32_t left, uint32_t right, GridPoint at);
    void CutCrossing(uint32_t left, uint32_t right);
    [[nodiscard]] bool Usable(const GridEdge& e, const GridEdge& f, const GridPoint& at) const noexcept;
    [[nodiscard]] bool CrossingPoint(const GridEdge& e, const GridEdge& f, GridPoint& at) const noexcept;

    EdgePieces& m_edges;
    EventQueue& m_queue;
    SweepState& m_state;
    uint64_t m_comparisons = 0;
};

} // namespace Graphics
