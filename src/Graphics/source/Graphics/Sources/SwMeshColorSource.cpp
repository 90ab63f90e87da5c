// SPDX-License-Identifier: MIT
// Each row of a triangle lies between the crossings of two edges with the line through its pixel centres. An edge's
// crossing is always computed from its upper end down, so that neighbouring triangles get the same bits.
#include "SwMeshColorSource.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "../Kernels/RowKernels.h"
#include "../Pixels/Opacity.h"
#include "../Pixels/PixelMath.h"
#include "SwGradientColorSource.h"

namespace Graphics {

namespace {

/// Largest device coordinate of an image.
constexpr float kFarthest = 536870912.0F;

int32_t Confine(float v) noexcept {
    return SaturatingTruncate(std::isnan(v) ? 0.0F : std::clamp(v, -kFarthest, kFarthest));
}

/// Pixels of a band: they stay in the second-level cache until they are painted.
constexpr size_t kBandPixels = size_t{1} << 16;

/// The first pixel whose centre is at or after `at`, within [0, size].
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
                                     const Rect& bounds, const Matrix& transform)
    : m_vertices(gradient.vertices), m_map(PaintToDevice(brush.transform, transform)),
      m_factor(OpacityFactor(brush.opacity)) {
    m_left = Confine(std::floor(std::min(bounds.left, bounds.right)));
    m_top = Confine(std::floor(std::min(bounds.top, bounds.bottom)));
    const int32_t width = Confine(std::ceil(std::max(bounds.left, bounds.right))) - m_left;
    const int32_t height = Confine(std::ceil(std::max(bounds.top, bounds.bottom))) - m_top;
    if (width <= 0 || height <= 0 || m_vertices.size() < 3) {
        return;
    }
    m_width = width;
    m_height = height;
    m_bandRows = height;
    const size_t rows = std::max<size_t>(kBandPixels / static_cast<size_t>(width), 1);
    if (rows * 2 < static_cast<size_t>(height)) {
        m_bandRows = static_cast<int32_t>(rows);
        ListByBand(arena);
    }
    m_pixels = arena.AllocArray<uint32_t>(static_cast<size_t>(width) * static_cast<size_t>(m_bandRows));
}

bool SwMeshColorSource::Corners(size_t triangle, Vertex (&v)[3]) const noexcept {
    bool finite = true;
    for (size_t k = 0; k < 3; ++k) {
        const GXTriMeshVertex& from = m_vertices[triangle * 3 + k];
        const Point p = Map(m_map, {from.x, from.y});
        finite = finite && std::isfinite(p.x) && std::isfinite(p.y);
        v[k] = {static_cast<double>(p.x) - m_left, static_cast<double>(p.y) - m_top, from.color};
    }
    return finite;
}

bool SwMeshColorSource::FindRows(const Vertex (&v)[3], int32_t& first, int32_t& last) const noexcept {
    const double minX = std::min({v[0].x, v[1].x, v[2].x});
    const double maxX = std::max({v[0].x, v[1].x, v[2].x});
    const double minY = std::min({v[0].y, v[1].y, v[2].y});
    const double maxY = std::max({v[0].y, v[1].y, v[2].y});
    if (maxX <= 0.0 || maxY <= 0.0 || minX >= m_width || minY >= m_height) {
        return false;
    }
    first = FirstCentre(minY, m_height);
    last = FirstCentre(maxY, m_height);
    return first < last;
}

void SwMeshColorSource::ListByBand(Arena& arena) {
    const auto bands = static_cast<size_t>(BandCount());
    const size_t triangles = m_vertices.size() / 3;
    const auto forBandsOf = [&](size_t triangle, auto&& use) {
        Vertex v[3];
        int32_t first;
        int32_t last;
        if (Corners(triangle, v) && FindRows(v, first, last)) {
            use(static_cast<size_t>(first / m_bandRows), static_cast<size_t>((last - 1) / m_bandRows));
        }
    };
    // Counted as changes from band to band, then summed to the end of each band's list, then reduced to its start.
    m_listStarts = arena.AllocArray<uint32_t>(bands + 1);
    std::fill_n(m_listStarts, bands + 1, 0U);
    size_t total = 0;
    for (size_t i = 0; i < triangles; ++i) {
        forBandsOf(i, [&](size_t from, size_t to) {
            ++m_listStarts[from];
            --m_listStarts[to + 1];
            total += to - from + 1;
        });
    }
    constexpr size_t kFreeEntries = size_t{1} << 16;
    if (total > triangles * 4 + kFreeEntries || total > UINT32_MAX) {
        m_bandRows = m_height; // lists too long, from overlapping tall triangles: all rows become one band
        return;
    }
    uint32_t inBand = 0;
    uint32_t end = 0;
    for (size_t band = 0; band <= bands; ++band) {
        inBand += m_listStarts[band];
        end += inBand;
        m_listStarts[band] = end;
    }
    m_listed = arena.AllocArray<uint32_t>(total);
    for (size_t i = triangles; i-- > 0;) {
        forBandsOf(i, [&](size_t from, size_t to) {
            for (size_t band = from; band <= to; ++band) {
                m_listed[--m_listStarts[band]] = static_cast<uint32_t>(i);
            }
        });
    }
}

void SwMeshColorSource::DrawBand(int32_t band) const noexcept {
    const int32_t top = band * m_bandRows;
    const int32_t bottom = std::min(top + m_bandRows, m_height);
    std::fill_n(m_pixels, static_cast<size_t>(bottom - top) * static_cast<size_t>(m_width), 0U);
    const size_t begin = m_listed == nullptr ? 0 : m_listStarts[band];
    const size_t end = m_listed == nullptr ? m_vertices.size() / 3 : m_listStarts[band + 1];
    for (size_t i = begin; i < end; ++i) {
        Vertex v[3];
        int32_t first;
        int32_t last;
        if (Corners(m_listed == nullptr ? i : m_listed[i], v) && FindRows(v, first, last)) {
            FillTriangle(v, std::max(first, top), std::min(last, bottom), top);
        }
    }
    m_band = band;
}

void SwMeshColorSource::FillTriangle(const Vertex (&v)[3], int32_t first, int32_t last, int32_t top) const noexcept {
    const double area = (v[1].x - v[0].x) * (v[2].y - v[0].y) - (v[1].y - v[0].y) * (v[2].x - v[0].x);
    if (area == 0.0) {
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
    const PaintKernels& kernels = ActivePaintKernels();
    for (int32_t y = first; y < last; ++y) {
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
        uint32_t* out = m_pixels + static_cast<size_t>(y - top) * static_cast<size_t>(m_width) + from;
        kernels.plane(start, step, pixels, out);
        if (!opaque) {
            ActiveKernels().premultiply(out, pixels);
        }
        if (m_factor != 256) {
            ActiveKernels().scaleColorBy(out, m_factor, pixels);
        }
    }
}

const uint32_t* SwMeshColorSource::Row(int32_t y) const noexcept {
    const int32_t band = y / m_bandRows;
    if (band != m_band) {
        DrawBand(band);
    }
    return m_pixels + static_cast<size_t>(y - band * m_bandRows) * static_cast<size_t>(m_width);
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
        std::fill_n(out, count, 0U);
        return;
    }
    std::fill(out, out + from, 0U);
    if (from < to) {
        std::copy_n(Row(static_cast<int32_t>(row)) + column + from, to - from, out + from);
    }
    std::fill(out + to, out + count, 0U);
}

bool SwMeshColorSource::IsSolid(uint32_t& color) const noexcept {
    color = 0;
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
