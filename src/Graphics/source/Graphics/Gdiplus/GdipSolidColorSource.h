// SPDX-License-Identifier: MIT
// One colour.
#pragma once

#include "../Paint/Brush.h"
#include "GdipColorSource.h"

namespace Graphics {

class GdipSolidColorSource final : public GdipColorSource {
public:
    explicit GdipSolidColorSource(const SolidBrush& brush) { CreateSolid(ColorOf(brush)); }

    /// Straight ARGB with the brush's opacity.
    [[nodiscard]] static uint32_t ColorOf(const SolidBrush& brush) noexcept {
        Color color = brush.color;
        color.alpha *= brush.opacity;
        return PackColor(color);
    }
};

} // namespace Graphics
