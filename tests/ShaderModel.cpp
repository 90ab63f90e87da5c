// SPDX-License-Identifier: MIT
// The formulas of the shader texts, operation by operation. Minima and maxima have the constant first, which makes them
// return it for a NaN, as the card does.
#include "ShaderModel.h"

#include <algorithm>
#include <cmath>

#include "Types.h"

namespace Graphics::ShaderModel {
namespace {

template <class F> [[nodiscard]] Float4 Each(const Float4& a, const Float4& b, F&& f) noexcept {
    return {f(a.r, b.r), f(a.g, b.g), f(a.b, b.b), 0.0F};
}

[[nodiscard]] Float4 Divided(const Float4& c, float by) noexcept { return {c.r / by, c.g / by, c.b / by, c.a}; }

/// The weighted sum of red, green and blue.
[[nodiscard]] float Luminosity(const Float4& c) noexcept { return c.r * 0.3F + c.g * 0.59F + c.b * 0.11F; }
[[nodiscard]] float Smallest(const Float4& c) noexcept { return std::min({c.r, c.g, c.b}); }
[[nodiscard]] float Largest(const Float4& c) noexcept { return std::max({c.r, c.g, c.b}); }

[[nodiscard]] Float4 SetLum(Float4 c, float luminosity) noexcept {
    const float d = luminosity - Luminosity(c);
    c = {c.r + d, c.g + d, c.b + d, 0.0F};
    const float l = Luminosity(c);
    const float n = Smallest(c);
    const float x = Largest(c);
    const auto each = [&](auto&& f) { c = {f(c.r), f(c.g), f(c.b), 0.0F}; };
    if (n < 0.0F) {
        each([&](float v) { return l + l * (v - l) / (l - n); });
    }
    if (x > 1.0F) {
        each([&](float v) { return l + (1.0F - l) * (v - l) / (x - l); });
    }
    return c;
}

/// The smallest channel becomes 0, the largest `s`; with two equal channels all may stay 0, by the text's branches.
[[nodiscard]] Float4 SetSat(const Float4& c, float s) noexcept {
    Float4 out{0.0F, 0.0F, 0.0F, 0.0F};
    if (c.r > c.g) {
        if (c.r > c.b) {
            out.r = s;
            if (c.g > c.b) {
                out.g = (c.g - c.b) * s / (c.r - c.b);
            } else if (c.b > c.g) {
                out.b = (c.b - c.g) * s / (c.r - c.g);
            }
        } else if (c.b > c.r) {
            out.r = (c.r - c.g) * s / (c.b - c.g);
            out.b = s;
        }
    } else if (c.r > c.b) {
        out.r = (c.r - c.b) * s / (c.g - c.b);
        out.g = s;
    } else if (c.b > c.r) {
        if (c.g > c.b) {
            out.b = (c.b - c.r) * s / (c.g - c.r);
            out.g = s;
        } else if (c.b > c.g) {
            out.g = (c.g - c.r) * s / (c.b - c.r);
            out.b = s;
        }
    }
    return out;
}

[[nodiscard]] float HardLight(float cb, float cs) noexcept {
    return cs <= 0.5F ? 2.0F * cb * cs : 2.0F * cs + 2.0F * cb - 2.0F * cb * cs - 1.0F;
}

[[nodiscard]] float SoftLight(float cb, float cs) noexcept {
    const float d = cb <= 0.25F ? ((16.0F * cb - 12.0F) * cb + 4.0F) * cb : std::sqrt(cb);
    const float t = 1.0F - 2.0F * cs;
    return cs <= 0.5F ? cb - t * cb * (1.0F - cb) : cb - t * (d - cb);
}

[[nodiscard]] float Burn(float cb, float cs) noexcept {
    return cb >= 1.0F ? 1.0F : cs <= 0.0F ? 0.0F : 1.0F - std::min(1.0F, (1.0F - cb) / cs);
}

[[nodiscard]] float Dodge(float cb, float cs) noexcept {
    return cb <= 0.0F ? 0.0F : cs >= 1.0F ? 1.0F : std::min(1.0F, cb / (1.0F - cs));
}

/// Colours from 0 to 1, not premultiplied; alphas are ignored.
[[nodiscard]] Float4 Blend(uint32_t mode, const Float4& cb, const Float4& cs) noexcept {
    const auto each = [&](auto&& f) { return Each(cb, cs, f); };
    switch (mode) {
    case GXBlendModeMultiply:
        return each([](float b, float s) { return b * s; });
    case GXBlendModeScreen:
        return each([](float b, float s) { return b + s - b * s; });
    case GXBlendModeOverlay:
        return each([](float b, float s) { return HardLight(s, b); });
    case GXBlendModeDarken:
        return each([](float b, float s) { return std::min(b, s); });
    case GXBlendModeLighten:
        return each([](float b, float s) { return std::max(b, s); });
    case GXBlendModeColorBurn:
        return each(Burn);
    case GXBlendModeColorDodge:
        return each(Dodge);
    case GXBlendModeHardLight:
        return each(HardLight);
    case GXBlendModeSoftLight:
        return each(SoftLight);
    case GXBlendModeDifference:
        return each([](float b, float s) { return std::fabs(b - s); });
    case GXBlendModeExclusion:
        return each([](float b, float s) { return b + s - 2.0F * b * s; });
    case GXBlendModeHue:
        return SetLum(SetSat(cs, Largest(cb) - Smallest(cb)), Luminosity(cb));
    case GXBlendModeSaturation:
        return SetLum(SetSat(cb, Largest(cs) - Smallest(cs)), Luminosity(cb));
    case GXBlendModeColor:
        return SetLum(cs, Luminosity(cb));
    case GXBlendModeLuminosity:
        return SetLum(cb, Luminosity(cs));
    default:
        return cs;
    }
}

/// (1 - s) g + (1 - b) c + b s Blend, where s and b are the alphas of source and backdrop.
[[nodiscard]] Float4 Mixed(uint32_t mode, const Float4& backdrop, const Float4& source) noexcept {
    const Float4 blend = Blend(mode, Divided(backdrop, backdrop.a), Divided(source, source.a));
    const float both = backdrop.a * source.a;
    const auto mix = [&](float g, float c, float b) {
        return (1.0F - source.a) * g + (1.0F - backdrop.a) * c + both * b;
    };
    return {mix(backdrop.r, source.r, blend.r), mix(backdrop.g, source.g, blend.g), mix(backdrop.b, source.b, blend.b),
            backdrop.a + source.a - both};
}

[[nodiscard]] Outputs Knockout(uint32_t mode, const Inputs& in, const Float4& source) noexcept {
    const Float4& first = in.initial;
    const float rest = 1.0F - in.shape;
    const Float4 blend = Blend(mode, Divided(first, first.a), Divided(source, source.a));
    const auto mix = [&](float g, float o, float c, float b) {
        return rest * g + (in.shape - source.a) * (o * first.a) + (1.0F - first.a) * c + first.a * source.a * b;
    };
    return {{mix(in.backdrop.r, first.r, source.r, blend.r), mix(in.backdrop.g, first.g, source.g, blend.g),
             mix(in.backdrop.b, first.b, source.b, blend.b), 0.0F},
            {0.0F, 0.0F, 0.0F, rest * in.group.a + source.a}};
}

[[nodiscard]] Outputs InLayer(D3D11Fragment composition, uint32_t mode, const Inputs& in) noexcept {
    const bool isolated = composition == D3D11Fragment::IsolatedLayerComposition ||
                          composition == D3D11Fragment::IsolatedKnockoutLayerComposition;
    const Float4 source = Scaled(in.source, in.shape);
    if (source.a == 0.0F) {
        return {in.backdrop, in.group};
    }
    Outputs out{};
    if (composition == D3D11Fragment::KnockoutLayerComposition) {
        out = Knockout(mode, in, source);
    } else if (composition == D3D11Fragment::IsolatedKnockoutLayerComposition) {
        const float rest = 1.0F - in.shape;
        out.color = Each(in.backdrop, source, [&](float g, float c) { return rest * g + c; });
        out.shape.a = rest * in.group.a + source.a;
    } else {
        out.color = Mixed(mode, in.backdrop, source);
        out.shape.a = (1.0F - source.a) * in.group.a + source.a;
    }
    out.shape.r = in.group.r + in.shape * (1.0F - in.group.r);
    out.shape.g = in.group.g + in.shape * (1.0F - in.group.g);
    out.shape.b = in.group.b + in.shape * (1.0F - in.group.b);
    out.color.a = isolated ? out.shape.a : in.initial.a + out.shape.a * (1.0F - in.initial.a);
    return out;
}

[[nodiscard]] Float4 LayerResult(bool isolated, const Inputs& in) noexcept {
    const Float4& fg = in.group;
    Float4 group = in.backdrop;
    if (fg.r == 0.0F || fg.a == 0.0F || group.a == 0.0F) {
        return {0.0F, 0.0F, 0.0F, 0.0F};
    }
    if (isolated) {
        group.a = fg.a;
        return Scaled(group, 1.0F / fg.r);
    }
    group = Divided(group, group.a);
    const float o = in.initial.a;
    if (o != 0.0F) {
        const float back = o / fg.a - o;
        group = Each(group, Divided(in.initial, o), [&](float g, float c) { return g + (g - c) * back; });
    }
    group.a = 1.0F;
    return Scaled(group, fg.a / fg.r);
}

} // namespace

Float4 Unit(uint32_t word) noexcept {
    const auto channel = [word](int shift) { return static_cast<float>(word >> shift & 255U) / 255.0F; };
    return {channel(16), channel(8), channel(0), channel(24)};
}

Float4 Scaled(const Float4& c, float by) noexcept { return {c.r * by, c.g * by, c.b * by, c.a * by}; }

Outputs Compose(D3D11Fragment composition, uint32_t mode, const Inputs& in) noexcept {
    switch (composition) {
    case D3D11Fragment::BasicFastComposition:
        return {Scaled(in.source, in.shape), {}};
    case D3D11Fragment::BasicComposition: {
        const Float4 source = Scaled(in.source, in.shape);
        return {source.a == 0.0F ? in.backdrop : Mixed(mode, in.backdrop, source), {}};
    }
    case D3D11Fragment::LayerResultComposition:
        return {LayerResult(false, in), {}};
    case D3D11Fragment::IsolatedLayerResultComposition:
        return {LayerResult(true, in), {}};
    default:
        return InLayer(composition, mode, in);
    }
}

} // namespace Graphics::ShaderModel
