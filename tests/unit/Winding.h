// SPDX-License-Identifier: MIT
// The winding number of a shape of straight figures around a point: the plain answer that outlines are judged by.
#pragma once

#include "Geometry/Shape.h"

namespace Graphics {

inline int Winding(const Shape& shape, double x, double y) {
    int winding = 0;
    for (const Figure& f : shape.Figures()) {
        const auto points = f.Points();
        for (size_t i = 0; i < points.size(); ++i) {
            const Point a = points[i], b = points[(i + 1) % points.size()];
            if ((a.y <= y) != (b.y <= y)) {
                const double cross =
                    a.x + (y - a.y) / (static_cast<double>(b.y) - a.y) * (static_cast<double>(b.x) - a.x);
                winding += cross > x ? (b.y > a.y ? 1 : -1) : 0;
            }
        }
    }
    return winding;
}

} // namespace Graphics
