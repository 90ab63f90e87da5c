// SPDX-License-Identifier: MIT
#include "D3D11Context.h"

#include "../Exception.h"
#include "D3D11Calls.h"

namespace Graphics {
namespace {

[[nodiscard]] D3D11Ref<IDXGIFactory1> MakeFactory() {
    D3D11Ref<IDXGIFactory1> factory;
    if (FAILED(g_d3d11.createFactory(IID_IDXGIFactory1, factory.OutVoid()))) {
        GX_RAISE("Graphics::D3D11Context::D3D11Context", "D3D11 error");
    }
    return factory;
}

} // namespace

D3D11Context::Resources::Resources(const D3D11ShaderCompiler& compiler)
    : samplers(device), shaders(device, compiler), bitmaps(device), gradients(device), pool(device), readback(device),
      batch(device, shaders, samplers) {
    // One colour and one texture are the minimum, needed for clears, inversions and copies between planes. A compiler
    // that refuses their shaders fails here; draws with any other refused shader are done in software.
    D3D11ShaderKey key;
    static_cast<void>(key.Add(D3D11Fragment::T2D));
    static_cast<void>(shaders.Get(key));
    static_cast<void>(key.Add(D3D11Fragment::BCP));
    static_cast<void>(shaders.Get(key));
}

D3D11Context::D3D11Context() { Make(); }

D3D11Context::~D3D11Context() = default;

void D3D11Context::Make() {
    try {
        // A factory does not list adapters added after its creation.
        D3D11Ref<IDXGIFactory1> factory = MakeFactory();
        m_resources = std::make_unique<Resources>(m_compiler);
        m_factory = std::move(factory);
    } catch (const D3D11DeviceLost&) {
        GX_RAISE("Graphics::D3D11Context::D3D11Context", "D3D11 error");
    }
    ++m_generation;
}

void D3D11Context::Recover() {
    if (HasDevice()) {
        return;
    }
    if (m_resources != nullptr) {
        m_kept = m_resources->device.Counters();
        m_resources.reset(); // frees the memory before the next device needs as much
    }
    Make();
    m_resources->device.Counters() = m_kept;
    ++m_resources->device.Counters().recoveries;
}

bool D3D11Context::TryRecover() {
    if (m_resources != nullptr) {
        m_resources->device.Probe();
    }
    try {
        Recover();
        return true;
    } catch (const Exception&) {
        return false;
    }
}

} // namespace Graphics
