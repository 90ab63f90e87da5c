// SPDX-License-Identifier: MIT
// Makes the hardware targets of one thread; they share the factory's device.
#pragma once

#include "../Drawing/HwRenderTargetFactory.h"
#include "D3D11Context.h"

namespace Graphics {

class D3D11RenderTargetFactory final : public HwRenderTargetFactory {
public:
    /// Raises an engine error if there is no usable device or no shader compiler.
    D3D11RenderTargetFactory();

    [[nodiscard]] std::unique_ptr<RenderTargetBase> CreateWindowTarget(void* window) override;
    [[nodiscard]] const std::shared_ptr<D3D11Context>& Context() const noexcept { return m_context; }

private:
    std::shared_ptr<D3D11Context> m_context;
};

} // namespace Graphics
