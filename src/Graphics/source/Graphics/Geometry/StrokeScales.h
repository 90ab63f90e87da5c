// SPDX-License-Identifier: MIT
// How much a matrix scales lengths, for the pen, the dasher and the adjuster.
#pragma once

#include <cmath>

#include "../Matrix.h"

namespace Graphics {

/// Avoids std::hypot, whose last bits differ between libraries. Squares of values from floats do not overflow.
[[nodiscard]] inline double Length(double x, double y) noexcept { return std::sqrt(x * x + y * y); }

/// The singular values of a matrix.
struct MatrixScales {
    double most;
    double least;

    explicit MatrixScales(const Matrix& m) noexcept {
        const double a = m.m00, b = m.m01, c = m.m10, d = m.m11;
        const double p = Length(a + d, b - c) * 0.5, q = Length(a - d, b + c) * 0.5;
        most = p + q;
        least = std::fabs(p - q);
    }
};

[[nodiscard]] inline bool IsFinite(const Matrix& m) noexcept {
    return std::isfinite(m.m00) && std::isfinite(m.m01) && std::isfinite(m.m10) && std::isfinite(m.m11) &&
           std::isfinite(m.m20) && std::isfinite(m.m21);
}

} // namespace Graphics
