// SPDX-License-Identifier: MIT
#include "D3D11ShaderCompiler.h"

#include <algorithm>

#include "../Exception.h"
#include "D3D11Calls.h"
#include "D3D11Ref.h"
#include "Shaders/D3D11ShaderTargets.h"

namespace Graphics {
namespace {

/// True for the errors by which a compiler rejects a text or a target. Other errors, such as a lack of memory, may not
/// occur again.
[[nodiscard]] bool IsAboutText(HRESULT result) noexcept {
    constexpr auto kUnknownTarget = static_cast<HRESULT>(0x8876086CU); // D3DERR_INVALIDCALL
    return result == E_FAIL || result == E_NOTIMPL || result == E_INVALIDARG || result == kUnknownTarget;
}

} // namespace

D3D11ShaderCompiler::D3D11ShaderCompiler(const wchar_t* module, const char* entry)
    : m_module(g_d3d11.loadLibrary(module)) {
    constexpr const char* kConstructor = "Graphics::D3D11ShaderCompiler::D3D11ShaderCompiler";
    if (m_module == nullptr) {
        GX_RAISE(kConstructor, "Failed to load D3DCompiler module");
    }
    m_compile = reinterpret_cast<pD3DCompile>(reinterpret_cast<void*>(g_d3d11.getProcAddress(m_module, entry)));
    if (m_compile == nullptr) {
        FreeLibrary(m_module);
        GX_RAISE(kConstructor, "D3DCompile function not found in D3DCompiler module");
    }
}

D3D11ShaderCompiler::~D3D11ShaderCompiler() { FreeLibrary(m_module); }

bool D3D11ShaderCompiler::TryCompile(const std::string& text, const char* entry, const char* target,
                                     std::vector<uint8_t>& code, std::string* message) const {
    D3D11Ref<ID3DBlob> blob;
    D3D11Ref<ID3DBlob> errors;
    const HRESULT result =
        m_compile(text.data(), text.size(), nullptr, nullptr, nullptr, entry, target, 0, 0, blob.Out(), errors.Out());
    if (FAILED(result) || !blob) {
        if (FAILED(result) && !IsAboutText(result)) {
            RaiseRefused();
        }
        if (message != nullptr && errors) {
            message->assign(static_cast<const char*>(errors->GetBufferPointer()), errors->GetBufferSize());
        }
        return false;
    }
    const auto* bytes = static_cast<const uint8_t*>(blob->GetBufferPointer());
    code.assign(bytes, bytes + blob->GetBufferSize());
    return true;
}

bool D3D11ShaderCompiler::TryCompile(const std::string& text, Stage stage, uint32_t featureLevel,
                                     std::vector<uint8_t>& code) const {
    if (m_refuses != nullptr && m_refuses(text)) {
        return false;
    }
    if (stage == Stage::Vertex) {
        return TryCompile(text, "VS", kD3D11VertexShaderTarget, code, nullptr);
    }
    const auto targets = D3D11PixelShaderTargetsFor(featureLevel);
    return std::any_of(targets.begin(), targets.end(),
                       [&](const char* target) { return TryCompile(text, "PS", target, code, nullptr); });
}

void D3D11ShaderCompiler::RaiseRefused() {
    GX_RAISE("Graphics::D3D11ShaderCompiler::Compile", "Failed to compile shader");
}

} // namespace Graphics
