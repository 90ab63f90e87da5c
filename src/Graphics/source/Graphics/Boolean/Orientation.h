// SPDX-License-Identifier: MIT
// The side of a line on which a point lies, without rounding errors.
#pragma once

#include "../Types.h"

namespace Graphics {

/// The exact sign of (a - p) x (b - p) for finite points: -1, 0 or 1. It is 1 if the turn p -> a -> b is from x towards
/// y.
[[nodiscard]] int OrientationSign(const Point& a, const Point& b, const Point& p) noexcept;

} // namespace Graphics
