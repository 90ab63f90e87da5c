// SPDX-License-Identifier: MIT
#include "RingClipper.h"

#include <utility>

#include "AxisCut.h"

namespace Graphics {

const HeapArray<RingClipper::WidePoint>& RingClipper::Clip(const HeapArray<Point>& ring) {
    m_ring.clear();
    for (size_t i = 0; i < ring.size(); ++i) {
        m_ring.push_back({ring[i].x, ring[i].y, static_cast<uint32_t>(i)});
    }
    ClipSide<&WidePoint::x>(ring, m_box.left, 1);
    ClipSide<&WidePoint::x>(ring, m_box.right, -1);
    ClipSide<&WidePoint::y>(ring, m_box.top, 1);
    ClipSide<&WidePoint::y>(ring, m_box.bottom, -1);
    return m_ring;
}

/// Keeps the part with sign * coordinate >= sign * border.
template <double RingClipper::WidePoint::*Axis>
void RingClipper::ClipSide(const HeapArray<Point>& ring, double border, double sign) {
    constexpr bool kX = Axis == &WidePoint::x;
    constexpr double WidePoint::*kOther = kX ? &WidePoint::y : &WidePoint::x;
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
            p.*kOther = from.*kOther; // exact for a path along another border
            if (from.edge != kNone) {
                const Point &a = ring[from.edge], &b = ring[from.edge + 1 == ring.size() ? 0 : from.edge + 1];
                p.*kOther = CutAcross(a, b, kX ? PlaneAxis::X : PlaneAxis::Y, border, m_step);
            }
            p.edge = begin >= 0 ? kNone : from.edge;
            m_clipped.push_back(p);
        }
    }
    std::swap(m_ring, m_clipped);
}

} // namespace Graphics
