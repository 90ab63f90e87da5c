// SPDX-License-Identifier: MIT
// The colours of indexed bitmaps: an immutable list that bitmaps share.
#pragma once

#include <vector>

#include "../Types.h"

namespace Graphics {

class Palette {
public:
    /// Copies `count` straight colours, alpha in the top byte, then red, green, blue.
    Palette(const uint32_t* colors, size_t count);

    [[nodiscard]] const uint32_t* Colors() const noexcept { return m_colors.data(); }
    [[nodiscard]] size_t Count() const noexcept { return m_colors.size(); }

private:
    const std::vector<uint32_t> m_colors;
};

} // namespace Graphics
