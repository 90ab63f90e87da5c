// SPDX-License-Identifier: MIT
// A window, drawn by the graphics card as long as there is a device. The start of a paint replaces a device that is
// lost; while none can be made, windows are drawn in software, and every start of a paint looks for a device again.
// Pixels do not move from one to the other: a paint that begins without those of the last one asks the window for
// another paint.
#pragma once

#include "../Software/SwRenderTarget.h"
#include "D3D11RenderTarget.h"

namespace Graphics {

class D3D11WindowTarget final : public RenderTargetBase {
public:
    /// Raises "The window does not exist" and, where there is a device, what keeps it from the window.
    D3D11WindowTarget(std::shared_ptr<D3D11Context> context, HWND window);

    /// The last paint was, or the current one is, the card's.
    [[nodiscard]] bool IsOnCard() const noexcept { return m_software == nullptr; }

    [[nodiscard]] GXPixelFormat GetPixelFormat() const override { return Active().GetPixelFormat(); }
    [[nodiscard]] Size GetSize() const override { return Active().GetSize(); }

    void BeginPaint() override;
    void EndPaint() override;
    void PushState() override { Active().PushState(); }
    void PopState() override { Active().PopState(); }
    void BeginLayer(const GraphicsState& state, const GXLayerDesc& desc) override { Active().BeginLayer(state, desc); }
    void EndLayer(const GraphicsState& around) override { Active().EndLayer(around); }
    void DropLayer() noexcept override { Active().DropLayer(); }

    void Clear(uint32_t argb) override { Active().Clear(argb); }
    void Paint(const GraphicsState& state, const Path& path, const Ink& ink, const ImageInk* mask) override {
        Active().Paint(state, path, ink, mask);
    }
    void Stroke(const GraphicsState& state, const Path& path, const Ink& ink, float width,
                const StrokeStyle& style) override {
        Active().Stroke(state, path, ink, width, style);
    }
    void Clip(const GraphicsState& state, const Path& path) override { Active().Clip(state, path); }
    void Invert(const Matrix& transform, const BasicFigure& figure) override { Active().Invert(transform, figure); }

private:
    [[nodiscard]] RenderTargetBase& Active() noexcept {
        return const_cast<RenderTargetBase&>(std::as_const(*this).Active());
    }
    [[nodiscard]] const RenderTargetBase& Active() const noexcept {
        return m_software != nullptr ? static_cast<const RenderTargetBase&>(*m_software) : m_card;
    }

    [[nodiscard]] bool BeginOnCard();
    void BeginInSoftware();

    std::shared_ptr<D3D11Context> m_context;
    HWND m_window;
    D3D11RenderTarget m_card;
    std::unique_ptr<SwRenderTarget> m_software; // while there is no device
    bool m_incomplete = false;                  // this paint began without the pixels of the last one
    bool m_asked =
        false; // for another paint; once, so that a device that is lost by every paint makes no endless round
};

} // namespace Graphics
