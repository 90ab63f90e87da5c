// SPDX-License-Identifier: MIT
// Assembles the HLSL of a key. The same key gives the same bytes, always.
#pragma once

#include <memory>
#include <unordered_map>

#include "D3D11ShaderKey.h"

namespace Graphics {

struct D3D11ShaderTexts {
    std::string vertex; ///< entry point VS
    std::string pixel;  ///< entry point PS
};

class D3D11DynamicShaderFactory {
public:
    /// The texts of a key; made at the first call, valid as long as the factory.
    [[nodiscard]] const D3D11ShaderTexts& Texts(const D3D11ShaderKey& key);
    [[nodiscard]] size_t CachedCount() const noexcept { return m_texts.size(); }

    [[nodiscard]] static std::string VertexText(const D3D11ShaderKey& key);
    [[nodiscard]] static std::string PixelText(const D3D11ShaderKey& key);

    /// Textures of the key in the order of their registers: the composition's first, then those of the fragments.
    [[nodiscard]] static uint32_t TextureCount(const D3D11ShaderKey& key);

private:
    std::unordered_map<uint64_t, std::unique_ptr<const D3D11ShaderTexts>> m_texts;
};

} // namespace Graphics
