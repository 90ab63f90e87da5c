// SPDX-License-Identifier: MIT
// The common part of linear and radial gradient sources, and the choice among all gradient sources. Positions are
// integer device coordinates, without adding half a pixel; maps go from device to gradient space.
#pragma once

#include <algorithm>

#include "../Kernels/PaintKernels.h"
#include "../Paint/Brush.h"
#include "../Paint/Gradient.h"
#include "SwColorSource.h"

namespace Graphics {

/// Cuts adjacent runs into parts, so that as many pixels as a chunk holds are shaded together: for each run start(x0) gives
/// what is accumulated, step(it, at, n) writes n more terms at `at` of the chunk, and shade(n) takes the chunk.
template <class Start, class Step, class Shade>
void ForRunParts(std::span<const CoverageRun> runs, Start&& start, Step&& step, Shade&& shade) {
    size_t known = 0;
    for (const CoverageRun& run : runs) {
        auto next = start(run.x0);
        for (auto left = static_cast<size_t>(static_cast<int64_t>(run.x1) - run.x0); left != 0;) {
            const size_t n = std::min(kPaintChunk - known, left);
            step(next, known, n);
            known += n;
            left -= n;
            if (known == kPaintChunk) {
                shade(known);
                known = 0;
            }
        }
    }
    if (known != 0) {
        shade(known);
    }
}

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
