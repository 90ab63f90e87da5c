// SPDX-License-Identifier: MIT
// A window: drawing goes into a texture that keeps its pixels and is presented through a swap chain.
#pragma once

#include "D3D11Surface.h"

namespace Graphics {

class D3D11WindowSurface final : public D3D11Surface {
public:
    /// Raises "The window does not exist".
    explicit D3D11WindowSurface(HWND window);

    /// Creates a new swap chain on the context's device. Raises "Failed to get diplay mode" and "D3D11 error"; the
    /// surface then has no chain.
    void Make(D3D11Context& context);

    [[nodiscard]] Size GetSize() const override;
    [[nodiscard]] std::shared_ptr<D3D11Texture> BeginPaint(D3D11Context& context) override;
    void EndPaint(D3D11Context& context) override;
    void Forget() noexcept override;

private:
    /// The mode of the output that shows the window, in the surface's format.
    [[nodiscard]] DXGI_MODE_DESC DisplayMode(D3D11Context& context) const;

    HWND m_window;
    D3D11Ref<IDXGISwapChain> m_chain;
    Size m_chainSize{};   // 0 by 0 when it is not known
    bool m_shown = false; // the window has pixels in this paint
    std::shared_ptr<D3D11Texture> m_pixels;
    uint32_t m_generation = 0; // generation of the chain's device; 0: no chain
};

} // namespace Graphics
