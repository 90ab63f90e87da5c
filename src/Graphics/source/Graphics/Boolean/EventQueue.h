// SPDX-License-Identifier: MIT
// The points at which the sweep stops, in its order: the ends of all edges, sorted beforehand, and points found during
// the sweep, in a heap.
#pragma once

#include <array>

#include "../ProcessHeap.h"
#include "GridEdge.h"
#include "SlotSort.h"

namespace Graphics {

class EventQueue {
public:
    /// A point found during the sweep, with the edges that end and start there; unused places are kNone.
    struct Meeting {
        uint64_t key;
        uint32_t ends[2];
        uint32_t starts[2];
    };

    /// Clears the queue and adds both ends of every edge; there must be fewer than 2^31 - 1 edges.
    void Reset(const HeapArray<GridEdge>& edges);
    void Add(const GridPoint& at, uint32_t end0, uint32_t end1, uint32_t start0, uint32_t start1);

    /// Advances to the next point and lists the edges that end and start there; false if there is none.
    [[nodiscard]] bool Next(GridPoint& point, HeapArray<uint32_t>& ends, HeapArray<uint32_t>& starts);

    /// Edges that will probably be needed soon, for prefetching; may contain kNone.
    [[nodiscard]] std::array<uint32_t, 4> Upcoming() const noexcept {
        constexpr size_t kAhead = 8;
        std::array<uint32_t, 4> edges{GridEdge::kNone, GridEdge::kNone, GridEdge::kNone, GridEdge::kNone};
        if (!m_meetings.empty()) {
            edges[0] = m_meetings[0].starts[0];
            edges[1] = m_meetings[0].starts[1];
        }
        if (m_position + kAhead < m_ends.size()) {
            edges[2] = m_ends[m_position + kAhead].edges[0] & ~kStart;
        }
        return edges;
    }

private:
    static constexpr uint32_t kStart = 0x80000000U;

    /// A point where one edge, or two consecutive ones, begin or end: edge numbers, with kStart if they begin. The
    /// second may be kNone.
    struct End {
        uint64_t key;
        uint32_t edges[2];
    };

    void Sort();
    void SortByDigits();

    HeapArray<End> m_ends;
    HeapArray<End> m_scratch;
    SlotSort<End> m_sorter;
    size_t m_position = 0;
    HeapArray<Meeting> m_meetings;
};

} // namespace Graphics
