// SPDX-License-Identifier: MIT
// A destination of drawing: the painted surface, or the planes of an open transparency group. Each has the clips of the
// states pushed while it was the innermost.
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

    /// The planes, ready for drawing inside `region`, which lies in the bounds.
    [[nodiscard]] virtual SwTargetPlanes Planes(const IntRect& region) = 0;
    /// The source of the initial backdrop of a group opened here, constant while the group is open; null: transparent.
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

    [[nodiscard]] SwTargetPlanes Planes(const IntRect& region) override { return Ready(region); }
    /// The same without a copy, valid until the next call.
    [[nodiscard]] const SwTargetPlanes& Ready(const IntRect& region) noexcept {
        m_planes.makesOpaque = m_isOpaque && Intersect(region, m_opaqueRegion) != region;
        return m_planes;
    }
    [[nodiscard]] SwSubTarget* Below() noexcept override { return this; }
    /// The planes for a group, which reads every pixel of `region` including its alpha.
    [[nodiscard]] SwTargetPlanes ReadPlanes(const IntRect& region);
    /// Records that every fourth byte in `region` is now 255.
    void NoteOpaque(const IntRect& region) noexcept {
        if (m_isOpaque) {
            GrowOpaque(region);
        }
    }

private:
    void GrowOpaque(const IntRect& region) noexcept;

    SwTargetPlanes m_planes;
    bool m_isOpaque = false;  // the format has no alpha: fourth bytes count as 255, and painted pixels have 255
    IntRect m_opaqueRegion{}; // pixels whose fourth bytes are known to be 255
};

} // namespace Graphics
