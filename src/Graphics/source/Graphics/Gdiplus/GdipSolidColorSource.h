// SPDX-License-Identifier: MIT
// The color source of one colour.
#pragma once

#include "GdipColorSource.h"

namespace Graphics {

class GdipSolidColorSource final : public GdipColorSource {
public:
    explicit GdipSolidColorSource(uint32_t argb) { CreateSolid(argb); }
};

} // namespace Graphics
