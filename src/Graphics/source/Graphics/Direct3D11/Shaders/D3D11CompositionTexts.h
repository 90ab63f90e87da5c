// SPDX-License-Identifier: MIT
// The pixel shader functions of the compositions. Cs is the source colour, fs its shape, Cb the backdrop, Co the
// group's initial backdrop, Cg the group's colour, fg its shape (in red, green and blue) and alpha.
#pragma once

#include <span>

#include "D3D11ShaderFragment.h"

namespace Graphics {

struct D3D11CompositionText {
    D3D11Fragment fragment;
    const char* name;
    std::array<std::string_view, 2> constants; ///< empty: none
    std::string_view pixelFunction;
};

[[nodiscard]] std::span<const D3D11CompositionText> D3D11CompositionTexts() noexcept;

} // namespace Graphics
