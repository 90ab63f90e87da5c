// SPDX-License-Identifier: MIT
// A window: drawing goes into a texture that keeps its pixels, which is presented through a swap chain.
#pragma once

#include "D3D11Surface.h"

namespace Graphics {

class D3D11WindowSurface final : public D3D11Surface {
public:
    /// Raises "The window does not exist", "Failed to get diplay mode" and "D3D11 error".
    D3D11WindowSurface(D3D11Context& context, HWND window);

    [[nodiscard]] Size GetSize() const override;
    [[nodiscard]] std::shared_ptr<D3D11Texture> BeginPaint(D3D11Context& context) override;
    void EndPaint(D3D11Context& context) override;
    void AskForRepaint() noexcept override { InvalidateRect(m_window, nullptr, FALSE); }

private:
    void Make(D3D11Context& context);
    [[nodiscard]] DXGI_MODE_DESC DisplayMode(D3D11Context& context) const;

    HWND m_window;
    D3D11Ref<IDXGISwapChain> m_chain;
    Size m_chainSize{};
    bool m_shown = false; // the window has pixels in this paint
    std::shared_ptr<D3D11Texture> m_pixels;
    uint32_t m_generation = 0;
};

} // namespace Graphics
