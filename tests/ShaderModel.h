// SPDX-License-Identifier: MIT
// What the generated pixel shaders compute, in the processor's floats: the card is held to it, and it to the software.
#pragma once

#include "Direct3D11/Shaders/D3D11ShaderFragment.h"

namespace Graphics::ShaderModel {

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

/// An ARGB word, each byte divided by 255.
[[nodiscard]] Float4 Unit(uint32_t word) noexcept;
[[nodiscard]] Float4 Scaled(const Float4& c, float by) noexcept;
[[nodiscard]] Outputs Compose(D3D11Fragment composition, uint32_t mode, const Inputs& in) noexcept;

} // namespace Graphics::ShaderModel
