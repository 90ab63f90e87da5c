// SPDX-License-Identifier: MIT
// An open transparency group. It has three planes the size of the group's visible part, in one block of memory:
//
//     colour  the group composited over its backdrop, premultiplied
//     alpha   the group's alpha alone
//     shape   the group's shape
//
// (1) Planes are allocated at the first draw. They are initialised (backdrop, 0, 0) only inside the box that drawing
// has touched, and only that box is composited at the end. So a group with little content costs little.
//
// (2) What lies below a group does not change while the group is open, so its backdrop is read in place. It comes from
// the nearest enclosing group that has content and is not knockout; empty and knockout groups pass on the backdrop that
// they found. This group is determined on opening, so only groups with content form a chain, which is walked in a loop.
#pragma once

#include "../Coverage/BlockPool.h"
#include "SwSubTarget.h"

namespace Graphics {

class SwLayerSubTarget final : public SwSubTarget {
public:
    /// `pool` must outlive the group.
    void Open(BlockPool& pool, SwSubTarget& parent, const IntRect& bounds, bool isolated, bool knockout, float opacity);

    [[nodiscard]] SwTargetPlanes Planes(const IntRect& region) override;
    [[nodiscard]] SwSubTarget* Below() noexcept override;
    [[nodiscard]] SwLayerSubTarget* AsLayer() noexcept override { return this; }

    /// The box touched by drawing; empty if nothing was drawn.
    [[nodiscard]] const IntRect& Touched() const noexcept { return m_touched; }
    [[nodiscard]] float Opacity() const noexcept { return m_opacity; }

    /// Turns the colour plane into the group's result inside `region`, a part of the touched box. No draws into the
    /// group may follow.
    void MakeResult(const RowKernels& kernels, const IntRect& region);
    /// The colours and the shape, after MakeResult.
    [[nodiscard]] SwTargetPlanes Result() const noexcept { return m_planes; }

    /// Releases clips and planes, so that the object can be reused.
    void Close() noexcept;

private:
    /// `region` or a larger part of the bounds, so that few steps suffice until all of the bounds is touched.
    [[nodiscard]] IntRect Grown(const IntRect& region) const noexcept;
    [[nodiscard]] bool HasTouched(const IntRect& region) const noexcept;
    void Reach(const IntRect& region);
    void Touch(const IntRect& region);
    void Start(const IntRect& region) noexcept;
    void MakePlanes();

    SwTargetPlanes m_planes; // colour null: not allocated yet
    BlockPool* m_pool = nullptr;
    SwSubTarget* m_below = nullptr;      // null: transparent
    SwTargetPlanes m_belowPlanes;        // planes of m_below, valid from the first touch on
    SwLayerSubTarget* m_above = nullptr; // inside Reach: the group that needs pixels of this one
    IntRect m_wanted{};                  // inside Reach: the region that this group must touch
    float m_opacity = 1.0F;
    IntRect m_touched{};
    BlockPool::Block m_block;
};

} // namespace Graphics
