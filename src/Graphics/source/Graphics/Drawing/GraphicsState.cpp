// SPDX-License-Identifier: MIT
#include "GraphicsState.h"

#include <algorithm>

#include "../Exception.h"

namespace Graphics {
namespace {

template <class T> void ReserveOne(std::vector<T>& v) {
    if (v.size() == v.capacity()) {
        v.reserve(std::max<size_t>(4, v.size() * 2));
    }
}

} // namespace

void GraphicsState::CheckMaskTypes() const {
    for (const SoftMask* mask : {&shapeMask, &opacityMask}) {
        if (mask->IsSet() && mask->type > GXMaskTypeInverseLuminosity) {
            GX_RAISE("Graphics::SwSoftMaskOp::SwSoftMaskOp", "Unsupported soft mask type.");
        }
    }
}

void StateStack::Reserve() {
    ReserveOne(m_states);
    ReserveOne(m_layers);
}

void StateStack::Push() noexcept { m_states.push_back(m_states.back()); }

void StateStack::OpenLayer() noexcept {
    GraphicsState first;
    first.transform = Current().transform;
    first.strokeAdjustment = Current().strokeAdjustment;
    m_layers.push_back(m_states.size());
    m_states.push_back(std::move(first));
}

void StateStack::CloseLayer() noexcept {
    m_states.resize(Start());
    m_layers.pop_back();
}

void StateStack::Reset() noexcept {
    constexpr size_t kKept = 64; // 8 KB
    m_layers.clear();
    m_states.resize(1);
    m_states.front() = GraphicsState();
    if (m_states.capacity() > kKept) {
        m_states.shrink_to_fit();
    }
    if (m_layers.capacity() > kKept) {
        m_layers.shrink_to_fit();
    }
}

} // namespace Graphics
