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
    D3D11Ref<Shader> shader; // null is stored too, so that no text is compiled twice
    const std::string text = stage == D3D11ShaderCompiler::Stage::Vertex ? D3D11DynamicShaderFactory::VertexText(key)
                                                                         : D3D11DynamicShaderFactory::PixelText(key);
    if (m_compiler.TryCompile(text, stage, m_device.FeatureLevel(), bytes)) {
        shader = make(bytes);
    }
    return kept.emplace(code, std::move(shader)).first->second.get();
}

D3D11ShaderCache::Shaders D3D11ShaderCache::Find(const D3D11ShaderKey& key) {
    D3D11ShaderKey plain = key;
    plain.SetComposition(key.Composition(), 0);
    return {Find(m_vertex, plain.Code(), D3D11ShaderCompiler::Stage::Vertex, key,
                 [&](const std::vector<uint8_t>& bytes) {
                     if (!m_layout) {
                         m_layout = m_device.CreateInputLayout(bytes);
                     }
                     return m_device.CreateVertexShader(bytes);
                 }),
            Find(m_pixel, key.Code(), D3D11ShaderCompiler::Stage::Pixel, key,
                 [&](const std::vector<uint8_t>& bytes) { return m_device.CreatePixelShader(bytes); })};
}

bool D3D11ShaderCache::Has(const D3D11ShaderKey& key) {
    const Shaders shaders = Find(key);
    return shaders.vertex != nullptr && shaders.pixel != nullptr;
}

D3D11ShaderCache::Shaders D3D11ShaderCache::Get(const D3D11ShaderKey& key) {
    const Shaders shaders = Find(key);
    if (shaders.vertex == nullptr || shaders.pixel == nullptr) {
        D3D11ShaderCompiler::RaiseRefused();
    }
    return shaders;
}

} // namespace Graphics
