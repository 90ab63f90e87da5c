// SPDX-License-Identifier: MIT
// Limits a closed ring of lines to a box without changing how it winds around the points inside: what lies outside is
// replaced by a way along the border (Sutherland and Hodgman 1974).
#pragma once

#include "../ProcessHeap.h"
#include "../Types.h"

namespace Graphics {

class RingClipper {
public:
    struct Box {
        double left, top, right, bottom;
    };
    struct WidePoint {
        double x, y;
    };

    explicit RingClipper(const Box& box) noexcept : m_box(box) {}

    [[nodiscard]] const Box& Limits() const noexcept { return m_box; }
    /// The clipped ring, valid until the next call.
    [[nodiscard]] const HeapArray<WidePoint>& Clip(const HeapArray<Point>& ring);

private:
    template <double WidePoint::*Axis> void ClipSide(double border, double sign);

    Box m_box;
    HeapArray<WidePoint> m_ring, m_clipped;
};

} // namespace Graphics
