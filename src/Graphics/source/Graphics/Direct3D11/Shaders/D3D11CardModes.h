// SPDX-License-Identifier: MIT
// Which blend modes the shaders compute as the software does. The differences below are in levels of 255, on an opaque
// backdrop, over all colours, alphas and coverages:
//
//     most modes             up to 4, and 1 pixel of 45 is more than 2 away: the software truncates up to four products
//                            of bytes, one after the other
//     ColorBurn, ColorDodge  up to 255: a truncated colour is divided by a small one, and by definition burning black
//                            with black or dodging white with white gives the opposite extreme
//     HardLight              up to 5, 1 pixel of 9 more than 2: a truncated colour counts twice
//     Hue, Saturation        up to 224, most pixels: the software's smallest channel keeps its value
//     Luminosity             up to 12, 1 pixel of 9 more than 2: truncated colours are moved into range by a division
#pragma once

#include "../../Types.h"

namespace Graphics {

/// False for the modes that must be drawn in software. Modes above 15 blend as Normal.
[[nodiscard]] constexpr bool CardBlendsAsSoftware(uint32_t blendMode) noexcept {
    switch (blendMode) {
    case GXBlendModeColorBurn:
    case GXBlendModeColorDodge:
    case GXBlendModeHardLight:
    case GXBlendModeHue:
    case GXBlendModeSaturation:
    case GXBlendModeLuminosity:
        return false;
    default:
        return true;
    }
}

} // namespace Graphics
