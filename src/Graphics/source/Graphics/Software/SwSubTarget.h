// SPDX-License-Identifier: MIT
// Where drawing currently goes: the painted surface, or the planes of the innermost open transparency group. Each has a
// graphics-state stack of its own.
#pragma once

#include <vector>

#include "../Pixels/PixelView.h"
#include "../ProcessHeap.h"
#include "SwClip.h"
#include "SwPipeLine.h"
#include "SwSoftMask.h"

namespace Graphics {

struct SwState {
    Matrix transform = kIdentity;
    uint32_t blendMode = 0;
    bool strokeAdjustment = true;
    SwSoftMask shapeMask;
    SwSoftMask opacityMask;
    SwClipRef clip;
};

class SwSubTarget {
public:
    virtual ~SwSubTarget() = default;

    [[nodiscard]] const IntRect& Bounds() const noexcept { return m_bounds; }
    [[nodiscard]] SwState& State() noexcept { return m_states.back(); }
    [[nodiscard]] const SwState& State() const noexcept { return m_states.back(); }
    void PushState();
    /// Raises "State stack is empty".
    void PopState();

    /// The planes, ready to be drawn into inside `region` (which lies in the bounds).
    [[nodiscard]] virtual SwTargetPlanes Planes(const IntRect& region) = 0;
    /// What a group opened here finds below it, ready to be read inside `region`; colour null when transparent.
    [[nodiscard]] virtual SwTargetPlanes Backdrop(const IntRect& region) = 0;

protected:
    void Reset(const IntRect& bounds, const SwState& state);

    IntRect m_bounds{};
    std::vector<SwState> m_states;
};

class SwBasicSubTarget final : public SwSubTarget {
public:
    void Open(const PixelView& pixels, const SwState& state);
    void Close() noexcept { m_states.clear(); }

    [[nodiscard]] SwTargetPlanes Planes(const IntRect& region) override;
    [[nodiscard]] SwTargetPlanes Backdrop(const IntRect& region) override { return Planes(region); }

private:
    SwTargetPlanes m_planes;
};

} // namespace Graphics
