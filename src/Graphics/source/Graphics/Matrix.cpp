// SPDX-License-Identifier: MIT
// Matrix functions that must be computed out of line.
#include "Matrix.h"

namespace Graphics {

bool InverseMap::Set(const Matrix& m) noexcept {
    const double m00 = m.m00, m01 = m.m01, m10 = m.m10, m11 = m.m11, m20 = m.m20, m21 = m.m21;
    const double det = m00 * m11 - m01 * m10;
    const double k = 1.0 / det;
    if (det == 0.0 || !std::isfinite(det) || !std::isfinite(k) || !std::isfinite(m20) || !std::isfinite(m21)) {
        return false;
    }
    a = m11 * k;
    b = -m01 * k;
    c = -m10 * k;
    d = m00 * k;
    e = (m10 * m21 - m11 * m20) * k;
    f = (m01 * m20 - m00 * m21) * k;
    return true;
}

bool Invert(const Matrix& m, Matrix& out) noexcept {
    InverseMap map;
    if (!map.Set(m)) {
        return false;
    }
    out = {static_cast<float>(map.a), static_cast<float>(map.b), static_cast<float>(map.c),
           static_cast<float>(map.d), static_cast<float>(map.e), static_cast<float>(map.f)};
    return true;
}

} // namespace Graphics
