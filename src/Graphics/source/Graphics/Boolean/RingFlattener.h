// SPDX-License-Identifier: MIT
// Sends the figures of a shape as closed rings of lines.
#pragma once

#include "../ProcessHeap.h"
#include "RingClipper.h"

namespace Graphics {

class RingFlattener {
public:
    /// Curves are flattened to within `tolerance`; outside `limits` they become their chords.
    RingFlattener(const RingClipper::Box& limits, float tolerance) noexcept
        : m_limits(limits), m_tolerance(tolerance) {}

    void BeginFigure(const Point& start);
    void EndFigure() { TakeRing(m_ring); }
    void EndFigureClose() { TakeRing(m_ring); }
    void LineTo(const Point& p) { m_ring.push_back(p); }
    void CubicTo(const Point& c1, const Point& c2, const Point& end);

protected:
    ~RingFlattener() = default;
    virtual void TakeRing(const HeapArray<Point>& ring) = 0;

private:
    const RingClipper::Box m_limits;
    const float m_tolerance;
    HeapArray<Point> m_ring;
};

} // namespace Graphics
