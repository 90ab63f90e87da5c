// SPDX-License-Identifier: MIT
// The common part of linear and radial gradient sources, and the choice among all gradient sources. Positions are
// integer device coordinates, without adding half a pixel; maps go from device to gradient space.
#pragma once

#include "../Kernels/PaintKernels.h"
#include "../Paint/Brush.h"
#include "../Paint/Gradient.h"
#include "SwColorSource.h"

namespace Graphics {

class SwGradientColorSource : public SwColorSource {
public:
    /// Raises "Not implemented" for an unknown kind of gradient. The brush must outlive the source.
    [[nodiscard]] static SwColorSource* Factory(Arena& arena, const GradientBrush& brush, const Rect& bounds,
                                                const Matrix& transform);

    void Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) final;
    [[nodiscard]] bool JoinsRuns() const noexcept final { return !m_constant; }
    [[nodiscard]] bool IsSolid(uint32_t& color) const noexcept final {
        color = m_background;
        return m_constant;
    }
    [[nodiscard]] bool IsOpaque() const noexcept final { return m_opaque; }

protected:
    /// Sets the colours before, after and outside; `m_constant` starts as false.
    SwGradientColorSource(const GradientBrush& brush, const TwoPointGradientBase& gradient) noexcept;
    SwGradientColorSource(const SwGradientColorSource&) = delete;
    SwGradientColorSource& operator=(const SwGradientColorSource&) = delete;

    /// Makes every pixel the background, because the gradient has no extent or its map no inverse.
    void MakeConstant() noexcept;

    const PaintKernels& m_kernels;
    GradientSampler m_sampler;
    GradientShade m_shade;
    uint32_t m_background;
    bool m_constant = false;
    bool m_opaque;
};

} // namespace Graphics
