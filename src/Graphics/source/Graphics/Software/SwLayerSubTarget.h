// SPDX-License-Identifier: MIT
// An open transparency group. Three planes as large as the group's visible part:
//
//     colour  the group composited over its backdrop, premultiplied
//     alpha   the group's alpha alone
//     shape   the group's shape
//
// Planes are given values (the backdrop, 0, 0) only inside the box that drawing has reached, and only that box is
// combined at the end: a group with little in it costs little. What lies below does not change while the group is open,
// so the backdrop is read in place.
#pragma once

#include <algorithm>

#include "SwSubTarget.h"

namespace Graphics {

class SwLayerSubTarget final : public SwSubTarget {
public:
    /// `bounds` is not empty. The first state takes the parent's matrix and stroke adjustment.
    void Open(SwSubTarget& parent, const IntRect& bounds, bool isolated, bool knockout, float opacity);

    [[nodiscard]] SwTargetPlanes Planes(const IntRect& region) override;
    [[nodiscard]] SwTargetPlanes Backdrop(const IntRect& region) override;

    /// The box that drawing has reached; empty when nothing was drawn.
    [[nodiscard]] const IntRect& Touched() const noexcept { return m_touched; }
    [[nodiscard]] float Opacity() const noexcept { return m_opacity; }

    /// Rewrites the colour plane into the group's result, inside the touched box.
    void MakeResult(const SwKernels& kernels);
    /// After MakeResult: the colours and the shape.
    [[nodiscard]] SwTargetPlanes Result() const noexcept { return m_planes; }

    /// Drops the states so that the object can wait for its next use; planes stay, the page's next group wants them.
    void Close() noexcept;
    /// Drops large planes of a closed group: painting has ended.
    void Trim() noexcept;
    void DropPlanes() noexcept;
    /// Of the planes, in pixels.
    [[nodiscard]] size_t Capacity() const noexcept {
        return std::min({m_color.capacity(), m_alpha.capacity(), m_shape.capacity()});
    }

private:
    void Reach(const IntRect& region);
    void Start(const IntRect& region);

    SwTargetPlanes m_planes;
    SwSubTarget* m_parent = nullptr;
    bool m_isolated = true;
    float m_opacity = 1.0F;
    IntRect m_touched{};
    HeapArray<uint32_t> m_color;
    HeapArray<uint8_t> m_alpha;
    HeapArray<uint8_t> m_shape;
};

} // namespace Graphics
