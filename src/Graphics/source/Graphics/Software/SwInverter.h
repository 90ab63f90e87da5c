// SPDX-License-Identifier: MIT
// Inversion of pixels in memory.
#pragma once

#include "../Coverage/PixelInverter.h"
#include "SwPipeLine.h"

namespace Graphics {

/// A PixelInverter on pixels in memory.
class SwInverter final : public PixelInverter {
public:
    SwInverter(const SwTargetPlanes& target, const IntRect& bounds, const ClipRegion* clip) noexcept
        : PixelInverter(bounds, clip), m_target(target) {}

private:
    void Invert(int32_t y, int32_t x0, int32_t x1) override;

    const SwTargetPlanes& m_target;
};

} // namespace Graphics
