// SPDX-License-Identifier: MIT
// The sink between a shape and the scanner: curves become lines, what lies far outside of the result is cut off, points
// go to the grid, figures are closed.
#pragma once

#include "../Geometry/GeometrySink.h"
#include "PointGrid.h"
#include "RingClipper.h"
#include "Scanner.h"

namespace Graphics {

class EdgeCollector final : public GeometrySink {
public:
    /// `limits` encloses with a margin where the result can be. Curves are flattened to within `tolerance`.
    EdgeCollector(Scanner& scanner, const PointGrid& grid, const RingClipper::Box& limits, float tolerance,
                  bool ofB) noexcept
        : m_scanner(scanner), m_grid(grid), m_clipper(limits), m_tolerance(tolerance), m_ofB(ofB) {}

    void SetFillRule(uint32_t) override {}
    void BeginFigure(const Point& start) override;
    void EndFigure() override;
    void EndFigureClose() override { EndFigure(); }
    void LineTo(const Point& p) override { m_ring.push_back(p); }
    void CubicTo(const Point& c1, const Point& c2, const Point& end) override;

private:
    template <class Ring> void AddRing(const Ring& ring);
    [[nodiscard]] bool RingInside() const noexcept;

    Scanner& m_scanner;
    const PointGrid& m_grid;
    RingClipper m_clipper;
    float m_tolerance;
    bool m_ofB;
    HeapArray<Point> m_ring;
};

} // namespace Graphics
