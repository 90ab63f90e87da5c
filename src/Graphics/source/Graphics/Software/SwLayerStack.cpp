// SPDX-License-Identifier: MIT
#include "SwLayerStack.h"

#include <utility>

namespace Graphics {

void SwLayerStack::Open(SwSubTarget& parent, const IntRect& bounds, bool isolated, bool knockout, float opacity) {
    m_spare.reserve(kSpare);
    if (m_spare.empty()) {
        m_spare.push_back(std::make_unique<SwLayerSubTarget>());
    }
    m_spare.back()->Open(m_planes, parent, bounds, isolated, knockout, opacity);
    m_open.push_back(nullptr);
    m_open.back() = std::move(m_spare.back());
    m_spare.pop_back();
}

void SwLayerStack::Drop() noexcept {
    std::unique_ptr<SwLayerSubTarget> layer = std::move(m_open.back());
    m_open.pop_back();
    layer->Close();
    if (m_spare.size() < kSpare) {
        m_spare.push_back(std::move(layer)); // capacity is reserved
    }
}

void SwLayerStack::Trim() noexcept {
    constexpr size_t kKeptPlaces = 256; // 2 KB
    if (m_open.capacity() > kKeptPlaces) {
        std::vector<std::unique_ptr<SwLayerSubTarget>>().swap(m_open);
    }
    m_planes.Trim();
}

} // namespace Graphics
