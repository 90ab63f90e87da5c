// SPDX-License-Identifier: MIT
// The crossing of a line between two float points with an axis-parallel line, accurate to nearly all digits of a double
// however far away the points are.
#pragma once

#include "../Types.h"

namespace Graphics {

enum class PlaneAxis { X, Y };

[[nodiscard]] inline float Along(PlaneAxis axis, const Point& p) noexcept { return axis == PlaneAxis::X ? p.x : p.y; }
[[nodiscard]] inline float Across(PlaneAxis axis, const Point& p) noexcept { return axis == PlaneAxis::X ? p.y : p.x; }

/// The other coordinate of the line from -> to where its coordinate along `axis` is `at`. `at` lies between the two
/// points' coordinates, which differ. The result is accurate to `step` / 2^10.
[[nodiscard]] double CutAcross(const Point& from, const Point& to, PlaneAxis axis, double at, double step) noexcept;

} // namespace Graphics
