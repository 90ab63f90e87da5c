// SPDX-License-Identifier: MIT
// Turns a path in device pixels into anti-aliased coverage: 8 x 8 samples per pixel, edges stepped exactly. One object
// serves many fills, one after another, and keeps its memory.
#pragma once

#include "BandScanner.h"
#include "BoxScanner.h"
#include "EdgeBuilder.h"
#include "EdgeScanner.h"

namespace Graphics {

class Rasterizer {
public:
    /// Flattened curves deviate by about `tolerance` pixels.
    explicit Rasterizer(float tolerance = 0.25F) noexcept
        : m_tolerance(tolerance < 1.1920929e-7F ? 1.1920929e-7F : tolerance) {}

    /// Starts a fill. `clipPixels` is the whole target and determines which edges exist; rows and runs are produced
    /// inside `visible` only. `snap` turns an upright rectangle into whole pixels.
    void Begin(const Rect& clipPixels, const IntRect& visible, bool snap);

    void SetFillRule(uint32_t rule) { m_evenOdd = rule != 0; }
    void BeginFigure(const Point& start) {
        m_builder.CloseFigure();
        m_onlyBoxes = false;
        m_current = start;
        m_builder.Add(ToVertex(start));
    }
    void LineTo(const Point& p) {
        if (p.x == m_current.x && p.y == m_current.y) {
            return;
        }
        m_current = p;
        m_builder.Add(ToVertex(p));
    }
    void CubicTo(const Point& c1, const Point& c2, const Point& end);
    void EndFigure() { m_builder.CloseFigure(); }
    void EndFigureClose() { m_builder.CloseFigure(); }

    /// Adds a closed figure: the upright rectangle between two opposite corners, first along x. A non-zero fill of
    /// nothing but such boxes in one row or column needs no edges; all of them must wind the same way.
    void Box(const Point& a, const Point& b) {
        m_builder.CloseFigure();
        const Vertex from = ToVertex(a);
        const Vertex to = ToVertex(b);
        m_builder.Add(from);
        m_builder.Add({to.x, from.y});
        m_builder.Add(to);
        m_builder.Add({from.x, to.y});
        m_builder.CloseFigure();
    }

    /// Moves the fill right and down by eighths of a pixel: the same samples at another position.
    void Move(int32_t right, int32_t down) noexcept { m_builder.Move(right * 16, down * 16); }

    /// Whether Finish would send the whole pixels of an upright rectangle because the fill has no other edges. If
    /// culled figures were not added, the answer does not hold for the complete fill. No figure may follow.
    [[nodiscard]] bool IsLoneRectangle();

    /// Sends the coverage; sends nothing if the fill has no edge.
    void Finish(RasterizationSink& sink);

    /// Writes the fill's samples into `grid` instead of sending coverage. The visible rectangle must begin at (0, 0);
    /// its size is the grid's size.
    void FinishSamples(SampleGrid& grid);

    /// Frees arrays that grew large. Call between fills.
    void Trim() noexcept {
        m_builder.Trim();
        m_bands.Trim();
        m_boxes.Trim();
        m_sorting.Trim();
        m_edges.Trim();
    }

    /// Replaces the processor's best loops, for tests.
    void UseKernels(const BandKernels& kernels) noexcept { m_bands.UseKernels(kernels); }

private:
    enum class Stage { Collects, HasBoxes, HasEdges };

    /// Closes the fill and decides how it is scanned.
    void Settle();
    void Measure();

    EdgeBuilder m_builder;
    BandScanner m_bands;
    BoxScanner m_boxes;
    EdgeScanner m_sorting;
    HeapArray<Edge> m_edges;
    IntRect m_visible{};
    FillShape m_shape{}; // valid from Stage::HasEdges on
    Stage m_stage = Stage::Collects;
    Point m_current{};
    float m_tolerance;
    bool m_snap = false;
    bool m_evenOdd = false;
    bool m_onlyBoxes = true;
};

} // namespace Graphics
