// SPDX-License-Identifier: MIT
#include "D3D11RenderTargetFactory.h"

#include "D3D11WindowTarget.h"

namespace Graphics {

D3D11RenderTargetFactory::D3D11RenderTargetFactory() : m_context(std::make_shared<D3D11Context>()) {}

std::unique_ptr<RenderTargetBase> D3D11RenderTargetFactory::CreateWindowTarget(void* window) {
    return std::make_unique<D3D11WindowTarget>(m_context, static_cast<HWND>(window));
}

} // namespace Graphics
