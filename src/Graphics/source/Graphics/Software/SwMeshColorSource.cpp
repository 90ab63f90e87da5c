// SPDX-License-Identifier: MIT
// Each row of a triangle lies between two edges' crossings with the line through its pixel centres. An edge's crossing
// is computed from its upper end down, whichever triangle asks, so that neighbours get the same bits.
#include "SwMeshColorSource.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "SwGradientColorSource.h"
#include "SwOpacity.h"
#include "SwPixelMath.h"

namespace Graphics {

namespace {

/// Device coordinates that an image may have.
constexpr float kFarthest = 536870912.0F;

int32_t Confine(float v) noexcept {
    return SaturatingTruncate(std::isnan(v) ? 0.0F : std::clamp(v, -kFarthest, kFarthest));
}

/// The first pixel whose centre is at or behind `at`, within [0, size].
int32_t FirstCentre(double at, int32_t size) noexcept {
    const double last = at - 0.5;
    if (!(last > 0.0)) {
        return 0;
    }
    if (last > size - 1) {
        return size;
    }
    const auto below = static_cast<int32_t>(last);
    return below + (last > below ? 1 : 0);
}

} // namespace

SwMeshColorSource::SwMeshColorSource(Arena& arena, const GradientBrush& brush, const TriMeshGradient& gradient,
                                     const Rect& bounds, const Matrix& transform) {
    const uint32_t factor = OpacityFactor(brush.opacity);
    m_background = ScalePixel(PremultiplyPixel(PackColor(gradient.background)), factor);
    m_left = Confine(std::floor(std::min(bounds.left, bounds.right)));
    m_top = Confine(std::floor(std::min(bounds.top, bounds.bottom)));
    const int32_t width = Confine(std::ceil(std::max(bounds.left, bounds.right))) - m_left;
    const int32_t height = Confine(std::ceil(std::max(bounds.top, bounds.bottom))) - m_top;
    const size_t triangles = gradient.vertices.size() / 3;
    if (width <= 0 || height <= 0 || triangles == 0) {
        return;
    }
    const auto pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    m_pixels = arena.AllocArray<uint32_t>(pixels);
    m_width = width;
    m_height = height;
    std::fill_n(m_pixels, pixels, m_background);

    const Matrix map = PaintTransform(brush, transform);
    for (size_t i = 0; i < triangles; ++i) {
        Vertex v[3];
        bool finite = true;
        for (size_t k = 0; k < 3; ++k) {
            const GXTriMeshVertex& from = gradient.vertices[i * 3 + k];
            const Point p = Map(map, {from.x, from.y});
            finite = finite && std::isfinite(p.x) && std::isfinite(p.y);
            v[k] = {static_cast<double>(p.x) - m_left, static_cast<double>(p.y) - m_top, from.color};
        }
        if (finite) {
            FillTriangle(v, factor);
        }
    }
}

void SwMeshColorSource::FillTriangle(const Vertex (&v)[3], uint32_t factor) noexcept {
    const double minX = std::min({v[0].x, v[1].x, v[2].x});
    const double maxX = std::max({v[0].x, v[1].x, v[2].x});
    const double minY = std::min({v[0].y, v[1].y, v[2].y});
    const double maxY = std::max({v[0].y, v[1].y, v[2].y});
    const double area = (v[1].x - v[0].x) * (v[2].y - v[0].y) - (v[1].y - v[0].y) * (v[2].x - v[0].x);
    if (maxX <= 0.0 || maxY <= 0.0 || minX >= m_width || minY >= m_height || area == 0.0) {
        return;
    }
    // Colours are planes over the image: value(x, y) = v0 + (x - x0) perX + (y - y0) perY.
    double perX[4];
    double perY[4];
    double origin[4];
    for (int i = 0; i < 4; ++i) {
        const auto channel = [&](int k) { return static_cast<double>((v[k].color >> (8 * i)) & 255U); };
        const double d1 = channel(1) - channel(0);
        const double d2 = channel(2) - channel(0);
        perX[i] = (d1 * (v[2].y - v[0].y) - d2 * (v[1].y - v[0].y)) / area;
        perY[i] = (d2 * (v[1].x - v[0].x) - d1 * (v[2].x - v[0].x)) / area;
        origin[i] = channel(0);
    }
    // Edges that cross rows, each from its upper end to its lower one.
    struct Edge {
        double x, y, end, perRow;
    } edges[3];
    int count = 0;
    for (int k = 0; k < 3; ++k) {
        const Vertex* a = &v[k];
        const Vertex* b = &v[(k + 1) % 3];
        if (a->y != b->y) {
            if (a->y > b->y) {
                std::swap(a, b);
            }
            edges[count++] = {a->x, a->y, b->y, (b->x - a->x) / (b->y - a->y)};
        }
    }
    const bool opaque = (v[0].color & v[1].color & v[2].color) >> 24 == 255;
    const SwPaintKernels& kernels = ActivePaintKernels();
    const int32_t lastRow = FirstCentre(maxY, m_height);
    for (int32_t y = FirstCentre(minY, m_height); y < lastRow; ++y) {
        const double centre = y + 0.5;
        double cross[2] = {0.0, 0.0};
        int found = 0;
        for (int k = 0; k < count && found < 2; ++k) {
            const Edge& e = edges[k];
            if (centre >= e.y && centre < e.end) {
                cross[found++] = e.x + (centre - e.y) * e.perRow;
            }
        }
        if (found < 2) {
            continue;
        }
        const int32_t from = FirstCentre(std::min(cross[0], cross[1]), m_width);
        const int32_t to = FirstCentre(std::max(cross[0], cross[1]), m_width);
        if (from >= to) {
            continue;
        }
        float start[4];
        float step[4];
        for (int i = 0; i < 4; ++i) {
            start[i] = static_cast<float>(origin[i] + (from + 0.5 - v[0].x) * perX[i] + (centre - v[0].y) * perY[i]);
            step[i] = static_cast<float>(perX[i]);
        }
        const auto pixels = static_cast<size_t>(to - from);
        uint32_t* out = Row(y) + from;
        kernels.plane(start, step, pixels, out);
        if (!opaque) {
            kernels.premultiply(out, pixels);
        }
        if (factor != 256) {
            kernels.scaleBy(out, factor, pixels);
        }
    }
}

void SwMeshColorSource::Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) {
    if (x0 >= x1) {
        return;
    }
    const auto count = static_cast<int64_t>(x1) - x0;
    const int64_t column = static_cast<int64_t>(x0) - m_left;
    const int64_t row = static_cast<int64_t>(y) - m_top;
    const int64_t from = std::clamp<int64_t>(-column, 0, count);
    const int64_t to = std::clamp<int64_t>(m_width - column, from, count);
    if (row < 0 || row >= m_height) {
        std::fill_n(out, count, m_background);
        return;
    }
    std::fill(out, out + from, m_background);
    std::copy_n(Row(static_cast<int32_t>(row)) + column + from, to - from, out + from);
    std::fill(out + to, out + count, m_background);
}

bool SwMeshColorSource::IsSolid(uint32_t& color) const noexcept {
    color = m_background;
    return m_pixels == nullptr;
}

const uint32_t* SwMeshColorSource::DirectRow(int32_t x0, int32_t x1, int32_t y) const noexcept {
    const int64_t column = static_cast<int64_t>(x0) - m_left;
    const int64_t row = static_cast<int64_t>(y) - m_top;
    if (x0 >= x1 || column < 0 || static_cast<int64_t>(x1) - m_left > m_width || row < 0 || row >= m_height) {
        return nullptr;
    }
    return Row(static_cast<int32_t>(row)) + column;
}

} // namespace Graphics
