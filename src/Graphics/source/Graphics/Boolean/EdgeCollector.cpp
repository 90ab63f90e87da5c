// SPDX-License-Identifier: MIT
#include "EdgeCollector.h"

namespace Graphics {

bool EdgeCollector::Inside(const HeapArray<Point>& ring) const noexcept {
    const RingClipper::Box& box = m_clipper.Limits();
    bool inside = true;
    for (const Point& p : ring) {
        inside &= p.x >= box.left && p.x <= box.right && p.y >= box.top && p.y <= box.bottom;
    }
    return inside;
}

void EdgeCollector::TakeRing(const HeapArray<Point>& ring) {
    if (Inside(ring)) {
        AddRing(ring);
    } else {
        AddRing(m_clipper.Clip(ring));
    }
}

template <class Ring> void EdgeCollector::AddRing(const Ring& ring) {
    if (ring.size() < 3) {
        return;
    }
    m_scanner.Expect(ring.size());
    GridPoint from = m_grid.ToGrid(ring.back().x, ring.back().y);
    for (const auto& p : ring) {
        const GridPoint to = m_grid.ToGrid(p.x, p.y);
        m_scanner.AddEdge(from, to, m_ofB);
        from = to;
    }
}

} // namespace Graphics
