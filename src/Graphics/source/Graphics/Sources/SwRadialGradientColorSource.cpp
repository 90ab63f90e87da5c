// SPDX-License-Identifier: MIT
// u, v and B are accumulated along a row; roots and quotients are computed a vector at a time.
#include "SwRadialGradientColorSource.h"

#include "RunParts.h"

namespace Graphics {

bool RadialGradientFiller::Set(const RadialGradient& gradient, const Matrix& gradientToDevice) noexcept {
    const float dr = gradient.endRadius - gradient.startRadius;
    InverseMap map;
    if (dr == 0.0F || !map.Set(gradientToDevice)) {
        return false;
    }
    m_ex = (gradient.start.x - gradient.end.x) / dr;
    m_ey = (gradient.start.y - gradient.end.y) / dr;
    m_g = gradient.startRadius / dr;
    const float A = m_ex * m_ex + m_ey * m_ey - 1.0F;
    m_equation = {m_g * m_g, A * 4.0F, 1.0F / (A + A)};
    m_a = static_cast<float>(map.a / dr);
    m_b = static_cast<float>(map.b / dr);
    m_c = static_cast<float>(map.c / dr);
    m_d = static_cast<float>(map.d / dr);
    m_e = static_cast<float>((map.e - gradient.start.x) / dr);
    m_f = static_cast<float>((map.f - gradient.start.y) / dr);
    m_stepB = 2.0F * (m_ex * m_a + m_ey * m_b);
    return true;
}

void RadialGradientFiller::Fill(const PaintKernels& kernels, GradientShade& shade, std::span<const CoverageRun> runs,
                                int32_t y, uint32_t* out) noexcept {
    const auto row = static_cast<float>(y);
    alignas(64) float t[kMostPainted];
    m_u.BeginRow();
    m_v.BeginRow();
    m_B.BeginRow();
    ForRunParts(
        runs,
        [&](int32_t x0) {
            const auto x = static_cast<float>(x0);
            Terms next{m_a * x + m_c * row + m_e, m_b * x + m_d * row + m_f, 0.0F};
            next.b = 2.0F * (next.u * m_ex + next.v * m_ey - m_g);
            return next;
        },
        [&](Terms& next, size_t at, size_t n) {
            next.u = m_u.Put(kernels, next.u, m_a, at, n);
            next.v = m_v.Put(kernels, next.v, m_b, at, n);
            next.b = m_B.Put(kernels, next.b, m_stepB, at, n);
        },
        [&](size_t n) {
            kernels.radial(m_equation, m_u.Terms(), m_v.Terms(), m_B.Terms(), n, t);
            kernels.shade(shade, t, n, out);
            m_u.NextChunk();
            m_v.NextChunk();
            m_B.NextChunk();
            out += n;
        });
}

SwRadialGradientColorSource::SwRadialGradientColorSource(const GradientBrush& brush, const RadialGradient& gradient,
                                                         const Matrix& transform) noexcept
    : SwGradientColorSource(brush, gradient) {
    if (!m_filler.Set(gradient, PaintToDevice(brush.transform, transform))) {
        MakeConstant();
        return;
    }
    // The background shows where no circle passes.
    m_opaque = m_opaque && (m_background >> 24 == 255 || m_filler.CoversPlane());
}

void SwRadialGradientColorSource::FillRuns(std::span<const CoverageRun> runs, int32_t y, uint32_t* out) {
    m_filler.Fill(m_kernels, m_shade, runs, y, out);
}

} // namespace Graphics
