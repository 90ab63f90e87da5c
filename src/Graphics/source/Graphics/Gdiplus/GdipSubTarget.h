// SPDX-License-Identifier: MIT
// A destination of drawing: the page or an open group, with the clips of the states pushed in it.
#pragma once

#include <vector>

#include "GdipGraphics.h"

namespace Graphics {

/// The present clip of GDI+, as far as the back end needs it.
struct GdipClip {
    IntRect box{};                        ///< no pixel outside can change
    bool isCut = false;                   ///< by something other than the page's sides
    GdipGraphics::SavedState restore = 0; ///< the GDI+ state to restore when this clip ends
};

class GdipSubTarget {
public:
    /// `transparent`: the group has no effect on its content, so GDI+ may draw that as if there were no group.
    /// `drawingsBefore`: number of calls recorded when it opened.
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
    /// Returns the GDI+ state to restore. Requires a matching PushClip.
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
