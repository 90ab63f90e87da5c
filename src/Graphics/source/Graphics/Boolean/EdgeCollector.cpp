// SPDX-License-Identifier: MIT
#include "EdgeCollector.h"

#include "../Geometry/CurveFlattener.h"

namespace Graphics {

void EdgeCollector::BeginFigure(const Point& start) {
    m_ring.clear();
    m_ring.push_back(start);
}

void EdgeCollector::CubicTo(const Point& c1, const Point& c2, const Point& end) {
    // Few steps at a time keep the flattener's sums of floats accurate.
    constexpr uint32_t kSteps = 16;
    const RingClipper::Box& box = m_clipper.Limits();
    const auto place = [&](const WideCurve& c) {
        const auto beyond = [](const double* v, double low, double high) {
            return (v[0] < low && v[1] < low && v[2] < low && v[3] < low) ||
                   (v[0] > high && v[1] > high && v[2] > high && v[3] > high);
        };
        if (!beyond(c.x, box.left, box.right) && !beyond(c.y, box.top, box.bottom)) {
            return CurvePlace::Mixed;
        }
        m_ring.push_back(c.At(3));
        return CurvePlace::Handled;
    };
    const Point from = m_ring.back();
    FlattenBounded(WideCurve(from, c1, c2, end), m_tolerance, kSteps, place,
                   [&](const Point& p) { m_ring.push_back(p); });
}

bool EdgeCollector::RingInside() const noexcept {
    const RingClipper::Box& box = m_clipper.Limits();
    bool inside = true;
    for (const Point& p : m_ring) {
        inside &= p.x >= box.left && p.x <= box.right && p.y >= box.top && p.y <= box.bottom;
    }
    return inside;
}

void EdgeCollector::EndFigure() {
    if (RingInside()) {
        AddRing(m_ring);
    } else {
        AddRing(m_clipper.Clip(m_ring));
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
