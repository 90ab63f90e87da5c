// SPDX-License-Identifier: MIT
// Colours outside [0, 1] are constant for the draw. The background colour is packed and scaled by the opacity only,
// without premultiplication; the stops' colours are premultiplied first.
#include "SwGradientColorSource.h"

#include "../Exception.h"
#include "../Pixels/Opacity.h"
#include "../Pixels/PixelMath.h"
#include "SwLinearGradientColorSource.h"
#include "SwMeshColorSource.h"
#include "SwRadialGradientColorSource.h"

namespace Graphics {

SwGradientColorSource::SwGradientColorSource(const GradientBrush& brush, const TwoPointGradientBase& gradient) noexcept
    : m_kernels(ActivePaintKernels()), m_sampler(gradient.stops) {
    const uint32_t factor = OpacityFactor(brush.opacity);
    const auto colorAt = [&](float t) { return ScalePixel(PremultiplyPixel(m_sampler.ColorAt(t)), factor); };
    m_background = gradient.hasBackground ? ScalePixel(PackColor(gradient.background), factor) : 0;
    m_shade.sampler = &m_sampler;
    m_shade.interval = m_sampler.IntervalAt(0.0F);
    m_shade.before = gradient.extendStart ? colorAt(0.0F) : m_background;
    m_shade.after = gradient.extendEnd ? colorAt(1.0F) : m_background;
    m_shade.notANumber = m_background;
    m_shade.opacityFactor = factor;
    m_opaque = factor == 256 && m_sampler.IsOpaque() && m_shade.before >> 24 == 255 && m_shade.after >> 24 == 255;
}

void SwGradientColorSource::Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) {
    if (x0 >= x1) {
        return;
    }
    if (m_constant) {
        std::fill_n(out, static_cast<int64_t>(x1) - x0, m_background);
        return;
    }
    const CoverageRun run{x0, x1, nullptr, 255};
    FillRuns({&run, 1}, y, out);
}

void SwGradientColorSource::MakeConstant() noexcept {
    m_constant = true;
    m_opaque = m_background >> 24 == 255;
}

SwColorSource* SwGradientColorSource::Factory(Arena& arena, const GradientBrush& brush, const Rect& bounds,
                                              const Matrix& transform) {
    const Gradient& gradient = *brush.gradient;
    switch (gradient.Kind()) {
    case kGradientLinear:
        return arena.Make<SwLinearGradientColorSource>(brush, static_cast<const LinearGradient&>(gradient), transform);
    case kGradientRadial:
        return arena.Make<SwRadialGradientColorSource>(brush, static_cast<const RadialGradient&>(gradient), transform);
    case kGradientTriMesh:
        return arena.Make<SwMeshColorSource>(arena, brush, static_cast<const TriMeshGradient&>(gradient), bounds,
                                             transform);
    default:
        GX_RAISE("Graphics::SwGradientColorSource::Factory", "Not implemented");
    }
}

} // namespace Graphics
