// SPDX-License-Identifier: MIT
// Cuts edges for a sweep where they meet: neighbours that touch or cross ahead.
#pragma once

#include "EdgePieces.h"
#include "EventQueue.h"
#include "SweepState.h"

namespace Graphics {

class EdgeCutter {
public:
    EdgeCutter(EdgePieces& edges, EventQueue& queue, SweepState& state) noexcept
        : m_edges(edges), m_queue(queue), m_state(state) {}

    /// Looks whether two neighbours in the status, kNone among them, meet ahead, and cuts them there.
    void CutNeighbours(uint32_t left, uint32_t right);
    /// Takes note that an edge is about to end at a point of its box.
    void Bend(GridEdge& e, const GridPoint& at) noexcept;

    [[nodiscard]] int64_t SideOf(uint32_t edge, const GridPoint& p) noexcept {
        ++m_comparisons;
        return m_edges[edge].SideOf(p);
    }
    /// Of a point with an edge, so far.
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
