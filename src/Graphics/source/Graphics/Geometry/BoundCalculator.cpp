// SPDX-License-Identifier: MIT
#include "BoundCalculator.h"

namespace Graphics {

// A fill rule has no extent.
void BoundCalculator::SetFillRule(uint32_t) {}

void BoundCalculator::Reset() noexcept {
    m_box = {kInfinity, kInfinity, -kInfinity, -kInfinity};
    m_check = 0;
}

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
