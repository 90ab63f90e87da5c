// SPDX-License-Identifier: MIT
// The clips of the graphics states of one layer; the current clip is the last.
#pragma once

#include <vector>

#include "ClipRegion.h"

namespace Graphics {

class ClipStack {
public:
    [[nodiscard]] const ClipRef& Current() const noexcept { return m_current; }
    void Set(ClipRef clip) noexcept { m_current = std::move(clip); }
    /// The part of `region` inside the current clip's box.
    [[nodiscard]] IntRect Within(const IntRect& region) const noexcept {
        return m_current ? Intersect(region, m_current->Box()) : region;
    }

    void Push() { m_pushed.push_back(m_current); }
    /// Requires a matching Push.
    void Pop() noexcept {
        m_current = std::move(m_pushed.back());
        m_pushed.pop_back();
    }
    /// Resets to the state of a new layer: no clip.
    void Clear() noexcept {
        m_pushed.clear();
        m_current = ClipRef();
    }

private:
    ClipRef m_current;
    std::vector<ClipRef> m_pushed;
};

} // namespace Graphics
