// SPDX-License-Identifier: MIT
// Where drawing goes: the page or an open group, each with the clips of the states that were pushed in it.
#pragma once

#include <vector>

#include "GdipGraphics.h"

namespace Graphics {

/// What GDI+ clips to, as far as the back end has to know.
struct GdipClip {
    IntRect box{};                        ///< no pixel outside is reached
    bool isCut = false;                   ///< by something else than the page's sides
    GdipGraphics::SavedState restore = 0; ///< what GDI+ goes back to when the state of this clip ends
};

class GdipSubTarget {
public:
    /// `transparent`: the group changes nothing of what is drawn in it, so GDI+ may draw it as if there were no group.
    /// `drawingsBefore`: calls noted when it opened.
    GdipSubTarget(const GdipClip& first, bool transparent, size_t drawingsBefore)
        : m_clips{first}, m_transparent(transparent), m_drawingsBefore(drawingsBefore) {}

    [[nodiscard]] GdipClip& Clip() noexcept { return m_clips.back(); }
    [[nodiscard]] const GdipClip& First() const noexcept { return m_clips.front(); }
    [[nodiscard]] bool Transparent() const noexcept { return m_transparent; }
    [[nodiscard]] size_t DrawingsBefore() const noexcept { return m_drawingsBefore; }

    void PushClip(GdipGraphics::SavedState restore) {
        GdipClip clip = m_clips.back();
        clip.restore = restore;
        m_clips.push_back(clip);
    }
    /// What GDI+ has to go back to. There is a PushClip for it.
    GdipGraphics::SavedState PopClip() noexcept {
        const GdipGraphics::SavedState restore = m_clips.back().restore;
        m_clips.pop_back();
        return restore;
    }

private:
    std::vector<GdipClip> m_clips;
    bool m_transparent;
    size_t m_drawingsBefore;
};

} // namespace Graphics
