// SPDX-License-Identifier: MIT
// The sink between a shape and the scanner: flattens curves, cuts off what lies far outside the result, rounds points
// to the grid and closes figures.
#pragma once

#include "PointGrid.h"
#include "RingFlattener.h"
#include "Scanner.h"

namespace Graphics {

class EdgeCollector final : public RingFlattener {
public:
    /// `limits` contains the largest possible result with a margin. Curves are flattened to within `tolerance`.
    EdgeCollector(Scanner& scanner, const PointGrid& grid, const RingClipper::Box& limits, float tolerance,
                  bool ofB) noexcept
        : RingFlattener(limits, tolerance), m_scanner(scanner), m_grid(grid), m_clipper(limits, grid.Unit()),
          m_ofB(ofB) {}

private:
    void TakeRing(const HeapArray<Point>& ring) override;
    template <class Ring> void AddRing(const Ring& ring);
    [[nodiscard]] bool Inside(const HeapArray<Point>& ring) const noexcept;

    Scanner& m_scanner;
    const PointGrid& m_grid;
    RingClipper m_clipper;
    const bool m_ofB;
};

} // namespace Graphics
