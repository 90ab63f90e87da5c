// SPDX-License-Identifier: MIT
// The plain scan-line algorithm, with vectors and simple loops: what the rasterizer's counts are held against.
#pragma once

#include <algorithm>
#include <vector>

#include "GridSink.h"

namespace Graphics {

using Loop = std::vector<Point>;
using Loops = std::vector<Loop>;

struct PlainEdge {
    int64_t first, last, x, step, error, increment, denominator;
    int direction;
};

inline int64_t Fine(float v) {
    const double d = static_cast<double>(v) * 128.0;
    return static_cast<int64_t>(std::clamp(d, -1073741760.0, 1073741760.0));
}

/// The set-up with its alignment loop, and stepping instead of jumping to the clip.
inline bool PlainSetUp(int64_t x0, int64_t y0, int64_t x1, int64_t y1, int64_t clipFirst, int64_t clipLast,
                       PlainEdge& e) {
    e.direction = y1 < y0 ? -1 : 1;
    if (y1 < y0) {
        std::swap(x0, x1);
        std::swap(y0, y1);
    }
    e.first = y0 >> 4;
    e.last = y1 >> 4;
    if (e.first == e.last || e.first >= clipLast || e.last <= clipFirst) {
        return false;
    }
    const int64_t dy = y1 - y0;
    const int64_t dx = x1 - x0;
    int64_t q = dx / dy;
    int64_t r = dx % dy;
    if (r < 0) {
        r += dy;
        --q;
    }
    int64_t error = -1;
    int64_t x = x0;
    if ((y0 & 7) != 0) {
        for (int64_t i = 8 - (y0 & 7); i > 0; --i) {
            error += r;
            x += q;
            if (error >= 0) {
                ++x;
                error -= dy;
            }
        }
    }
    if ((x & 7) != 0) {
        error -= (8 - (x & 7)) * dy;
        x += 7;
    }
    e.x = x >> 4;
    e.error = error >> 4;
    e.step = q;
    e.increment = r;
    e.denominator = dy;
    if (e.first < clipFirst) {
        const int64_t k = clipFirst - e.first;
        e.x += k * q;
        e.error += k * r;
        if (e.error >= 0) {
            const int64_t m = e.error / dy + 1;
            e.x += m;
            e.error -= m * dy;
        }
        e.first = clipFirst;
    }
    return true;
}

/// The vertices without those that lie, with both neighbours, beyond one side of the clip.
inline Loop Inside(const Loop& loop, const Rect& clip) {
    Loop kept;
    for (size_t i = 0; i < loop.size(); ++i) {
        const int64_t x[] = {Fine(loop[(i + loop.size() - 1) % loop.size()].x), Fine(loop[i].x),
                             Fine(loop[(i + 1) % loop.size()].x)};
        if (*std::max_element(x, x + 3) > Fine(clip.left) && *std::min_element(x, x + 3) < Fine(clip.right)) {
            kept.push_back(loop[i]);
        }
    }
    return kept;
}

/// Shape bytes of every pixel of `area`.
inline Grid PlainCoverage(const Loops& loops, const Rect& clip, const IntRect& area, bool evenOdd) {
    std::vector<PlainEdge> edges;
    const int64_t clipFirst = Fine(clip.top) >> 4;
    const int64_t clipLast = (Fine(clip.bottom) + 15) >> 4;
    for (const Loop& all : loops) {
        const Loop loop = Inside(all, clip);
        for (size_t i = 0; i < loop.size(); ++i) {
            const Point& a = loop[i];
            const Point& b = loop[(i + 1) % loop.size()];
            PlainEdge e;
            if (PlainSetUp(Fine(a.x), Fine(a.y), Fine(b.x), Fine(b.y), clipFirst, clipLast, e)) {
                edges.push_back(e);
            }
        }
    }
    Grid grid(area);
    for (int64_t s = clipFirst; s < clipLast; ++s) {
        std::vector<std::pair<int64_t, int>> crossings;
        for (PlainEdge& e : edges) {
            if (s < e.first || s >= e.last) {
                continue;
            }
            crossings.emplace_back(e.x, e.direction);
            e.x += e.step;
            e.error += e.increment;
            if (e.error >= 0) {
                ++e.x;
                e.error -= e.denominator;
            }
        }
        std::sort(crossings.begin(), crossings.end());
        int winding = 0;
        for (size_t i = 0; i + 1 < crossings.size(); ++i) {
            winding += evenOdd ? 1 : crossings[i].second;
            if (evenOdd ? winding % 2 == 0 : winding == 0) {
                continue;
            }
            const int64_t from = std::max<int64_t>(crossings[i].first, int64_t{area.left} * 8);
            const int64_t to = std::min<int64_t>(crossings[i + 1].first, int64_t{area.right} * 8);
            const int y = static_cast<int>(s >> 3);
            for (int64_t x = from; x < to; ++x) {
                if (grid.Has(static_cast<int>(x >> 3), y)) {
                    ++grid.At(static_cast<int>(x >> 3), y);
                }
            }
        }
    }
    for (int& v : grid.value) {
        v = (v == 0 ? 0 : v * 256 / 64 - 1) & 255;
    }
    return grid;
}

} // namespace Graphics
