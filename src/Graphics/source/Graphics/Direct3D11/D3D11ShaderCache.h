// SPDX-License-Identifier: MIT
// Compiled shaders by key. Vertex shaders do not depend on the blend mode, so keys that differ only in it share them.
#pragma once

#include <unordered_map>

#include "D3D11Device.h"
#include "D3D11ShaderCompiler.h"
#include "Shaders/D3D11ShaderKey.h"

namespace Graphics {

class D3D11ShaderCache {
public:
    struct Shaders {
        ID3D11VertexShader* vertex;
        ID3D11PixelShader* pixel;
    };

    D3D11ShaderCache(D3D11Device& device, const D3D11ShaderCompiler& compiler) noexcept
        : m_device(device), m_compiler(compiler) {}

    /// Compiles the key's shaders at the first call. False if the compiler refuses one of the two.
    [[nodiscard]] bool Has(const D3D11ShaderKey& key);
    /// Raises "Failed to compile shader" if Has is false.
    [[nodiscard]] Shaders Get(const D3D11ShaderKey& key);
    /// Number of different shaders requested, of both stages.
    [[nodiscard]] size_t Count() const noexcept { return m_vertex.size() + m_pixel.size(); }
    /// The common input layout of every vertex shader; valid after the first Get.
    [[nodiscard]] ID3D11InputLayout* Layout() const noexcept { return m_layout.get(); }

private:
    template <class Shader> using Kept = std::unordered_map<uint64_t, D3D11Ref<Shader>>;

    /// Null members: the compiler refused.
    [[nodiscard]] Shaders Find(const D3D11ShaderKey& key);
    template <class Shader, class Make>
    [[nodiscard]] Shader* Find(Kept<Shader>& kept, uint64_t code, D3D11ShaderCompiler::Stage stage,
                               const D3D11ShaderKey& key, Make&& make);

    D3D11Device& m_device;
    const D3D11ShaderCompiler& m_compiler;
    D3D11Ref<ID3D11InputLayout> m_layout;
    Kept<ID3D11VertexShader> m_vertex; // null: refused
    Kept<ID3D11PixelShader> m_pixel;
};

} // namespace Graphics
