// SPDX-License-Identifier: MIT
#include "Boolean.h"

#include <algorithm>

#include "../Geometry/Transformer.h"
#include "ContourTracer.h"
#include "EdgeCollector.h"

namespace Graphics {
namespace {

using Box = RingClipper::Box;

[[nodiscard]] bool Counts(const Figure& figure) noexcept { return AllFinite(figure, kIdentity); }

/// The box of the points of finite figures; without any, left is above right.
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

/// The box outside of which the result is empty.
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

} // namespace

void Boolean::Combine(const Shape& a, const Shape& b, uint32_t mode, float tolerance, Shape& out) {
    Box box = ResultBox(BoxOf(a), BoxOf(b), mode);
    if (!(box.left < box.right && box.top < box.bottom)) {
        return;
    }
    const PointGrid grid(
        std::max({std::fabs(box.left), std::fabs(box.top), std::fabs(box.right), std::fabs(box.bottom)}));
    // The margin keeps the ways along the border, which belong to one operand only, away from the result.
    const double margin = 4 * grid.Unit();
    box = {box.left - margin, box.top - margin, box.right + margin, box.bottom + margin};
    const double wanted = tolerance > 0.0F ? tolerance : 0.25;
    const auto flatness = static_cast<float>(std::max(wanted, grid.Unit()));

    Scanner scanner(WindingTest(mode, a.FillRule(), b.FillRule()));
    EdgeCollector first(scanner, grid, box, flatness, false);
    a.ReplayFigures(first, Counts);
    EdgeCollector second(scanner, grid, box, flatness, true);
    b.ReplayFigures(second, Counts);
    scanner.Run();
    ContourTracer(grid, out).Trace(scanner);
}

} // namespace Graphics
