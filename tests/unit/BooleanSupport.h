// SPDX-License-Identifier: MIT
// What tests of boolean combination share: making shapes, combining them, and judging a result by brute force.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "Boolean/Boolean.h"
#include "Boolean/Orientation.h"
#include "Winding.h"

namespace Graphics {

using Ring = std::vector<Point>;

inline void AddRing(Geometry& shape, const Ring& ring) {
    shape.BeginFigure(ring[0]);
    for (size_t i = 1; i < ring.size(); ++i) {
        shape.LineTo(ring[i]);
    }
    shape.EndFigureClose();
}

inline double LengthOf(const Shape& shape) {
    double length = 0;
    for (const Segment& s : SegmentsOf(shape)) {
        length += std::hypot(static_cast<double>(s.b.x) - s.a.x, static_cast<double>(s.b.y) - s.a.y);
    }
    return length;
}

/// Twice the area of a triangle. Exact for points of one grid of 2^24 steps: no operation needs more than 53 bits.
inline double TurnOf(const Point& a, const Point& b, const Point& c) {
    return (static_cast<double>(b.x) - a.x) * (static_cast<double>(c.y) - a.y) -
           (static_cast<double>(b.y) - a.y) * (static_cast<double>(c.x) - a.x);
}

inline bool Same(const Point& a, const Point& b) { return a.x == b.x && a.y == b.y; }

/// Says what is wrong with two edges: crossing inside both, or running along each other.
inline const char* Conflict(const Segment& s, const Segment& t) {
    if (std::max(s.a.x, s.b.x) < std::min(t.a.x, t.b.x) || std::max(t.a.x, t.b.x) < std::min(s.a.x, s.b.x) ||
        std::max(s.a.y, s.b.y) < std::min(t.a.y, t.b.y) || std::max(t.a.y, t.b.y) < std::min(s.a.y, s.b.y)) {
        return nullptr;
    }
    const int a = OrientationSign(s.a, s.b, t.a), b = OrientationSign(s.a, s.b, t.b);
    if (a == 0 && b == 0) {
        // On one line and the boxes meet: fine only if they meet in a single point.
        const bool touch = std::max(std::min(s.a.x, s.b.x), std::min(t.a.x, t.b.x)) ==
                               std::min(std::max(s.a.x, s.b.x), std::max(t.a.x, t.b.x)) &&
                           std::max(std::min(s.a.y, s.b.y), std::min(t.a.y, t.b.y)) ==
                               std::min(std::max(s.a.y, s.b.y), std::max(t.a.y, t.b.y));
        return touch ? nullptr : "overlap";
    }
    const int c = OrientationSign(t.a, t.b, s.a), d = OrientationSign(t.a, t.b, s.b);
    return ((a > 0 && b < 0) || (a < 0 && b > 0)) && ((c > 0 && d < 0) || (c < 0 && d > 0)) ? "cross" : nullptr;
}

/// Empty if every figure is closed and simple, has no needless point, and no two edges cross or overlap.
inline std::string Faults(const Shape& shape) {
    std::ostringstream out;
    for (const Figure& f : shape.Figures()) {
        const auto p = f.Points();
        if (!f.Closed() || p.size() < 3) {
            out << "figure with " << p.size() << " points; ";
            continue;
        }
        for (size_t i = 0; i < p.size(); ++i) {
            if (OrientationSign(p[i], p[(i + 1) % p.size()], p[(i + 2) % p.size()]) == 0) {
                out << "straight at " << p[(i + 1) % p.size()].x << ' ' << p[(i + 1) % p.size()].y << "; ";
            }
        }
        std::vector<Point> sorted(p.begin(), p.end());
        std::sort(sorted.begin(), sorted.end(),
                  [](const Point& a, const Point& b) { return a.x != b.x ? a.x < b.x : a.y < b.y; });
        if (std::adjacent_find(sorted.begin(), sorted.end(), Same) != sorted.end()) {
            out << "point used twice; ";
        }
    }
    std::vector<Segment> s = SegmentsOf(shape);
    const auto least = [](const Segment& t) { return std::min(t.a.x, t.b.x); };
    std::sort(s.begin(), s.end(), [&](const Segment& t, const Segment& u) { return least(t) < least(u); });
    for (size_t i = 0; i < s.size(); ++i) {
        for (size_t k = i + 1; k < s.size() && least(s[k]) <= std::max(s[i].a.x, s[i].b.x); ++k) {
            if (const char* conflict = Conflict(s[i], s[k])) {
                out << conflict << ": " << s[i].a.x << ' ' << s[i].a.y << ' ' << s[i].b.x << ' ' << s[i].b.y << " / "
                    << s[k].a.x << ' ' << s[k].a.y << ' ' << s[k].b.x << ' ' << s[k].b.y << "; ";
            }
        }
    }
    return out.str();
}

inline bool InsideOf(const Shape& shape, double x, double y) {
    const int winding = Winding(shape, x, y);
    return shape.FillRule() == GXFillRuleNonZero ? winding != 0 : (winding & 1) != 0;
}

inline bool InsideOf(uint32_t mode, bool a, bool b) {
    switch (mode) {
    case GXCombineIntersection:
        return a && b;
    case GXCombineUnion:
        return a || b;
    case GXCombineExclusiveOr:
        return a != b;
    default:
        return a && !b;
    }
}

/// The area of a combination by plain integration: between the heights of all ends and crossings, edges keep their
/// order and the area is a sum of trapezoids. Time grows with the cube of the edges.
inline double PlainArea(const Shape& a, const Shape& b, uint32_t mode) {
    std::vector<Segment> edges = SegmentsOf(a);
    const size_t ofA = edges.size();
    const std::vector<Segment> more = SegmentsOf(b);
    edges.insert(edges.end(), more.begin(), more.end());
    std::vector<double> heights;
    for (size_t i = 0; i < edges.size(); ++i) {
        const Segment& s = edges[i];
        heights.push_back(s.a.y);
        for (size_t k = 0; k < i; ++k) {
            const Segment& t = edges[k];
            const double a0 = TurnOf(t.a, t.b, s.a), a1 = TurnOf(t.a, t.b, s.b);
            if ((a0 < 0) != (a1 < 0) && (TurnOf(s.a, s.b, t.a) < 0) != (TurnOf(s.a, s.b, t.b) < 0)) {
                heights.push_back(s.a.y + (static_cast<double>(s.b.y) - s.a.y) * (a0 / (a0 - a1)));
            }
        }
    }
    std::sort(heights.begin(), heights.end());
    struct Passage {
        double x;
        int a, b;
    };
    const auto inside = [](int winding, uint32_t rule) {
        return rule == GXFillRuleNonZero ? winding != 0 : (winding & 1) != 0;
    };
    double area = 0;
    std::vector<Passage> row;
    for (size_t h = 1; h < heights.size(); ++h) {
        const double y = (heights[h - 1] + heights[h]) / 2;
        row.clear();
        for (size_t i = 0; i < edges.size(); ++i) {
            const Segment& s = edges[i];
            if ((s.a.y < y) != (s.b.y < y)) {
                const double x =
                    s.a.x + (y - s.a.y) / (static_cast<double>(s.b.y) - s.a.y) * (static_cast<double>(s.b.x) - s.a.x);
                const int way = s.b.y > s.a.y ? 1 : -1;
                row.push_back({x, i < ofA ? way : 0, i < ofA ? 0 : way});
            }
        }
        std::sort(row.begin(), row.end(), [](const Passage& p, const Passage& q) { return p.x < q.x; });
        int windingA = 0, windingB = 0;
        for (size_t i = 0; i + 1 < row.size(); ++i) {
            windingA += row[i].a;
            windingB += row[i].b;
            if (InsideOf(mode, inside(windingA, a.FillRule()), inside(windingB, b.FillRule()))) {
                area += (row[i + 1].x - row[i].x) * (heights[h] - heights[h - 1]);
            }
        }
    }
    return area;
}

} // namespace Graphics
