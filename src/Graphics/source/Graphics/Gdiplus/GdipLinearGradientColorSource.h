// SPDX-License-Identifier: MIT
// Colours that change in one direction, as a strip of one row.
#pragma once

#include "GdipGradientColorSource.h"

namespace Graphics {

class GdipLinearGradientColorSource final : public GdipGradientColorSource {
public:
    /// `brush` must have a LinearGradient.
    GdipLinearGradientColorSource(const GradientBrush& brush, const GdipPlace& place);
};

} // namespace Graphics
