// SPDX-License-Identifier: MIT
// Products of matrices as the library forms them: points are rows, mapped by the first factor first.
#pragma once

#include <GX/GX.h>

namespace Gxr {

inline GXMatrix Multiply(const GXMatrix& first, const GXMatrix& then) noexcept {
    return {first.m00 * then.m00 + first.m01 * then.m10,
            first.m00 * then.m01 + first.m01 * then.m11,
            first.m10 * then.m00 + first.m11 * then.m10,
            first.m10 * then.m01 + first.m11 * then.m11,
            first.m20 * then.m00 + first.m21 * then.m10 + then.m20,
            first.m20 * then.m01 + first.m21 * then.m11 + then.m21};
}

inline bool IsIdentity(const GXMatrix& m) noexcept {
    return m.m00 == 1 && m.m01 == 0 && m.m10 == 0 && m.m11 == 1 && m.m20 == 0 && m.m21 == 0;
}

} // namespace Gxr
