// SPDX-License-Identifier: MIT
// Colours between circles: an image of the pixels to be painted.
#pragma once

#include "GdipGradientColorSource.h"

namespace Graphics {

class GdipRadialGradientColorSource final : public GdipGradientColorSource {
public:
    /// `brush` has a RadialGradient.
    GdipRadialGradientColorSource(const GradientBrush& brush, const GdipPlace& place);
};

} // namespace Graphics
