// SPDX-License-Identifier: MIT
// Where a line between two points of floats meets a line along an axis, right to nearly all digits of a double however
// far off the points are.
#pragma once

#include "../Types.h"

namespace Graphics {

enum class PlaneAxis { X, Y };

[[nodiscard]] inline float Along(PlaneAxis axis, const Point& p) noexcept { return axis == PlaneAxis::X ? p.x : p.y; }
[[nodiscard]] inline float Across(PlaneAxis axis, const Point& p) noexcept { return axis == PlaneAxis::X ? p.y : p.x; }

/// The other coordinate of the line from -> to where the coordinate along `axis`, which differs at the two points, is
/// `at`, which lies between them. An error of `step` / 2^10 does not matter.
[[nodiscard]] double CutAcross(const Point& from, const Point& to, PlaneAxis axis, double at, double step) noexcept;

} // namespace Graphics
