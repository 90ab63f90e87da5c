// SPDX-License-Identifier: MIT
#include "D3D11ShaderCache.h"

#include "Shaders/D3D11DynamicShaderFactory.h"

namespace Graphics {

template <class Shader, class Make>
Shader* D3D11ShaderCache::Find(Kept<Shader>& kept, uint64_t code, D3D11ShaderCompiler::Stage stage,
                               const D3D11ShaderKey& key, Make&& make) {
    if (const auto found = kept.find(code); found != kept.end()) {
        return found->second.get();
    }
    ++m_device.Counters().compilations;
    std::vector<uint8_t> bytes;
    D3D11Ref<Shader> shader; // null is kept as well: no text is compiled twice
    const std::string text = stage == D3D11ShaderCompiler::Stage::Vertex ? D3D11DynamicShaderFactory::VertexText(key)
                                                                         : D3D11DynamicShaderFactory::PixelText(key);
    if (m_compiler.TryCompile(text, stage, m_device.FeatureLevel(), bytes)) {
        shader = make(bytes);
    }
    return kept.emplace(code, std::move(shader)).first->second.get();
}

bool D3D11ShaderCache::TryGet(const D3D11ShaderKey& key, Shaders& shaders) {
    D3D11ShaderKey plain = key;
    plain.SetComposition(key.Composition(), 0);
    shaders.vertex =
        Find(m_vertex, plain.Code(), D3D11ShaderCompiler::Stage::Vertex, key, [&](const std::vector<uint8_t>& bytes) {
            if (!m_layout) {
                m_layout = m_device.CreateInputLayout(bytes);
            }
            return m_device.CreateVertexShader(bytes);
        });
    shaders.pixel = Find(m_pixel, key.Code(), D3D11ShaderCompiler::Stage::Pixel, key,
                         [&](const std::vector<uint8_t>& bytes) { return m_device.CreatePixelShader(bytes); });
    return shaders.vertex != nullptr && shaders.pixel != nullptr;
}

D3D11ShaderCache::Shaders D3D11ShaderCache::Get(const D3D11ShaderKey& key) {
    Shaders shaders{};
    if (!TryGet(key, shaders)) {
        D3D11ShaderCompiler::RaiseRefused();
    }
    return shaders;
}

} // namespace Graphics
