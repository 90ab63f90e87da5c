// SPDX-License-Identifier: MIT
#include "SwSubTarget.h"

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

} // namespace Graphics
