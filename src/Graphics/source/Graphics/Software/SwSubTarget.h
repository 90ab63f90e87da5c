// SPDX-License-Identifier: MIT
// Where drawing currently goes: the painted surface, or the planes of the innermost open transparency group. Each has
// the clips of the states that were pushed in it.
#pragma once

#include "../Coverage/ClipStack.h"
#include "../Pixels/PixelView.h"
#include "../ProcessHeap.h"
#include "SwPipeLine.h"

namespace Graphics {

class SwLayerSubTarget;

class SwSubTarget {
public:
    virtual ~SwSubTarget() = default;

    [[nodiscard]] const IntRect& Bounds() const noexcept { return m_bounds; }
    [[nodiscard]] ClipStack& Clips() noexcept { return m_clips; }

    /// The planes, ready to be drawn into inside `region` (which lies in the bounds).
    [[nodiscard]] virtual SwTargetPlanes Planes(const IntRect& region) = 0;
    /// Where the first pixels of a group opened here come from, which does not change as long as the group is open;
    /// null where they are transparent.
    [[nodiscard]] virtual SwSubTarget* Below() noexcept = 0;
    /// Null for the painted surface.
    [[nodiscard]] virtual SwLayerSubTarget* AsLayer() noexcept { return nullptr; }

protected:
    IntRect m_bounds{};
    ClipStack m_clips;
};

class SwBasicSubTarget final : public SwSubTarget {
public:
    void Open(const PixelView& pixels) noexcept;
    void Close() noexcept { m_clips.Clear(); }

    [[nodiscard]] SwTargetPlanes Planes(const IntRect& region) override;
    [[nodiscard]] SwSubTarget* Below() noexcept override { return this; }
    /// The planes for a group, which reads every pixel of `region` with its alpha.
    [[nodiscard]] SwTargetPlanes ReadPlanes(const IntRect& region);
    /// Every fourth byte in `region` is 255 now.
    void NoteOpaque(const IntRect& region) noexcept {
        if (m_isOpaque) {
            GrowOpaque(region);
        }
    }

private:
    void GrowOpaque(const IntRect& region) noexcept;

    SwTargetPlanes m_planes;
    bool m_isOpaque = false;  // by its format: fourth bytes count as 255, and are where something was drawn
    IntRect m_opaqueRegion{}; // where they are known to be
};

} // namespace Graphics
