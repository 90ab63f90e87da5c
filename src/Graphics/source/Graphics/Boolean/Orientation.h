// SPDX-License-Identifier: MIT
// On which side of a line a point lies, without rounding errors.
#pragma once

#include "../Types.h"

namespace Graphics {

/// The sign of (a - p) x (b - p) for finite points: -1, 0 or 1, always the true one. It is 1 where the way from p to a
/// to b turns from x towards y.
[[nodiscard]] int OrientationSign(const Point& a, const Point& b, const Point& p) noexcept;

} // namespace Graphics
