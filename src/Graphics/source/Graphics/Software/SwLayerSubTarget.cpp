// SPDX-License-Identifier: MIT
#include "SwLayerSubTarget.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Graphics {
namespace {

/// Row y of a plane, at column x.
[[nodiscard]] uint32_t* ColorAt(const SwTargetPlanes& p, int32_t x, int32_t y) noexcept {
    return reinterpret_cast<uint32_t*>(p.color + (y - p.origin.y) * p.colorStride) + (x - p.origin.x);
}

[[nodiscard]] ptrdiff_t PlaneOffset(const SwTargetPlanes& p, int32_t x, int32_t y) noexcept {
    return (y - p.origin.y) * p.planeStride + (x - p.origin.x);
}

[[nodiscard]] IntRect Union(const IntRect& a, const IntRect& b) noexcept {
    return IsEmpty(a) ? b
                      : IntRect{std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                                std::max(a.bottom, b.bottom)};
}

} // namespace

void SwLayerSubTarget::Open(BlockPool& pool, SwSubTarget& parent, const IntRect& bounds, bool isolated, bool knockout,
                            float opacity) {
    m_bounds = bounds;
    m_clips.Clear();
    m_planes = {};
    m_planes.origin = {bounds.left, bounds.top};
    m_planes.knockout = knockout;
    m_pool = &pool;
    m_below = isolated ? nullptr : parent.Below();
    m_belowPlanes = {};
    m_opacity = opacity;
    m_touched = {0, 0, 0, 0};
}

SwSubTarget* SwLayerSubTarget::Below() noexcept { return m_planes.knockout || IsEmpty(m_touched) ? m_below : this; }

void SwLayerSubTarget::MakePlanes() {
    const auto width = static_cast<size_t>(m_bounds.right - m_bounds.left);
    const size_t count = width * static_cast<size_t>(m_bounds.bottom - m_bounds.top);
    m_block = m_pool->Take(count * (sizeof(uint32_t) + 2));
    m_planes.color = m_block.data();
    m_planes.colorStride = static_cast<ptrdiff_t>(width * sizeof(uint32_t));
    m_planes.alpha = m_block.data() + count * sizeof(uint32_t);
    m_planes.shape = m_planes.alpha + count;
    m_planes.planeStride = static_cast<ptrdiff_t>(width);
}

bool SwLayerSubTarget::HasTouched(const IntRect& region) const noexcept {
    return IsEmpty(region) || Intersect(region, m_touched) == region;
}

IntRect SwLayerSubTarget::Grown(const IntRect& region) const noexcept {
    // A side that moves moves by at least an eighth of the width or height, so a hundred steps reach any size.
    const IntRect t = m_touched;
    IntRect grown = Union(t, region);
    if (!IsEmpty(t)) {
        const int32_t x = 16 + (t.right - t.left) / 8;
        const int32_t y = 16 + (t.bottom - t.top) / 8;
        grown.left = grown.left < t.left ? std::min(grown.left, t.left - x) : t.left;
        grown.top = grown.top < t.top ? std::min(grown.top, t.top - y) : t.top;
        grown.right = grown.right > t.right ? std::max(grown.right, t.right + x) : t.right;
        grown.bottom = grown.bottom > t.bottom ? std::max(grown.bottom, t.bottom + y) : t.bottom;
    }
    return Intersect(grown, m_bounds);
}

void SwLayerSubTarget::Reach(const IntRect& region) {
    if (HasTouched(region)) {
        return;
    }
    // Walks down the groups that lack pixels needed by the group above, then up again, initialising them.
    m_above = nullptr;
    m_wanted = Union(m_touched, region);
    SwLayerSubTarget* lowest = this;
    while (lowest->m_below != nullptr) {
        SwLayerSubTarget* next = lowest->m_below->AsLayer();
        if (next == nullptr || next->HasTouched(lowest->m_wanted)) {
            break;
        }
        next->m_above = lowest;
        next->m_wanted = next->Grown(lowest->m_wanted);
        lowest = next;
    }
    for (; lowest != nullptr; lowest = lowest->m_above) {
        lowest->Touch(lowest->m_wanted);
    }
}

void SwLayerSubTarget::Touch(const IntRect& region) {
    if (m_planes.color == nullptr) {
        MakePlanes();
    }
    if (m_below != nullptr) {
        // The bounds of a group lie inside those of every enclosing group.
        SwLayerSubTarget* layer = m_below->AsLayer();
        m_belowPlanes =
            layer != nullptr ? layer->m_planes : static_cast<SwBasicSubTarget*>(m_below)->ReadPlanes(region);
        m_planes.backdrop = reinterpret_cast<const uint8_t*>(ColorAt(m_belowPlanes, m_bounds.left, m_bounds.top));
        m_planes.backdropStride = m_belowPlanes.colorStride;
    }
    const IntRect t = m_touched;
    if (IsEmpty(t)) {
        Start(region);
    } else {
        Start({region.left, region.top, region.right, t.top});
        Start({region.left, t.bottom, region.right, region.bottom});
        Start({region.left, t.top, t.left, t.bottom});
        Start({t.right, t.top, region.right, t.bottom});
    }
    m_touched = region;
}

void SwLayerSubTarget::Start(const IntRect& region) noexcept {
    if (IsEmpty(region)) {
        return;
    }
    const auto count = static_cast<size_t>(region.right - region.left);
    for (int32_t y = region.top; y < region.bottom; ++y) {
        uint32_t* color = ColorAt(m_planes, region.left, y);
        if (m_below != nullptr) {
            std::memcpy(color, ColorAt(m_belowPlanes, region.left, y), count * sizeof(uint32_t));
        } else {
            std::memset(color, 0, count * sizeof(uint32_t));
        }
        const ptrdiff_t offset = PlaneOffset(m_planes, region.left, y);
        std::memset(m_planes.alpha + offset, 0, count);
        std::memset(m_planes.shape + offset, 0, count);
    }
}

SwTargetPlanes SwLayerSubTarget::Planes(const IntRect& region) {
    Reach(region);
    return m_planes;
}

void SwLayerSubTarget::MakeResult(const RowKernels& kernels, const IntRect& region) {
    for (int32_t y = region.top; y < region.bottom; ++y) {
        const ptrdiff_t offset = PlaneOffset(m_planes, region.left, y);
        const uint32_t* backdrop = nullptr;
        if (m_planes.backdrop != nullptr) {
            backdrop = reinterpret_cast<const uint32_t*>(m_planes.backdrop +
                                                         (y - m_planes.origin.y) * m_planes.backdropStride) +
                       (region.left - m_planes.origin.x);
        }
        kernels.groupResult(ColorAt(m_planes, region.left, y), m_planes.alpha + offset, m_planes.shape + offset,
                            backdrop, static_cast<size_t>(region.right - region.left));
    }
}

void SwLayerSubTarget::Close() noexcept {
    m_clips.Clear();
    if (m_planes.color != nullptr) {
        m_pool->Give(std::move(m_block));
    }
    m_planes = {};
    m_below = nullptr;
}

} // namespace Graphics
