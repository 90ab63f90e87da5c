// SPDX-License-Identifier: MIT
#include "RingClipper.h"

#include <utility>

namespace Graphics {

const HeapArray<RingClipper::WidePoint>& RingClipper::Clip(const HeapArray<Point>& ring) {
    m_ring.clear();
    for (const Point& p : ring) {
        m_ring.push_back({p.x, p.y});
    }
    ClipSide<&WidePoint::x>(m_box.left, 1);
    ClipSide<&WidePoint::x>(m_box.right, -1);
    ClipSide<&WidePoint::y>(m_box.top, 1);
    ClipSide<&WidePoint::y>(m_box.bottom, -1);
    return m_ring;
}

/// Keeps what has sign * coordinate >= sign * border.
template <double RingClipper::WidePoint::*Axis> void RingClipper::ClipSide(double border, double sign) {
    constexpr double WidePoint::*kOther = Axis == &WidePoint::x ? &WidePoint::y : &WidePoint::x;
    m_clipped.clear();
    for (size_t i = 0; i < m_ring.size(); ++i) {
        const WidePoint& from = m_ring[i];
        const WidePoint& to = m_ring[i + 1 == m_ring.size() ? 0 : i + 1];
        const double begin = (from.*Axis - border) * sign, end = (to.*Axis - border) * sign;
        if (begin >= 0) {
            m_clipped.push_back(from);
        }
        if ((begin >= 0) != (end >= 0)) {
            WidePoint p{};
            p.*Axis = border;
            p.*kOther = from.*kOther + (to.*kOther - from.*kOther) * (begin / (begin - end));
            m_clipped.push_back(p);
        }
    }
    std::swap(m_ring, m_clipped);
}

} // namespace Graphics
