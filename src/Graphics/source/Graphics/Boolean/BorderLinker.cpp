// SPDX-License-Identifier: MIT
#include "BorderLinker.h"

namespace Graphics {

void BorderLinker::Wind(uint32_t left, const uint32_t* start, const uint32_t* end) noexcept {
    if (start == end) {
        return;
    }
    int32_t a = 0, b = 0;
    if (left != kNone) {
        const GridEdge& e = m_edges[left];
        a = e.leftA + e.a;
        b = e.leftB + e.b;
    }
    bool inside = m_test.Inside(a, b);
    for (; start != end; ++start) {
        GridEdge& e = m_edges[*start];
        e.leftA = a;
        e.leftB = b;
        a += e.a;
        b += e.b;
        const bool insideRight = m_test.Inside(a, b);
        e.border = inside == insideRight ? GridEdge::Border::None
                   : inside              ? GridEdge::Border::InsideLeft
                                         : GridEdge::Border::InsideRight;
        inside = insideRight;
    }
}

/// Around the point, inside and outside alternate between the borders; the two borders of an inner sector are joined.
void BorderLinker::Link(const GridPoint& point, uint32_t left, const HeapArray<uint32_t>& ends,
                        const HeapArray<uint32_t>& starts) {
    m_around.clear();
    for (const uint32_t e : ends) {
        if (m_edges[e].Borders()) {
            m_around.push_back(e);
        }
    }
    for (size_t i = starts.size(); i-- > 0;) {
        if (m_edges[starts[i]].Borders()) {
            m_around.push_back(starts[i]);
        }
    }
    const size_t count = m_around.size();
    if (count == 0) {
        return;
    }
    if (count > 2) {
        for (const uint32_t e : m_around) {
            GridEdge& edge = m_edges[e];
            if ((edge.BorderWeight() > 0) == (edge.lo == point)) {
                edge.junction = m_junctions;
            }
        }
        ++m_junctions;
    }
    const GridEdge* l = left == kNone ? nullptr : &m_edges[left];
    const bool leftInside = l != nullptr && m_test.Inside(l->leftA + l->a, l->leftB + l->b);
    for (size_t i = leftInside ? 1 : 0; i + 1 < count; i += 2) {
        Join(point, m_around[i], m_around[i + 1]);
    }
    if (leftInside) {
        Join(point, m_around[count - 1], m_around[0]);
    }
}

/// Joins two borders of one inner sector: one leads to the point, the other away from it.
void BorderLinker::Join(const GridPoint& point, uint32_t first, uint32_t second) noexcept {
    const GridEdge& e = m_edges[first];
    const bool leadsHere = (e.BorderWeight() > 0) == (e.hi == point);
    m_edges[leadsHere ? first : second].next = leadsHere ? second : first;
}

} // namespace Graphics
