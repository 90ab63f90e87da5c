// SPDX-License-Identifier: MIT
#include "SwInverter.h"

namespace Graphics {

void SwInverter::Invert(int32_t y, int32_t x0, int32_t x1) {
    auto* row = reinterpret_cast<uint32_t*>(m_target.color + (y - m_target.origin.y) * m_target.colorStride) -
                m_target.origin.x;
    if (m_target.alpha != nullptr) { // a group's pixels are premultiplied: no colour may exceed its alpha
        ActiveKernels().invert(row + x0, static_cast<size_t>(x1 - x0));
        return;
    }
    const uint32_t opaque = m_target.makesOpaque ? 0xFF000000U : 0U;
    for (int32_t x = x0; x < x1; ++x) { // the surface's bytes, whatever they are
        row[x] = (row[x] ^ 0x00FFFFFFU) | opaque;
    }
}

} // namespace Graphics
