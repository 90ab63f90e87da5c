// SPDX-License-Identifier: MIT
// One colour.
#pragma once

#include "../Paint/Brush.h"
#include "GdipColorSource.h"

namespace Graphics {

class GdipSolidColorSource final : public GdipColorSource {
public:
    explicit GdipSolidColorSource(const SolidBrush& brush) { CreateSolid(brush.argb); }
};

} // namespace Graphics
