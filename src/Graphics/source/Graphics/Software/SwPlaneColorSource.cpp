// SPDX-License-Identifier: MIT
#include "SwPlaneColorSource.h"

#include <algorithm>
#include <cstring>

namespace Graphics {

SwPlaneColorSource::SwPlaneColorSource(const SwTargetPlanes& planes, float opacity) noexcept
    : m_planes(planes),
      m_factor(static_cast<uint32_t>(SaturatingTruncate(std::clamp(opacity, 0.0F, 1.0F) * 255.0F)) + 1) {}

const uint32_t* SwPlaneColorSource::Row(int32_t x, int32_t y) const noexcept {
    return reinterpret_cast<const uint32_t*>(m_planes.color + (y - m_planes.origin.y) * m_planes.colorStride) +
           (x - m_planes.origin.x);
}

void SwPlaneColorSource::Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) {
    if (x0 < x1) {
        const auto count = static_cast<size_t>(x1 - x0);
        std::memcpy(out, Row(x0, y), count * sizeof(uint32_t));
        ActiveKernels().scaleColorBy(out, m_factor, count);
    }
}

const uint32_t* SwPlaneColorSource::DirectRow(int32_t x0, int32_t x1, int32_t y) const noexcept {
    static_cast<void>(x1);
    return m_factor == 256 ? Row(x0, y) : nullptr;
}

} // namespace Graphics
