// SPDX-License-Identifier: MIT
#include "SwLayerSubTarget.h"

#include <algorithm>
#include <cstring>

namespace Graphics {
namespace {

/// Row y of a plane, at column x.
[[nodiscard]] uint32_t* ColorAt(const SwTargetPlanes& p, int32_t x, int32_t y) noexcept {
    return reinterpret_cast<uint32_t*>(p.color + (y - p.origin.y) * p.colorStride) + (x - p.origin.x);
}

[[nodiscard]] ptrdiff_t PlaneOffset(const SwTargetPlanes& p, int32_t x, int32_t y) noexcept {
    return (y - p.origin.y) * p.planeStride + (x - p.origin.x);
}

} // namespace

void SwLayerSubTarget::Open(SwSubTarget& parent, const IntRect& bounds, bool isolated, bool knockout, float opacity) {
    SwState state;
    state.transform = parent.State().transform;
    state.strokeAdjustment = parent.State().strokeAdjustment;
    Reset(bounds, state);
    const auto width = static_cast<size_t>(bounds.right - bounds.left);
    const auto count = width * static_cast<size_t>(bounds.bottom - bounds.top);
    if (Capacity() < count) {
        DropPlanes(); // neither copied nor kept while the new ones are made
    }
    m_color.resize(count);
    m_alpha.resize(count);
    m_shape.resize(count);
    m_planes = {};
    m_planes.origin = {bounds.left, bounds.top};
    m_planes.color = reinterpret_cast<uint8_t*>(m_color.data());
    m_planes.colorStride = static_cast<ptrdiff_t>(width * sizeof(uint32_t));
    m_planes.alpha = m_alpha.data();
    m_planes.shape = m_shape.data();
    m_planes.planeStride = static_cast<ptrdiff_t>(width);
    m_planes.knockout = knockout;
    m_parent = &parent;
    m_isolated = isolated;
    m_opacity = opacity;
    m_touched = {0, 0, 0, 0};
}

void SwLayerSubTarget::Start(const IntRect& region) {
    if (IsEmpty(region)) {
        return;
    }
    const SwTargetPlanes below = m_isolated ? SwTargetPlanes{} : m_parent->Backdrop(region);
    if (below.color != nullptr && m_planes.backdrop == nullptr) {
        // Moves the base to this group's origin; the bounds of a group lie inside those of its parent.
        m_planes.backdrop = reinterpret_cast<const uint8_t*>(ColorAt(below, m_bounds.left, m_bounds.top));
        m_planes.backdropStride = below.colorStride;
    }
    const auto count = static_cast<size_t>(region.right - region.left);
    for (int32_t y = region.top; y < region.bottom; ++y) {
        uint32_t* color = ColorAt(m_planes, region.left, y);
        if (below.color != nullptr) {
            std::memcpy(color, ColorAt(below, region.left, y), count * sizeof(uint32_t));
        } else {
            std::memset(color, 0, count * sizeof(uint32_t));
        }
        const ptrdiff_t offset = PlaneOffset(m_planes, region.left, y);
        std::memset(m_planes.alpha + offset, 0, count);
        std::memset(m_planes.shape + offset, 0, count);
    }
}

void SwLayerSubTarget::Reach(const IntRect& region) {
    if (IsEmpty(m_touched)) {
        Start(region);
        m_touched = region;
        return;
    }
    const IntRect t = m_touched;
    const IntRect grown{std::min(t.left, region.left), std::min(t.top, region.top), std::max(t.right, region.right),
                        std::max(t.bottom, region.bottom)};
    if (grown == t) {
        return;
    }
    Start({grown.left, grown.top, grown.right, t.top});
    Start({grown.left, t.bottom, grown.right, grown.bottom});
    Start({grown.left, t.top, t.left, t.bottom});
    Start({t.right, t.top, grown.right, t.bottom});
    m_touched = grown;
}

SwTargetPlanes SwLayerSubTarget::Planes(const IntRect& region) {
    Reach(region);
    return m_planes;
}

SwTargetPlanes SwLayerSubTarget::Backdrop(const IntRect& region) {
    Reach(region);
    if (!m_planes.knockout) {
        return m_planes;
    }
    // Elements of a knockout group see the group's initial backdrop, not each other.
    return m_isolated ? SwTargetPlanes{} : m_parent->Backdrop(region);
}

void SwLayerSubTarget::MakeResult(const SwKernels& kernels) {
    const IntRect& t = m_touched;
    for (int32_t y = t.top; y < t.bottom; ++y) {
        const ptrdiff_t offset = PlaneOffset(m_planes, t.left, y);
        const uint32_t* backdrop = nullptr;
        if (m_planes.backdrop != nullptr) {
            backdrop = reinterpret_cast<const uint32_t*>(m_planes.backdrop +
                                                         (y - m_planes.origin.y) * m_planes.backdropStride) +
                       (t.left - m_planes.origin.x);
        }
        kernels.groupResult(ColorAt(m_planes, t.left, y), m_planes.alpha + offset, m_planes.shape + offset, backdrop,
                            static_cast<size_t>(t.right - t.left));
    }
}

void SwLayerSubTarget::Close() noexcept {
    m_states.clear();
    m_parent = nullptr;
}

void SwLayerSubTarget::Trim() noexcept {
    constexpr size_t kKeepPixels = 1U << 18;
    if (m_color.capacity() > kKeepPixels) {
        DropPlanes();
    }
}

void SwLayerSubTarget::DropPlanes() noexcept {
    m_color = HeapArray<uint32_t>();
    m_alpha = HeapArray<uint8_t>();
    m_shape = HeapArray<uint8_t>();
}

} // namespace Graphics
