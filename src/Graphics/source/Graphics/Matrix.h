// SPDX-License-Identifier: MIT
// Affine maps on row vectors: x' = m00 x + m10 y + m20, y' = m01 x + m11 y + m21. Single precision,
// products added in that order, so that every consumer maps a point to the same bits.
#pragma once

#include <algorithm>

#include "Types.h"

namespace Graphics {

using Matrix = GXMatrix;

inline constexpr Matrix kIdentity{1.0F, 0.0F, 0.0F, 1.0F, 0.0F, 0.0F};

[[nodiscard]] inline bool IsIdentity(const Matrix& m) noexcept {
    return m.m00 == 1.0F && m.m01 == 0.0F && m.m10 == 0.0F && m.m11 == 1.0F && m.m20 == 0.0F && m.m21 == 0.0F;
}

[[nodiscard]] inline bool SameMatrix(const Matrix& a, const Matrix& b) noexcept {
    return a.m00 == b.m00 && a.m01 == b.m01 && a.m10 == b.m10 && a.m11 == b.m11 && a.m20 == b.m20 && a.m21 == b.m21;
}

[[nodiscard]] inline Point Map(const Matrix& m, const Point& p) noexcept {
    return {m.m00 * p.x + m.m10 * p.y + m.m20, m.m01 * p.x + m.m11 * p.y + m.m21};
}

/// Applies a first, then b.
[[nodiscard]] inline Matrix Concat(const Matrix& a, const Matrix& b) noexcept {
    return {a.m00 * b.m00 + a.m01 * b.m10,         a.m00 * b.m01 + a.m01 * b.m11,
            a.m10 * b.m00 + a.m11 * b.m10,         a.m10 * b.m01 + a.m11 * b.m11,
            a.m20 * b.m00 + a.m21 * b.m10 + b.m20, a.m20 * b.m01 + a.m21 * b.m11 + b.m21};
}

/// An inverse before rounding to floats.
struct InverseMap {
    double a, b, c, d, e, f; ///< x' = a x + c y + e, y' = b x + d y + f

    /// False if there is no finite inverse; the map is then unchanged.
    [[nodiscard]] bool Set(const Matrix& m) noexcept;
};

/// False if there is no finite inverse; `out` is then unchanged. Computed in double and rounded once. Not inline: GCC
/// 12 vectorised it into a caller, which then used elements that were not rounded.
[[nodiscard]] bool Invert(const Matrix& m, Matrix& out) noexcept;

/// The min/max box of the four mapped corners.
[[nodiscard]] inline Rect MapBox(const Matrix& m, const Rect& r) noexcept {
    const Point p[4] = {Map(m, {r.left, r.top}), Map(m, {r.right, r.top}), Map(m, {r.right, r.bottom}),
                        Map(m, {r.left, r.bottom})};
    Rect box{p[0].x, p[0].y, p[0].x, p[0].y};
    for (const Point& q : p) {
        box = {std::min(box.left, q.x), std::min(box.top, q.y), std::max(box.right, q.x), std::max(box.bottom, q.y)};
    }
    return box;
}

} // namespace Graphics
