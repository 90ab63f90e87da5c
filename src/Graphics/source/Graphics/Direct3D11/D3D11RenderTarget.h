// SPDX-License-Identifier: MIT
// The hardware back end: owns clips and layers and turns every drawing call into quadrilaterals of a batch. A lost
// device is replaced: what had been drawn is lost, drawing continues, and the paint counts as incomplete. If no device
// can be created, the rest of the paint raises "D3D11 error".
#pragma once

#include "../Coverage/GlyphCache.h"
#include "../Drawing/RenderTargetBase.h"
#include "../Geometry/Pen.h"
#include "../Scan/Rasterizer.h"
#include "D3D11Painter.h"
#include "D3D11Surface.h"

namespace Graphics {

class D3D11RenderTarget final : public RenderTargetBase {
public:
    D3D11RenderTarget(std::shared_ptr<D3D11Context> context, std::unique_ptr<D3D11Surface> surface);
    /// Also allowed during a paint: collected draws are then sent.
    ~D3D11RenderTarget() override;

    /// True if pixels of this or an earlier paint were lost with a device.
    [[nodiscard]] bool IsIncomplete() const noexcept { return m_incomplete; }
    /// Between paints: releases everything that belongs to the device.
    void Forget() noexcept { m_surface->Forget(); }

    [[nodiscard]] GXPixelFormat GetPixelFormat() const override { return GXPixelFormatBGRX32; }
    [[nodiscard]] Size GetSize() const override { return m_surface->GetSize(); }

    void BeginPaint() override;
    void EndPaint() override;
    void PushState() override { Current().Clips().Push(); }
    void PopState() override { Current().Clips().Pop(); }
    void BeginLayer(const GraphicsState& state, const GXLayerDesc& desc) override;
    void EndLayer(const GraphicsState& around) override;
    void DropLayer() noexcept override { m_layers.pop_back(); }

    void Clear(uint32_t argb) override;
    void Paint(const GraphicsState& state, const Path& path, const Ink& ink, const ImageInk* mask) override;
    void Stroke(const GraphicsState& state, const Path& path, const Ink& ink, float width,
                const StrokeStyle& style) override;
    void Clip(const GraphicsState& state, const Path& path) override;
    void Invert(const Matrix& transform, const BasicFigure& figure) override;

private:
    [[nodiscard]] D3D11SubTarget& Current() noexcept { return m_layers.empty() ? m_basic : *m_layers.back(); }

    /// Runs the work of a drawing call. If the device is lost meanwhile, a new one is created and, with `again`, the
    /// work is repeated.
    template <class Work> void Run(bool again, Work&& work);
    /// Moves surface and open layers to the context's device, which is created anew if it is lost.
    void FollowDevice();

    [[nodiscard]] IntRect Visible(D3D11SubTarget& target, const IntRect& region) const noexcept;
    [[nodiscard]] IntRect Visible(const IntRect& region) noexcept { return Visible(Current(), region); }
    /// A draw that sends nothing outside `visible`.
    [[nodiscard]] D3D11Painter::Call CallFor(D3D11SubTarget& target, const GraphicsState& state,
                                             const IntRect& visible) noexcept;
    /// A draw that may send anything inside `box`, of which `visible` lies inside the clip.
    [[nodiscard]] D3D11Painter::Call CallFor(const GraphicsState& state, const IntRect& visible,
                                             const IntRect& box) noexcept;
    using Colors = D3D11Painter::Colors;
    void PaintShape(const GraphicsState& state, const Colors& colors, const Shape& shape, bool snap);
    /// Paints from cached coverage if the outline is small enough to be cached.
    void PaintOutline(const GraphicsState& state, const Colors& colors, const Shape& outline);
    /// Composites the innermost group, which has content, into what contains it.
    void DrawLayer(const GraphicsState& around);

    std::shared_ptr<D3D11Context> m_context;
    std::unique_ptr<D3D11Surface> m_surface;
    IntRect m_area{};
    bool m_painting = false;
    bool m_incomplete = false;
    bool m_broken = false;     // there is no device for the rest of this paint
    uint32_t m_generation = 0; // of the device used by the last paint; 0: none

    ClipMaker m_clips; // declared before all members that may hold clips
    Arena m_arena;
    D3D11Painter m_painter;
    D3D11SubTarget m_basic;
    std::vector<std::unique_ptr<D3D11SubTarget>> m_layers; // open ones, innermost last
    PathShape m_shape;
    Rasterizer m_rasterizer;
    PenStorage m_pen;
    GlyphCache::Ref m_glyphs; // from the first text of a paint bracket until its end
};

} // namespace Graphics
