// SPDX-License-Identifier: MIT
// Colours along an axis: t(x, y) = x * dtdx + y * dtdy + t0, 0 at the axis' start and 1 at its end.
#pragma once

#include "SwGradientColorSource.h"

namespace Graphics {

class SwLinearGradientColorSource final : public SwGradientColorSource {
public:
    SwLinearGradientColorSource(const GradientBrush& brush, const LinearGradient& gradient,
                                const Matrix& transform) noexcept;

    void FillRuns(std::span<const CoverageRun> runs, int32_t y, uint32_t* out) override;

private:
    float m_dtdx = 0.0F;
    float m_dtdy = 0.0F;
    float m_t0 = 0.0F;
};

} // namespace Graphics
