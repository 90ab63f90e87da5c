// SPDX-License-Identifier: MIT
// The range of a coordinate cut into bands, each with a grid that is no finer than the floats in it:
//
//     ... [-4R, -2R] [-2R, -R] [-R, -r] [-r, r] [r, R] [R, 2R] [2R, 4R] ...
//
// R is 2^24 grid steps, which are well below the tolerance; r, a power of two, bounds the largest input coordinate up
// to R. The grid step is r / 2^24 in the middle, R / 2^24 up to R, and beyond R the distance of floats, which doubles
// with each band. Bounds, and floats beyond R, lie on the grids at both sides of them.
#pragma once

#include "../ProcessHeap.h"

namespace Graphics {

class FloatBands {
public:
    /// The largest grid step, a power of two, with which areas are correct to within the tolerance.
    [[nodiscard]] static double StepFor(double tolerance) noexcept;

    /// `near` is the largest absolute coordinate up to 2^24 steps, `most` the largest of all.
    FloatBands(double step, double near, double most);

    [[nodiscard]] size_t Count() const noexcept { return m_steps.size(); }
    /// Band i lies between the bounds i and i + 1.
    [[nodiscard]] double Bound(size_t i) const noexcept { return m_bounds[i]; }
    [[nodiscard]] double Step(size_t band) const noexcept { return m_steps[band]; }
    /// The nearest number on the grid at v, which is a float.
    [[nodiscard]] float Round(double v) const noexcept;

private:
    HeapArray<double> m_bounds, m_steps;
};

} // namespace Graphics
