// SPDX-License-Identifier: MIT
// Colours between circles, as an image of the pixels to be painted.
#pragma once

#include "GdipGradientColorSource.h"

namespace Graphics {

class GdipRadialGradientColorSource final : public GdipGradientColorSource {
public:
    /// `brush` must have a RadialGradient.
    GdipRadialGradientColorSource(const GradientBrush& brush, const GdipPlace& place);
};

} // namespace Graphics
