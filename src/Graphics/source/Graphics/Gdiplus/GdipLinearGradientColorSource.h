// SPDX-License-Identifier: MIT
// Colours that change in one direction: a strip of one row.
#pragma once

#include "GdipGradientColorSource.h"

namespace Graphics {

class GdipLinearGradientColorSource final : public GdipGradientColorSource {
public:
    /// `brush` has a LinearGradient.
    GdipLinearGradientColorSource(const GradientBrush& brush, const GdipPlace& place);
};

} // namespace Graphics
