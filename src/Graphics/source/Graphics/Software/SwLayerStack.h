// SPDX-License-Identifier: MIT
// The open transparency groups of a target, innermost last, and the memory that later groups reuse.
#pragma once

#include <memory>
#include <vector>

#include "SwLayerSubTarget.h"

namespace Graphics {

class SwLayerStack {
public:
    [[nodiscard]] bool IsEmpty() const noexcept { return m_open.empty(); }
    [[nodiscard]] SwLayerSubTarget& Top() noexcept { return *m_open.back(); }
    /// The group that contains the innermost one; null if there is none.
    [[nodiscard]] SwLayerSubTarget* BelowTop() noexcept {
        return m_open.size() < 2 ? nullptr : m_open[m_open.size() - 2].get();
    }

    /// Opens a group inside `parent`, which is the innermost group or the surface. A failure changes nothing.
    void Open(SwSubTarget& parent, const IntRect& bounds, bool isolated, bool knockout, float opacity);
    /// Ends the innermost group.
    void Drop() noexcept;
    /// Call after painting, when no group is open.
    void Trim() noexcept;

private:
    static constexpr size_t kSpare = 16;

    static constexpr size_t kKeepBytes = size_t{1} << 20;

    BlockPool m_planes{kKeepBytes}; // declared before the groups, which hold its blocks
    std::vector<std::unique_ptr<SwLayerSubTarget>> m_open;
    std::vector<std::unique_ptr<SwLayerSubTarget>> m_spare; // closed groups without planes; reserved for kSpare
};

} // namespace Graphics
