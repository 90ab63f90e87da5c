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
    void Fill(const GraphicsState& state, const PathRef& path, const Brush& brush, bool text) override {
        Active().Fill(state, path, brush, text);
    }
    void Stroke(const GraphicsState& state, const PathRef& path, const Brush& brush, float width,
                const StrokeStyle& style) override {
        Active().Stroke(state, path, brush, width, style);
    }
    void Clip(const GraphicsState& state, const PathRef& path) override { Active().Clip(state, path); }
    void DrawBitmap(const GraphicsState& state, const Bitmap& bitmap, const IntRect& source, const Rect& destination,
                    float opacity, uint32_t interpolation) override {
        Active().DrawBitmap(state, bitmap, source, destination, opacity, interpolation);
    }
    void FillMask(const GraphicsState& state, const Bitmap& mask, const Brush& brush, const Rect& destination,
                  uint32_t interpolation) override {
        Active().FillMask(state, mask, brush, destination, interpolation);
    }
    void DrawGradient(const GraphicsState& state, std::shared_ptr<const Gradient> gradient, float opacity,
                      const Matrix& m) override {
        Active().DrawGradient(state, std::move(gradient), opacity, m);
    }
    void InvertRect(const Matrix& transform, const Rect& rect) override { Active().InvertRect(transform, rect); }
    void InvertLine(const Matrix& transform, const Point& from, const Point& to) override {
        Active().InvertLine(transform, from, to);
    }

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
