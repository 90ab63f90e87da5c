// SPDX-License-Identifier: MIT
#pragma once

#include <bit>

#include "../Geometry/DeviceFeed.h"
#include "../Simd/BaseVectors.h"
#include "EdgeBuilder.h"

namespace Graphics {

/// Two opposite corners, in fine units, of a rectangle that stays upright under the matrix; false for any other figure.
[[nodiscard]] inline bool UprightCorners(const BasicFigure& figure, const Matrix& m, Vertex& a, Vertex& b) noexcept {
    const bool straight = m.m01 == 0.0F && m.m10 == 0.0F;
    const bool turned = m.m00 == 0.0F && m.m11 == 0.0F;
    if (figure.GetKind() != BasicFigure::Kind::Rectangle || !(straight || turned)) {
        return false;
    }
    // Maps both corners at once, with the operations of Map and ToVertex.
    const Rect& r = figure.Box();
    using namespace GX_SIMD_NAMESPACE;
    const F32 v = F32{m.m00, m.m01, m.m00, m.m01} * F32{r.left, r.left, r.right, r.right} +
                  F32{m.m10, m.m11, m.m10, m.m11} * F32{r.top, r.top, r.bottom, r.bottom} +
                  F32{m.m20, m.m21, m.m20, m.m21};
    // NaN compares false.
    if (MaskBits((I32)((v < kDeviceBand) & (v > -kDeviceBand))) != 15) {
        return false;
    }
    static_assert(kDeviceBand * 128.0F < kFineLimit);
    const auto fine = (U64)Truncate(v * 128.0F);
    a = std::bit_cast<Vertex>(fine[0]);
    b = std::bit_cast<Vertex>(fine[1]);
    return true;
}

} // namespace Graphics
