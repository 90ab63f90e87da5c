// SPDX-License-Identifier: MIT
#include "BoundCalculator.h"

namespace Graphics {

Rect BoundCalculator::Box() const noexcept {
    Rect box = m_box;
    if (!(box.left <= box.right)) {
        box.left = box.right = 0;
    }
    if (!(box.top <= box.bottom)) {
        box.top = box.bottom = 0;
    }
    return box;
}

Rect BoundCalculator::Box(const Matrix& m) const noexcept { return IsIdentity(m) ? Box() : MapBox(m, Box()); }

} // namespace Graphics
