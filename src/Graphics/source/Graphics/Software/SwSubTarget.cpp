// SPDX-License-Identifier: MIT
#include "SwSubTarget.h"

#include "../Exception.h"

namespace Graphics {

namespace {

/// Gaps of a line of the cache cost less to write than to leave out.
constexpr ptrdiff_t kMostGap = 64;

} // namespace

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

void SwBasicSubTarget::Open(const PixelView& pixels, const SwState& state) {
    Reset({0, 0, pixels.width, pixels.height}, state);
    m_planes = {};
    m_planes.color = pixels.data;
    m_planes.colorStride = pixels.strideBytes;
    const ptrdiff_t gap = pixels.strideBytes - static_cast<ptrdiff_t>(sizeof(uint32_t)) * pixels.width;
    if (pixels.ownsGaps && gap > 0 && gap <= kMostGap) {
        m_planes.rowWithGap = pixels.width;
    }
}

SwTargetPlanes SwBasicSubTarget::Planes(const IntRect& region) {
    static_cast<void>(region);
    return m_planes;
}

} // namespace Graphics
