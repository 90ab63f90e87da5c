// SPDX-License-Identifier: MIT
// From vertices to output: a whole-pixel rectangle, trapezoid bands or rows of coverage.
#include "Rasterizer.h"

#include <algorithm>

#include "../Geometry/CurveFlattener.h"
#include "RectangleScanner.h"
#include "SnapRectangle.h"

namespace Graphics {

namespace {

IntRect Snap(const Edge (&e)[2]) noexcept {
    const PixelRange x = SnapToPixels(std::min(e[0].x, e[1].x), std::max(e[0].x, e[1].x));
    const PixelRange y = SnapToPixels(e[0].first, e[0].last);
    return {x.low, y.low, x.high, y.high};
}

} // namespace

void Rasterizer::Begin(const Rect& clipPixels, const IntRect& visible, bool snap) {
    // Pixels beyond 2^23 are outside every target and would not fit into fine units.
    constexpr int32_t kFar = 1 << 23;
    m_visible = Intersect(visible, {-kFar, -kFar, kFar, kFar});
    m_snap = snap;
    m_evenOdd = false;
    m_onlyBoxes = true;
    m_stage = Stage::Collects;
    m_current = {0, 0};
    m_builder.Begin(clipPixels);
}

void Rasterizer::CubicTo(const Point& c1, const Point& c2, const Point& end) {
    CurveFlattener flattener(m_tolerance, m_current, c1, c2, end);
    Point p;
    while (flattener.Next(p)) {
        LineTo(p);
    }
    LineTo(end);
}

void Rasterizer::Measure() {
    m_shape = m_builder.Measure(!m_evenOdd);
    m_stage = Stage::HasEdges;
}

void Rasterizer::Settle() {
    if (m_stage != Stage::Collects) {
        return;
    }
    m_builder.CloseFigure();
    if (m_onlyBoxes && !m_evenOdd && m_boxes.Prepare(m_builder, m_visible, m_snap)) {
        m_stage = Stage::HasBoxes;
    } else {
        Measure();
    }
}

bool Rasterizer::IsLoneRectangle() {
    Settle();
    Edge e[2];
    return m_snap && m_stage == Stage::HasEdges && m_shape.first < m_shape.last && m_builder.TwoUprightEdges(e);
}

void Rasterizer::Finish(RasterizationSink& sink) {
    Settle();
    if (m_stage == Stage::HasBoxes) {
        if (m_boxes.First() >= m_boxes.Last()) {
            return;
        }
        if (!sink.Begin(m_boxes.First(), m_boxes.Last())) {
            m_boxes.Send(sink);
            return;
        }
        Measure();
    }
    const FillShape& shape = m_shape;
    if (shape.first >= shape.last) {
        return;
    }
    if (m_snap) {
        Edge e[2];
        if (m_builder.TwoUprightEdges(e)) {
            const IntRect r = Snap(e);
            sink.Rectangle(r.left, r.top, r.right, r.bottom);
            return;
        }
    }
    const bool trapezoids = sink.Begin(shape.first, shape.last);
    if (IsEmpty(m_visible) && !trapezoids) {
        return;
    }
    Vertex a;
    Vertex b;
    if (!trapezoids && m_builder.UprightRectangle(a, b)) {
        SampleRectangle samples;
        if (samples.Set(a, b, m_builder.ClipFirst(), m_builder.ClipLast(), m_visible)) {
            RectangleScanner(samples).Send(sink);
            return;
        }
    }
    if (!trapezoids && m_bands.Scan(m_builder, shape, m_visible, sink)) {
        return;
    }
    const int32_t first = trapezoids ? shape.first : std::max(shape.first, m_visible.top * 8);
    const int32_t last = trapezoids ? shape.last : std::min(shape.last, m_visible.bottom * 8);
    // A trapezoid may reach below the clip; only the scan ends at the clip's last sub-scanline.
    m_builder.Build(m_edges, trapezoids ? m_builder.ClipFirst() : first, trapezoids ? m_builder.ClipLast() : last);
    m_sorting.Scan(m_edges, m_evenOdd, trapezoids, first, last, m_visible, sink);
}

void Rasterizer::FinishSamples(SampleGrid& grid) {
    m_builder.CloseFigure();
    grid.Begin(std::max(m_visible.right, 0), std::max(m_visible.bottom, 0));
    Measure();
    const FillShape& shape = m_shape;
    const int32_t first = std::max(shape.first, 0);
    const int32_t last = std::min(shape.last, m_visible.bottom * 8);
    if (first < last) {
        m_builder.Build(m_edges, first, last);
        m_sorting.Scan(m_edges, m_evenOdd, first, last, grid);
    }
}

} // namespace Graphics
