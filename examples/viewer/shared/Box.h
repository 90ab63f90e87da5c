// SPDX-License-Identifier: MIT
// Upright boxes of whole pixels.
#pragma once

#include <algorithm>

namespace Viewer {

struct Box {
    int left = 0, top = 0, width = 0, height = 0;

    int Right() const noexcept { return left + width; }
    int Bottom() const noexcept { return top + height; }
    bool IsEmpty() const noexcept { return width <= 0 || height <= 0; }
    bool Contains(int x, int y) const noexcept { return x >= left && x < Right() && y >= top && y < Bottom(); }
    Box MovedBy(int dx, int dy) const noexcept { return {left + dx, top + dy, width, height}; }
    bool operator==(const Box&) const = default;
};

// What both cover; of no width or height when that is nothing.
inline Box Common(const Box& a, const Box& b) noexcept {
    const int left = std::max(a.left, b.left), top = std::max(a.top, b.top);
    return {left, top, std::max(0, std::min(a.Right(), b.Right()) - left),
            std::max(0, std::min(a.Bottom(), b.Bottom()) - top)};
}

} // namespace Viewer
