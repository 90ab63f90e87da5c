// SPDX-License-Identifier: MIT
#include "Boolean.h"

#include <algorithm>

#include "../Geometry/Transformer.h"
#include "CellCombiner.h"
#include "ContourTracer.h"
#include "EdgeCollector.h"

namespace Graphics {
namespace {

using Box = RingClipper::Box;

[[nodiscard]] bool Counts(const Figure& figure) noexcept { return AllFinite(figure, kIdentity); }

/// The box of the points of finite figures; left is above right if there are none.
[[nodiscard]] Box BoxOf(const Shape& shape) noexcept {
    constexpr double kFar = std::numeric_limits<double>::infinity();
    Box box{kFar, kFar, -kFar, -kFar};
    for (const Figure& figure : shape.Figures()) {
        if (!Counts(figure)) {
            continue;
        }
        for (const Point& p : figure.Points()) {
            box.left = std::min<double>(box.left, p.x);
            box.top = std::min<double>(box.top, p.y);
            box.right = std::max<double>(box.right, p.x);
            box.bottom = std::max<double>(box.bottom, p.y);
        }
    }
    return box;
}

/// The box that contains the result.
[[nodiscard]] Box ResultBox(const Box& a, const Box& b, uint32_t mode) noexcept {
    switch (mode) {
    case GXCombineIntersection:
        return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                std::min(a.bottom, b.bottom)};
    case GXCombineDifference:
        return a;
    default:
        return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                std::max(a.bottom, b.bottom)};
    }
}

class CellCollector final : public RingFlattener {
public:
    CellCollector(CellCombiner& cells, const Box& limits, float tolerance, bool ofB) noexcept
        : RingFlattener(limits, tolerance), m_cells(cells), m_ofB(ofB) {}

private:
    void TakeRing(const HeapArray<Point>& ring) override { m_cells.AddRing(ring, m_ofB); }

    CellCombiner& m_cells;
    const bool m_ofB;
};

/// Writes the largest absolute coordinate of finite figures to `most`, and the largest up to `limit` to `near`.
void Measure(const Shape& shape, double limit, double& near, double& most) noexcept {
    for (const Figure& figure : shape.Figures()) {
        if (!Counts(figure)) {
            continue;
        }
        for (const Point& p : figure.Points()) {
            for (const double v : {std::fabs(static_cast<double>(p.x)), std::fabs(static_cast<double>(p.y))}) {
                most = std::max(most, v);
                near = v <= limit ? std::max(near, v) : near;
            }
        }
    }
}

CellCombiner::Counts CombineCells(const Shape& a, const Shape& b, uint32_t mode, double tolerance, Geometry& out) {
    const double step = FloatBands::StepFor(tolerance);
    double near = 0, most = 0;
    Measure(a, step * kGridLimit, near, most);
    Measure(b, step * kGridLimit, near, most);
    const FloatBands bands(step, near, most);
    BorderPuzzle result;
    CellCombiner cells(WindingTest(mode, a.FillRule(), b.FillRule()), bands, result);
    const Box everywhere{-most, -most, most, most};
    CellCollector first(cells, everywhere, static_cast<float>(tolerance), false);
    a.ReplayFigures(first, Counts);
    CellCollector second(cells, everywhere, static_cast<float>(tolerance), true);
    b.ReplayFigures(second, Counts);
    cells.Run();
    result.Write(out);
    return cells.Work();
}

} // namespace

void Boolean::Combine(const Shape& a, const Shape& b, uint32_t mode, float tolerance, Geometry& out,
                      CellCombiner::Counts* work) {
    Box box = ResultBox(BoxOf(a), BoxOf(b), mode);
    if (!(box.left < box.right && box.top < box.bottom)) {
        return;
    }
    const PointGrid grid(
        std::max({std::fabs(box.left), std::fabs(box.top), std::fabs(box.right), std::fabs(box.bottom)}));
    const double wanted = tolerance > 0.0F ? tolerance : 0.25;
    if (grid.Unit() > wanted / 2) {
        const CellCombiner::Counts counts = CombineCells(a, b, mode, wanted, out);
        if (work != nullptr) {
            *work = counts;
        }
        return;
    }
    // The margin keeps the paths along the border, which belong to only one operand, away from the result.
    const double margin = 4 * grid.Unit();
    box = {box.left - margin, box.top - margin, box.right + margin, box.bottom + margin};
    const auto flatness = static_cast<float>(wanted);

    Scanner scanner(WindingTest(mode, a.FillRule(), b.FillRule()));
    EdgeCollector first(scanner, grid, box, flatness, false);
    a.ReplayFigures(first, Counts);
    EdgeCollector second(scanner, grid, box, flatness, true);
    b.ReplayFigures(second, Counts);
    if (work != nullptr) {
        *work = {scanner.Edges().size(), 1, {}};
    }
    scanner.Run();
    if (work != nullptr) {
        work->sweep = scanner.Work();
    }
    ContourTracer(grid, out).Trace(scanner);
}

} // namespace Graphics
