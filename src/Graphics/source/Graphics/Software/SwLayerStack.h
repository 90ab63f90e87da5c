// SPDX-License-Identifier: MIT
// The open transparency groups of a target, each inside the one before it, and what the next ones are made from.
#pragma once

#include <memory>
#include <vector>

#include "SwLayerSubTarget.h"

namespace Graphics {

class SwLayerStack {
public:
    [[nodiscard]] bool IsEmpty() const noexcept { return m_open.empty(); }
    [[nodiscard]] SwLayerSubTarget& Top() noexcept { return *m_open.back(); }
    /// The group around the innermost one; null when there is none.
    [[nodiscard]] SwLayerSubTarget* BelowTop() noexcept {
        return m_open.size() < 2 ? nullptr : m_open[m_open.size() - 2].get();
    }

    /// Opens a group inside `parent`, the innermost one or the surface. What fails leaves everything as it was.
    void Open(SwSubTarget& parent, const IntRect& bounds, bool isolated, bool knockout, float opacity);
    /// Ends the innermost group.
    void Drop() noexcept;
    /// Painting has ended, and no group is open.
    void Trim() noexcept;

private:
    static constexpr size_t kSpare = 16;

    static constexpr size_t kKeepBytes = size_t{1} << 20;

    BlockPool m_planes{kKeepBytes}; // before the groups that hold its blocks
    std::vector<std::unique_ptr<SwLayerSubTarget>> m_open;
    std::vector<std::unique_ptr<SwLayerSubTarget>> m_spare; // closed ones, without planes; room for kSpare
};

} // namespace Graphics
