// SPDX-License-Identifier: MIT
#include "D3D11Context.h"

#include "../Exception.h"

namespace Graphics {

D3D11Context::Resources::Resources(const D3D11ShaderCompiler& compiler)
    : samplers(device), shaders(device, compiler), bitmaps(device), gradients(device), pool(device), readback(device),
      batch(device, shaders, samplers) {
    // The shader of solid colours; a compiler that refuses it is found out here.
    D3D11ShaderKey key;
    static_cast<void>(key.Add(D3D11Fragment::T2D));
    key.SetComposition(D3D11Fragment::BasicFastComposition, 0);
    static_cast<void>(shaders.Get(key));
}

D3D11Context::D3D11Context() {
    MakeFactory();
    m_resources = std::make_unique<Resources>(m_compiler);
}

D3D11Context::~D3D11Context() = default;

void D3D11Context::MakeFactory() {
    if (FAILED(CreateDXGIFactory1(IID_IDXGIFactory1, m_factory.OutVoid()))) {
        GX_RAISE("Graphics::D3D11Context::D3D11Context", "D3D11 error");
    }
}

void D3D11Context::Recover() {
    if (m_resources != nullptr && !m_resources->device.IsLost()) {
        return;
    }
    const D3D11Counters counters = m_resources != nullptr ? m_resources->device.Counters() : D3D11Counters();
    m_resources.reset();
    // A factory does not see adapters that came after it.
    MakeFactory();
    m_resources = std::make_unique<Resources>(m_compiler);
    m_resources->device.Counters() = counters;
    ++m_resources->device.Counters().recoveries;
    ++m_generation;
}

} // namespace Graphics
