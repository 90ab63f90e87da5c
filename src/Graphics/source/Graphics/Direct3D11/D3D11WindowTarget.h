// SPDX-License-Identifier: MIT
// A window, drawn by the GPU as long as there is a device. Each start of a paint replaces a lost device; while none can
// be created, the window is drawn in software. Pixels are not transferred between the two: a paint that starts without
// the pixels of the last one requests another paint from the window.
#pragma once

#include "../Software/SwRenderTarget.h"
#include "D3D11RenderTarget.h"

namespace Graphics {

class D3D11WindowTarget final : public RenderTargetBase {
public:
    /// Raises "The window does not exist" and, if there is a device, the error that prevents its use for the window.
    D3D11WindowTarget(std::shared_ptr<D3D11Context> context, HWND window);

    /// True if the last or current paint uses the GPU.
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
    bool m_incomplete = false;                  // this paint started without the pixels of the last one
    bool m_asked =
        false; // another paint was requested; once only, so that a device lost in every paint causes no endless loop
};

} // namespace Graphics
