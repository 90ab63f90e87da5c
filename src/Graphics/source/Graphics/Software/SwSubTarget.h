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

class SwLayerSubTarget;

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
    /// Where the first pixels of a group opened here come from, which does not change as long as the group is open;
    /// null where they are transparent.
    [[nodiscard]] virtual SwSubTarget* Below() noexcept = 0;
    /// Null for the painted surface.
    [[nodiscard]] virtual SwLayerSubTarget* AsLayer() noexcept { return nullptr; }

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
    [[nodiscard]] SwSubTarget* Below() noexcept override { return this; }
    /// The planes for a group, which reads every pixel of `region` with its alpha.
    [[nodiscard]] SwTargetPlanes ReadPlanes(const IntRect& region);
    /// Every fourth byte in `region` is 255 now.
    void NoteOpaque(const IntRect& region) noexcept;

private:
    SwTargetPlanes m_planes;
    bool m_isOpaque = false;  // by its format: fourth bytes count as 255, and are where something was drawn
    IntRect m_opaqueRegion{}; // where they are known to be
};

} // namespace Graphics
