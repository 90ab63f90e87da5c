// SPDX-License-Identifier: MIT
// Colours between two circles: t belongs to the interpolated circle that passes through the point.
#pragma once

#include "AccumulatedTerms.h"
#include "SwGradientColorSource.h"

namespace Graphics {

/// All lengths are in units of dr = endRadius - startRadius, relative to the start centre. The circle of parameter t
/// has the centre (-ex t, -ey t) and the radius g + t. It passes through the point (u, v) if
///     (u + ex t)^2 + (v + ey t)^2 = (g + t)^2,  that is  A t^2 + B t + C = 0
///     A = ex^2 + ey^2 - 1,  B = 2 (u ex + v ey - g),  C = u^2 + v^2 - g^2.
class RadialGradientFiller {
public:
    /// False if the circles have equal radii or the map has no inverse: then only the background is drawn.
    [[nodiscard]] bool Set(const RadialGradient& gradient, const Matrix& gradientToDevice) noexcept;

    /// Whether every point has a parameter. With a start radius of 0 and the start inside of the end circle A < 0 and
    /// C >= 0, so that B^2 - 4 A C >= 0 for every rounding of its terms. (Otherwise it may be rounded below 0 at the apex of the
    /// cone too, where it is 0.)
    [[nodiscard]] bool CoversPlane() const noexcept { return m_g == 0.0F && m_equation.qa4 < 0.0F; }

    void Fill(const PaintKernels& kernels, GradientShade& shade, std::span<const CoverageRun> runs, int32_t y,
              uint32_t* out) noexcept;

private:
    /// What is accumulated along a run.
    struct Terms {
        float u, v, b;
    };

    float m_a = 0, m_b = 0, m_c = 0, m_d = 0, m_e = 0, m_f = 0; ///< u = a x + c y + e, v = b x + d y + f
    float m_ex = 0, m_ey = 0, m_g = 0;
    float m_stepB = 0; ///< increment of B from pixel to pixel, 2 (ex a + ey b)
    RadialEquation m_equation{};
    AccumulatedTerms m_u, m_v, m_B;
};

class SwRadialGradientColorSource final : public SwGradientColorSource {
public:
    SwRadialGradientColorSource(const GradientBrush& brush, const RadialGradient& gradient,
                                const Matrix& transform) noexcept;

    void FillRuns(std::span<const CoverageRun> runs, int32_t y, uint32_t* out) override;

private:
    RadialGradientFiller m_filler;
};

} // namespace Graphics
