// SPDX-License-Identifier: MIT
// What of the matrices must be computed out of line.
#include "Matrix.h"

namespace Graphics {

bool Invert(const Matrix& m, Matrix& out) noexcept {
    const double a = m.m00, b = m.m01, c = m.m10, d = m.m11, e = m.m20, f = m.m21;
    const double det = a * d - b * c;
    if (!(det != 0.0) || !std::isfinite(det) || !std::isfinite(e) || !std::isfinite(f)) {
        return false;
    }
    const double k = 1.0 / det;
    if (!std::isfinite(k)) {
        return false;
    }
    out = {static_cast<float>(d * k),
           static_cast<float>(-b * k),
           static_cast<float>(-c * k),
           static_cast<float>(a * k),
           static_cast<float>((c * f - d * e) * k),
           static_cast<float>((b * e - a * f) * k)};
    return true;
}

} // namespace Graphics
