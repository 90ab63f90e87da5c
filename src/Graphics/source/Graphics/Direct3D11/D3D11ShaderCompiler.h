// SPDX-License-Identifier: MIT
// The system's HLSL compiler, loaded on demand.
#pragma once

#include <windows.h>

#include <d3dcompiler.h>

#include <string>
#include <vector>

#include "D3D11Counters.h"

namespace Graphics {

class D3D11ShaderCompiler {
public:
    /// Raises "Failed to load D3DCompiler module" or "D3DCompile function not found in D3DCompiler module".
    D3D11ShaderCompiler() : D3D11ShaderCompiler(L"d3dcompiler_47.dll", "D3DCompile") {}
    /// With another module or entry, for tests.
    D3D11ShaderCompiler(const wchar_t* module, const char* entry);
    D3D11ShaderCompiler(const D3D11ShaderCompiler&) = delete;
    D3D11ShaderCompiler& operator=(const D3D11ShaderCompiler&) = delete;
    ~D3D11ShaderCompiler();

    enum class Stage { Vertex, Pixel };

    /// Gives byte code. A pixel shader too long for the smallest target is compiled again for the larger targets of the
    /// feature level; false if no target accepts the text. Raises "Failed to compile shader" if the compiler fails for
    /// another reason.
    [[nodiscard]] bool TryCompile(const std::string& text, Stage stage, uint32_t featureLevel,
                                  std::vector<uint8_t>& code) const;

    /// False if the text does not compile; `message` then has the compiler's message. Raises as above.
    [[nodiscard]] bool TryCompile(const std::string& text, const char* entry, const char* target,
                                  std::vector<uint8_t>& code, std::string* message) const;

    /// Raises "Failed to compile shader".
    [[noreturn]] static void RaiseRefused();

    /// From now on, texts for which `refuses` is true fail at every target, as if the compiler had refused them.
    void RefuseForTest(bool (*refuses)(const std::string& text)) noexcept { m_refuses = refuses; }

private:
    HMODULE m_module = nullptr;
    pD3DCompile m_compile = nullptr;
    bool (*m_refuses)(const std::string& text) = nullptr;
    D3D11LiveCount<D3D11ShaderCompiler> m_live;
};

} // namespace Graphics
