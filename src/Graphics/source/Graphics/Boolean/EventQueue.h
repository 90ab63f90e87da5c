// SPDX-License-Identifier: MIT
// The points at which the sweep stops, in its order: the ends of all edges, sorted beforehand, and the points found on
// the way, in a heap.
#pragma once

#include <array>

#include "../ProcessHeap.h"
#include "GridEdge.h"

namespace Graphics {

class EventQueue {
public:
    /// A point found on the way: which edges end there and which start. kNone where there is none.
    struct Meeting {
        uint64_t key;
        uint32_t ends[2];
        uint32_t starts[2];
    };

    /// Forgets everything and takes both ends of every edge.
    void Reset(const HeapArray<GridEdge>& edges);
    void Add(const GridPoint& at, uint32_t end0, uint32_t end1, uint32_t start0, uint32_t start1);

    /// Moves on to the next point: false when there is none. The lists get the edges that end and start there.
    [[nodiscard]] bool Next(GridPoint& point, HeapArray<uint32_t>& ends, HeapArray<uint32_t>& starts);

    /// Edges that will probably be asked for soon, kNone among them.
    [[nodiscard]] std::array<uint32_t, 4> Upcoming() const noexcept {
        constexpr size_t kAhead = 8;
        std::array<uint32_t, 4> edges{GridEdge::kNone, GridEdge::kNone, GridEdge::kNone, GridEdge::kNone};
        if (!m_meetings.empty()) {
            edges[0] = m_meetings[0].starts[0];
            edges[1] = m_meetings[0].starts[1];
        }
        if (m_position + kAhead + 1 < m_ends.size()) {
            edges[2] = m_ends[m_position + kAhead].edge;
            edges[3] = m_ends[m_position + kAhead + 1].edge;
        }
        return edges;
    }

private:
    struct End {
        uint64_t key;
        uint32_t edge;
        uint32_t start; // 1 where the edge starts, 0 where it ends
    };

    void Sort();

    HeapArray<End> m_ends;
    HeapArray<End> m_scratch;
    size_t m_position = 0;
    HeapArray<Meeting> m_meetings;
};

} // namespace Graphics
