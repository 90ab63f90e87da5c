// SPDX-License-Identifier: MIT
// Structures that a host passes by pointer.
//
// Mostly it has written their numbers right before the call, one by one. A wider load of several numbers cannot take them from
// the processor's store buffer: it waits until they are in the cache, behind the pixels of the draws before. So they are
// loaded one by one, too.
#pragma once

#include "GX/GX.h"

namespace Graphics {

[[nodiscard]] inline GXPoint Given(const GXPoint* point) noexcept {
    const volatile GXPoint& p = *point; // which keeps the compiler from joining the loads
    return {p.x, p.y};
}

[[nodiscard]] inline GXRect Given(const GXRect* rect) noexcept {
    const volatile GXRect& r = *rect;
    return {r.left, r.top, r.right, r.bottom};
}

[[nodiscard]] inline GXMatrix Given(const GXMatrix* matrix) noexcept {
    const volatile GXMatrix& m = *matrix;
    return {m.m00, m.m01, m.m10, m.m11, m.m20, m.m21};
}

} // namespace Graphics
