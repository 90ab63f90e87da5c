// SPDX-License-Identifier: MIT
// Trigonometric functions for everything that affects pixels. Those of C libraries differ in their last bits between
// libraries and processors; these use only operations that every processor rounds alike.
#pragma once

namespace Graphics {

struct SineCosine {
    double sine;
    double cosine;
};

/// Sine and cosine of an angle in radians, within 2 units of the last place of 1 (relative near zeros). Angles from
/// 2^20 on are first reduced by the double nearest to 2 pi. NaN for non-finite angles.
[[nodiscard]] SineCosine SineAndCosine(double radians) noexcept;

/// The angle of (x, y) from the x axis, -pi to pi, within 3 units of the last place, if the arguments are finite and
/// their squares do not overflow; (0, 0) gives 0. NaN if there is no angle.
[[nodiscard]] double Angle(double y, double x) noexcept;

} // namespace Graphics
