// SPDX-License-Identifier: MIT
// Limits a closed ring of lines to a box without changing how it winds around the points inside: what lies outside is
// replaced by a way along the border (Sutherland and Hodgman 1974). An edge is cut where it meets the border exactly,
// however far its ends are.
#pragma once

#include "../ProcessHeap.h"
#include "../Types.h"

namespace Graphics {

class RingClipper {
public:
    struct Box {
        double left, top, right, bottom;
    };
    /// A point and what leads from it to the next: an edge of the ring, by its number, or, kNone, a way along the
    /// border.
    struct WidePoint {
        double x, y;
        uint32_t edge;
    };

    /// Errors of a thousandth of `step` do not matter.
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
