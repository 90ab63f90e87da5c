// SPDX-License-Identifier: MIT
#include "D3D11ShaderCache.h"

#include "Shaders/D3D11DynamicShaderFactory.h"

namespace Graphics {

D3D11ShaderCache::Shaders D3D11ShaderCache::Get(const D3D11ShaderKey& key) {
    D3D11ShaderKey plain = key;
    plain.SetComposition(key.Composition(), 0);
    D3D11Ref<ID3D11VertexShader>& vertex = m_vertex[plain.Code()];
    if (!vertex) {
        const std::vector<uint8_t> code = m_compiler.Compile(
            D3D11DynamicShaderFactory::VertexText(key), D3D11ShaderCompiler::Stage::Vertex, m_device.FeatureLevel());
        ++m_device.Counters().compilations;
        if (!m_layout) {
            m_layout = m_device.CreateInputLayout(code);
        }
        vertex = m_device.CreateVertexShader(code);
    }
    D3D11Ref<ID3D11PixelShader>& pixel = m_pixel[key.Code()];
    if (!pixel) {
        const std::vector<uint8_t> code = m_compiler.Compile(
            D3D11DynamicShaderFactory::PixelText(key), D3D11ShaderCompiler::Stage::Pixel, m_device.FeatureLevel());
        ++m_device.Counters().compilations;
        pixel = m_device.CreatePixelShader(code);
    }
    return {vertex.get(), pixel.get()};
}

} // namespace Graphics
