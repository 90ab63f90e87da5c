// SPDX-License-Identifier: MIT
// An open transparency group. Three planes as large as the group's visible part, in one block of memory:
//
//     colour  the group composited over its backdrop, premultiplied
//     alpha   the group's alpha alone
//     shape   the group's shape
//
// Planes exist from the first draw on and are given values (the backdrop, 0, 0) only inside the box that drawing has
// reached, and only that box is combined at the end: a group with little in it costs little.
//
// What lies below does not change while the group is open, so the backdrop is read in place. It is that of the nearest
// group outwards that has something in it and lets its elements see that; groups without anything yet, and knockout
// groups, show what they found themselves. Where that is is known when the group opens, so no chain of groups is walked
// but the one of groups that have been drawn into, and that in a loop.
#pragma once

#include "../Coverage/BlockPool.h"
#include "SwSubTarget.h"

namespace Graphics {

class SwLayerSubTarget final : public SwSubTarget {
public:
    /// `pool` outlives the group.
    void Open(BlockPool& pool, SwSubTarget& parent, const IntRect& bounds, bool isolated, bool knockout, float opacity);

    [[nodiscard]] SwTargetPlanes Planes(const IntRect& region) override;
    [[nodiscard]] SwSubTarget* Below() noexcept override;
    [[nodiscard]] SwLayerSubTarget* AsLayer() noexcept override { return this; }

    /// The box that drawing has reached; empty when nothing was drawn.
    [[nodiscard]] const IntRect& Touched() const noexcept { return m_touched; }
    [[nodiscard]] float Opacity() const noexcept { return m_opacity; }

    /// Rewrites the colour plane into the group's result inside `region`, a part of the touched box. Nothing may be
    /// drawn into the group afterwards.
    void MakeResult(const RowKernels& kernels, const IntRect& region);
    /// After MakeResult: the colours and the shape.
    [[nodiscard]] SwTargetPlanes Result() const noexcept { return m_planes; }

    /// Gives clips and planes back, so that the object can wait for its next use.
    void Close() noexcept;

private:
    /// `region` or a larger part of the bounds, so large that it does not take many steps to touch all of them.
    [[nodiscard]] IntRect Grown(const IntRect& region) const noexcept;
    [[nodiscard]] bool HasTouched(const IntRect& region) const noexcept;
    void Reach(const IntRect& region);
    void Touch(const IntRect& region);
    void Start(const IntRect& region) noexcept;
    void MakePlanes();

    SwTargetPlanes m_planes; // colour null: not made yet
    BlockPool* m_pool = nullptr;
    SwSubTarget* m_below = nullptr;      // null: transparent
    SwTargetPlanes m_belowPlanes;        // of m_below, from the first touch on
    SwLayerSubTarget* m_above = nullptr; // inside Reach: the group that wants pixels of this one
    IntRect m_wanted{};                  // and what this one has to touch
    float m_opacity = 1.0F;
    IntRect m_touched{};
    BlockPool::Block m_block;
};

} // namespace Graphics
