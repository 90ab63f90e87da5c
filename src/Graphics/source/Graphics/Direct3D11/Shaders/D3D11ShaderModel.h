// SPDX-License-Identifier: MIT
// What the generated pixel shaders compute, in the processor's floats: for draws whose shader the platform's compiler
// refuses.
#pragma once

#include "D3D11ShaderFragment.h"

namespace Graphics::D3D11ShaderModel {

struct Float4 {
    float r, g, b, a;
};

/// What a composition reads; what it does not read need not be set.
struct Inputs {
    Float4 source; ///< premultiplied
    float shape;
    Float4 backdrop; ///< the group's colour, or the surface's
    Float4 initial;  ///< what the group began with
    Float4 group;    ///< the group's shape in red, green and blue, and its alpha
};

struct Outputs {
    Float4 color;
    Float4 shape; ///< of compositions that write it
};

/// The weighted sum of red, green and blue.
[[nodiscard]] float Luminosity(const Float4& c) noexcept;
/// Colours from 0 to 1, not premultiplied; alphas are ignored.
[[nodiscard]] Float4 Blend(uint32_t mode, const Float4& backdrop, const Float4& source) noexcept;
[[nodiscard]] Outputs Compose(D3D11Fragment composition, uint32_t mode, const Inputs& in) noexcept;

} // namespace Graphics::D3D11ShaderModel
