// SPDX-License-Identifier: MIT
#include "SwSubTarget.h"

#include <algorithm>

#include "../Exception.h"

namespace Graphics {

void SwSubTarget::PushState() { m_states.push_back(SwState(m_states.back())); }

void SwSubTarget::PopState() {
    if (m_states.size() < 2) {
        GX_RAISE("Graphics::SwSubTarget::PopState", "State stack is empty");
    }
    m_states.pop_back();
}

void SwSubTarget::Reset(const IntRect& bounds, const SwState& state) {
    m_bounds = bounds;
    m_states.clear();
    m_states.push_back(state);
}

void SwBasicSubTarget::Open(uint8_t* pixels, ptrdiff_t strideBytes, const IntRect& bounds, const SwState& state) {
    Reset(bounds, state);
    m_planes = {};
    m_planes.color = pixels;
    m_planes.colorStride = strideBytes;
}

SwTargetPlanes SwBasicSubTarget::Planes(const IntRect& region) {
    static_cast<void>(region);
    return m_planes;
}

void SwBasicSubTarget::Clear(const SwKernels& kernels, const IntRect& region, const SwClip* clip, uint32_t color) {
    const auto width = static_cast<size_t>(region.right - region.left);
    if ((clip == nullptr || !clip->HasMask()) &&
        static_cast<ptrdiff_t>(width * sizeof(uint32_t)) == m_planes.colorStride) {
        // Rows without a gap are one long row.
        kernels.fill32(reinterpret_cast<uint32_t*>(m_planes.color + region.top * m_planes.colorStride) + region.left,
                       color, width * static_cast<size_t>(region.bottom - region.top));
        return;
    }
    for (int32_t y = region.top; y < region.bottom; ++y) {
        auto* row = reinterpret_cast<uint32_t*>(m_planes.color + y * m_planes.colorStride);
        if (clip == nullptr || !clip->HasMask()) {
            kernels.fill32(row + region.left, color, width);
            continue;
        }
        const int32_t x0 = std::max(region.left, clip->Row(y).begin);
        const int32_t x1 = std::min(region.right, clip->Row(y).end);
        if (x0 < x1) {
            kernels.replaceSolid(row + x0, color, clip->Coverage(x0, y), static_cast<size_t>(x1 - x0));
        }
    }
}

} // namespace Graphics
