// SPDX-License-Identifier: MIT
// The points at which the sweep stops, in its order: the ends of all edges, sorted beforehand, and the points found on
// the way, in a heap.
#pragma once

#include <array>

#include "../ProcessHeap.h"
#include "GridEdge.h"
#include "SlotSort.h"

namespace Graphics {

class EventQueue {
public:
    /// A point found on the way: which edges end there and which start. kNone where there is none.
    struct Meeting {
        uint64_t key;
        uint32_t ends[2];
        uint32_t starts[2];
    };

    /// Forgets everything and takes both ends of every edge, of which there are less than 2^31 - 1.
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
        if (m_position + kAhead < m_ends.size()) {
            edges[2] = m_ends[m_position + kAhead].edges[0] & ~kStart;
        }
        return edges;
    }

private:
    static constexpr uint32_t kStart = 0x80000000U;

    /// A point at which one edge or two that follow each other begin or end: numbers with kStart where they begin. The
    /// second may be missing, kNone.
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
