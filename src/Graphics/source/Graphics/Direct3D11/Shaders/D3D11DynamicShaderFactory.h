// SPDX-License-Identifier: MIT
// Assembles the HLSL text of a key. Equal keys give equal bytes.
#pragma once

#include "D3D11ShaderKey.h"

namespace Graphics::D3D11DynamicShaderFactory {

/// Entry point VS.
[[nodiscard]] std::string VertexText(const D3D11ShaderKey& key);
/// Entry point PS. Textures and samplers are numbered in order, the composition's first, then those of the fragments.
[[nodiscard]] std::string PixelText(const D3D11ShaderKey& key);

} // namespace Graphics::D3D11DynamicShaderFactory
