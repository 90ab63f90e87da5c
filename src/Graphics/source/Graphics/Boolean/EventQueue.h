// SPDX-License-Identifier: MIT
// The points at which the sweep stops, in its order: the ends of all edges, sorted beforehand, and the points found on
// the way, in a heap.
#pragma once

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
