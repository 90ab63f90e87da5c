// SPDX-License-Identifier: MIT
// Winding number, area and distance of shapes of straight figures: the plain answers that outlines are judged by.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "Geometry/Geometry.h"

namespace Graphics {

inline const Figure& FigureAt(const Shape& shape, size_t index) {
    auto at = shape.Figures().begin();
    while (index-- != 0) {
        ++at;
    }
    return *at;
}

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

/// The signed area: positive for figures that run as a rectangle does.
inline double AreaOf(const Figure& figure) {
    const auto p = figure.Points();
    double area = 0;
    for (size_t i = 1; i + 1 < p.size(); ++i) {
        area += (static_cast<double>(p[i].x) - p[0].x) * (static_cast<double>(p[i + 1].y) - p[0].y) -
                (static_cast<double>(p[i + 1].x) - p[0].x) * (static_cast<double>(p[i].y) - p[0].y);
    }
    return area / 2;
}

inline double AreaOf(const Shape& shape) {
    double area = 0;
    for (const Figure& f : shape.Figures()) {
        area += AreaOf(f);
    }
    return area;
}

struct Segment {
    Point a, b;
};

inline std::vector<Segment> SegmentsOf(const Shape& shape) {
    std::vector<Segment> all;
    for (const Figure& f : shape.Figures()) {
        const auto p = f.Points();
        for (size_t i = 0; i < p.size(); ++i) {
            all.push_back({p[i], p[(i + 1) % p.size()]});
        }
    }
    return all;
}

inline double DistanceTo(const Segment& s, double x, double y) {
    const double dx = static_cast<double>(s.b.x) - s.a.x, dy = static_cast<double>(s.b.y) - s.a.y;
    const double length2 = dx * dx + dy * dy;
    const double t = length2 == 0 ? 0 : std::clamp(((x - s.a.x) * dx + (y - s.a.y) * dy) / length2, 0.0, 1.0);
    return std::hypot(s.a.x + t * dx - x, s.a.y + t * dy - y);
}

} // namespace Graphics
