// SPDX-License-Identifier: MIT
// The circle's functions for whatever reaches pixels. Those of the C library differ in their last bits between
// libraries, and within one between processors; these are made of operations that every processor rounds alike.
#pragma once

namespace Graphics {

struct SineCosine {
    double sine;
    double cosine;
};

/// Of an angle in radians, within 2 units of the last place of 1 (relative, near zeros of either). Angles from 2^20 on
/// are first reduced by the double nearest to 2 pi. NaN for what is not finite.
[[nodiscard]] SineCosine SineAndCosine(double radians) noexcept;

/// The angle of (x, y) from the x axis, -pi to pi, within 3 units of the last place, where the arguments are finite and
/// their squares do not overflow; (0, 0) gives 0. NaN where there is no angle.
[[nodiscard]] double Angle(double y, double x) noexcept;

} // namespace Graphics
