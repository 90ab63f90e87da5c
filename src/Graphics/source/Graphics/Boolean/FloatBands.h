// SPDX-License-Identifier: MIT
// A coordinate's range cut into bands, each with a grid of its own that is no finer than the floats there:
//
//     ... [-4R, -2R] [-2R, -R] [-R, -r] [-r, r] [r, R] [R, 2R] [2R, 4R] ...
//
// R is 2^24 grid steps that are well below the tolerance; r, a power of two, is the largest coordinate up to R that
// there is. The grid has r / 2^24 in the middle, R / 2^24 up to R, and from there on the distance of floats, which
// doubles with each band. Bounds and the floats beyond R lie on the grids at both sides of them.
#pragma once

#include "../ProcessHeap.h"

namespace Graphics {

class FloatBands {
public:
    /// The largest step of a grid on which areas are right to within a tolerance: a power of two.
    [[nodiscard]] static double StepFor(double tolerance) noexcept;

    /// `near` is the largest absolute coordinate up to 2^24 steps, `most` that of all.
    FloatBands(double step, double near, double most);

    [[nodiscard]] size_t Count() const noexcept { return m_steps.size(); }
    /// Band i lies between the bounds i and i + 1.
    [[nodiscard]] double Bound(size_t i) const noexcept { return m_bounds[i]; }
    [[nodiscard]] double Step(size_t band) const noexcept { return m_steps[band]; }
    /// The nearest number of the grid where v is, as a float that holds it.
    [[nodiscard]] float Round(double v) const noexcept;

private:
    HeapArray<double> m_bounds, m_steps;
};

} // namespace Graphics
