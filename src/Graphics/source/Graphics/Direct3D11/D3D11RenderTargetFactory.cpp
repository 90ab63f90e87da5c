// SPDX-License-Identifier: MIT
#include "D3D11RenderTargetFactory.h"

#include "../Exception.h"
#include "D3D11RenderTarget.h"
#include "D3D11WindowSurface.h"

namespace Graphics {
namespace {

/// A device lost while something is being made counts as an error.
template <class Make> [[nodiscard]] auto Making(const char* function, Make&& make) {
    try {
        return make();
    } catch (const D3D11DeviceLost&) {
        GX_RAISE(function, "D3D11 error");
    }
}

} // namespace

D3D11RenderTargetFactory::D3D11RenderTargetFactory()
    : m_context(Making("Graphics::D3D11Context::D3D11Context", [] { return std::make_shared<D3D11Context>(); })) {}

std::unique_ptr<RenderTargetBase> D3D11RenderTargetFactory::CreateWindowTarget(void* window) {
    return Making("Graphics::D3D11WindowSurface::D3D11WindowSurface", [&]() -> std::unique_ptr<RenderTargetBase> {
        m_context->Recover();
        auto surface = std::make_unique<D3D11WindowSurface>(*m_context, static_cast<HWND>(window));
        return std::make_unique<D3D11RenderTarget>(m_context, std::move(surface));
    });
}

} // namespace Graphics
