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

    [[nodiscard]] Matrix GetTransform() const override { return State().GetTransform(); }
    void SetTransform(const Matrix& m) override { State().SetTransform(m); }
    void SetBlendMode(uint32_t mode) override { State().SetBlendMode(mode); }
    void SetStrokeAdjustment(bool on) override { State().SetStrokeAdjustment(on); }
    void SetOpacityMask(uint32_t type, std::shared_ptr<const Brush> brush) override {
        State().SetOpacityMask(type, std::move(brush));
    }
    void SetShapeMask(uint32_t type, std::shared_ptr<const Brush> brush) override {
        State().SetShapeMask(type, std::move(brush));
    }

    void BeginPaint() override;
    void EndPaint() override;
    void PushState() override { Active().PushState(); }
    void PopState() override { Active().PopState(); }
    void BeginLayer(const GXLayerDesc& desc) override { Active().BeginLayer(desc); }
    void EndLayer() override { Active().EndLayer(); }

    void Clear(uint32_t argb) override { Active().Clear(argb); }
    void Fill(const PathRef& path, const Brush& brush, bool text) override { Active().Fill(path, brush, text); }
    void Stroke(const PathRef& path, const Brush& brush, float width, const StrokeStyle& style) override {
        Active().Stroke(path, brush, width, style);
    }
    void Clip(const PathRef& path) override { Active().Clip(path); }
    void DrawBitmap(const Bitmap& bitmap, const IntRect& source, const Rect& destination, float opacity,
                    uint32_t interpolation) override {
        Active().DrawBitmap(bitmap, source, destination, opacity, interpolation);
    }
    void FillMask(const Bitmap& mask, const Brush& brush, const Rect& destination, uint32_t interpolation) override {
        Active().FillMask(mask, brush, destination, interpolation);
    }
    void DrawGradient(std::shared_ptr<const Gradient> gradient, float opacity, const Matrix& m) override {
        Active().DrawGradient(std::move(gradient), opacity, m);
    }
    void InvertRect(const Rect& rect) override { Active().InvertRect(rect); }
    void InvertLine(const Point& from, const Point& to) override { Active().InvertLine(from, to); }

private:
    [[nodiscard]] RenderTargetBase& Active() noexcept {
        return const_cast<RenderTargetBase&>(std::as_const(*this).Active());
    }
    [[nodiscard]] const RenderTargetBase& Active() const noexcept {
        return m_software != nullptr ? static_cast<const RenderTargetBase&>(*m_software) : m_card;
    }
    /// What holds the state: between paints always the card's target, which hands it to the software's.
    [[nodiscard]] RenderTargetBase& State() noexcept { return m_painting ? Active() : m_card; }
    [[nodiscard]] const RenderTargetBase& State() const noexcept { return m_painting ? Active() : m_card; }

    [[nodiscard]] bool BeginOnCard();
    void BeginInSoftware();

    std::shared_ptr<D3D11Context> m_context;
    HWND m_window;
    D3D11RenderTarget m_card;
    std::unique_ptr<SwRenderTarget> m_software; // while there is no device
    bool m_painting = false;
    bool m_incomplete = false; // this paint began without the pixels of the last one
    bool m_asked =
        false; // for another paint; once, so that a device that is lost by every paint makes no endless round
};

} // namespace Graphics
