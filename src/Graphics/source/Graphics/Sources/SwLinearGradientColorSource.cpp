// SPDX-License-Identifier: MIT
// The parameter is evaluated in gradient space, t = (p - start) . (end - start) / |end - start|^2, where p is the
// inverse image of the device point. So under skew, lines of equal colour are mapped too. It is accumulated along a run.
#include "SwLinearGradientColorSource.h"

#include <algorithm>

#include "RunParts.h"

namespace Graphics {

SwLinearGradientColorSource::SwLinearGradientColorSource(const GradientBrush& brush, const LinearGradient& gradient,
                                                         const Matrix& transform) noexcept
    : SwGradientColorSource(brush, gradient) {
    InverseMap map;
    const bool empty = gradient.start.x == gradient.end.x && gradient.start.y == gradient.end.y;
    if (empty || !map.Set(PaintToDevice(brush.transform, transform))) {
        MakeConstant();
        return;
    }
    m_shade.notANumber = m_shade.before;
    const double startX = gradient.start.x;
    const double startY = gradient.start.y;
    const double axisX = gradient.end.x - startX;
    const double axisY = gradient.end.y - startY;
    const double square = axisX * axisX + axisY * axisY;
    m_dtdx = static_cast<float>((map.a * axisX + map.b * axisY) / square);
    m_dtdy = static_cast<float>((map.c * axisX + map.d * axisY) / square);
    m_t0 = static_cast<float>(((map.e - startX) * axisX + (map.f - startY) * axisY) / square);
}

void SwLinearGradientColorSource::FillRuns(std::span<const CoverageRun> runs, int32_t y, uint32_t* out) {
    const float row = static_cast<float>(y) * m_dtdy;
    if (m_dtdx == 0.0F) { // the axis is upright: one colour for the row
        const float t = row + static_cast<float>(runs.front().x0) * m_dtdx + m_t0;
        uint32_t color;
        m_kernels.shade(m_shade, &t, 1, &color);
        std::fill_n(out, static_cast<int64_t>(runs.back().x1) - runs.front().x0, color);
        return;
    }
    alignas(64) float t[kMostPainted];
    ForRunParts(
        runs, [&](int32_t x) { return row + static_cast<float>(x) * m_dtdx + m_t0; },
        [&](float& next, size_t at, size_t n) { next = m_kernels.accumulate(next, m_dtdx, t + at, n); },
        [&](size_t n) {
            m_kernels.shade(m_shade, t, n, out);
            out += n;
        });
}

} // namespace Graphics
