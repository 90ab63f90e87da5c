// SPDX-License-Identifier: MIT
// Where drawing goes: the page or an open group, each with a stack of states of its own.
#pragma once

#include <memory>
#include <vector>

#include "../Exception.h"
#include "../Paint/Brush.h"
#include "GdipGraphics.h"

namespace Graphics {

struct GdipMask {
    std::shared_ptr<const Brush> brush; ///< null: no mask
    uint32_t type = 0;
    Matrix transform = kIdentity; ///< under which it was set
};

struct GdipState {
    Matrix transform = kIdentity;
    uint32_t blendMode = 0;
    bool strokeAdjustment = true;
    GdipMask shapeMask;
    GdipMask opacityMask;
    IntRect clip{};                       ///< no pixel outside is reached
    bool clipped = false;                 ///< by something else than the page's sides
    GdipGraphics::SavedState restore = 0; ///< what GDI+ goes back to when this state ends
    size_t drawingsBefore = 0;            ///< of a group's first state: calls noted when it opened
};

class GdipSubTarget {
public:
    /// `transparent`: the group changes nothing of what is drawn in it, so GDI+ may draw it as if there were no group.
    GdipSubTarget(const GdipState& first, bool transparent) : m_states{first}, m_transparent(transparent) {}

    [[nodiscard]] GdipState& State() noexcept { return m_states.back(); }
    [[nodiscard]] const GdipState& State() const noexcept { return m_states.back(); }
    [[nodiscard]] const GdipState& First() const noexcept { return m_states.front(); }
    [[nodiscard]] bool Transparent() const noexcept { return m_transparent; }

    void PushState(GdipGraphics::SavedState restore) {
        GdipState state = m_states.back();
        state.restore = restore;
        m_states.push_back(state);
    }
    /// What GDI+ has to go back to. Raises "State stack is empty".
    GdipGraphics::SavedState PopState() {
        if (m_states.size() < 2) {
            GX_RAISE("Graphics::GdipSubTarget::PopState", "State stack is empty");
        }
        const GdipGraphics::SavedState restore = m_states.back().restore;
        m_states.pop_back();
        return restore;
    }

private:
    std::vector<GdipState> m_states;
    bool m_transparent;
};

} // namespace Graphics
