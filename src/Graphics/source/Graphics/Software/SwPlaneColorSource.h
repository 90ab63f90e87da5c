// SPDX-License-Identifier: MIT
// The result of a transparency group as a colour source: reads the planes in place and applies the group's opacity.
#pragma once

#include "../Kernels/RowKernels.h"
#include "../Sources/SwColorSource.h"
#include "SwPipeLine.h"

namespace Graphics {

class SwPlaneColorSource final : public SwColorSource {
public:
    /// `opacity` is clamped to [0, 1].
    SwPlaneColorSource(const SwTargetPlanes& planes, float opacity) noexcept;

    void Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) override;
    [[nodiscard]] const uint32_t* DirectRow(int32_t x0, int32_t x1, int32_t y) const noexcept override;

private:
    [[nodiscard]] const uint32_t* Row(int32_t x, int32_t y) const noexcept;

    const SwTargetPlanes& m_planes;
    uint32_t m_factor;
};

} // namespace Graphics
