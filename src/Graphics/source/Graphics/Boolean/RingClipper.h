// SPDX-License-Identifier: MIT
// Clips a closed ring of lines to a box without changing its winding around points inside: parts outside are replaced
// by a path along the border (Sutherland and Hodgman 1974). An edge is cut exactly where it meets the border, however
// far away its ends are.
#pragma once

#include "../ProcessHeap.h"
#include "../Types.h"

namespace Graphics {

class RingClipper {
public:
    struct Box {
        double left, top, right, bottom;
    };
    /// A point, and what connects it to the next point: the number of an edge of the ring, or kNone for a path along
    /// the border.
    struct WidePoint {
        double x, y;
        uint32_t edge;
    };

    /// Crossings are accurate to a thousandth of `step`.
    RingClipper(const Box& box, double step) noexcept : m_box(box), m_step(step) {}

    [[nodiscard]] const Box& Limits() const noexcept { return m_box; }
    /// The clipped ring, valid until the next call.
    [[nodiscard]] const HeapArray<WidePoint>& Clip(const HeapArray<Point>& ring);

private:
    static constexpr uint32_t kNone = 0xFFFFFFFFU;

    template <double WidePoint::*Axis> void ClipSide(const HeapArray<Point>& ring, double border, double sign);

    Box m_box;
    double m_step;
    HeapArray<WidePoint> m_ring, m_clipped;
};

} // namespace Graphics
