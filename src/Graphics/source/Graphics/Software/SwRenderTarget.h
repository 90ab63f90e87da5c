// SPDX-License-Identifier: MIT
// The software back end: keeps clips and layers, and turns every drawing call into one pipeline run.
#pragma once

#include <memory>

#include "../Arena.h"
#include "../Drawing/RenderTargetBase.h"
#include "../Geometry/Pen.h"
#include "../Scan/Rasterizer.h"
#include "SwClipMaker.h"
#include "SwGlyphCache.h"
#include "SwLayerStack.h"
#include "SwSubTarget.h"
#include "SwSurface.h"

namespace Graphics {

class SwRenderTarget final : public RenderTargetBase {
public:
    explicit SwRenderTarget(std::unique_ptr<SwSurface> surface);
    ~SwRenderTarget() override;

    [[nodiscard]] GXPixelFormat GetPixelFormat() const override;
    [[nodiscard]] Size GetSize() const override;

    void BeginPaint() override;
    void EndPaint() override;
    void PushState() override { Current().Clips().Push(); }
    void PopState() override { Current().Clips().Pop(); }
    void BeginLayer(const GraphicsState& state, const GXLayerDesc& desc) override;
    void EndLayer(const GraphicsState& around) override;
    void DropLayer() noexcept override { m_layers.Drop(); }

    void Clear(uint32_t argb) override;
    void Fill(const GraphicsState& state, const PathRef& path, const Brush& brush, bool text) override;
    void Stroke(const GraphicsState& state, const PathRef& path, const Brush& brush, float width,
                const StrokeStyle& style) override;
    void Clip(const GraphicsState& state, const PathRef& path) override;
    void DrawBitmap(const GraphicsState& state, const Bitmap& bitmap, const IntRect& source, const Rect& destination,
                    float opacity, uint32_t interpolation) override;
    void FillMask(const GraphicsState& state, const Bitmap& mask, const Brush& brush, const Rect& destination,
                  uint32_t interpolation) override;
    void DrawGradient(const GraphicsState& state, std::shared_ptr<const Gradient> gradient, float opacity,
                      const Matrix& m) override;
    void InvertRect(const Matrix& transform, const Rect& rect) override;
    void InvertLine(const Matrix& transform, const Point& from, const Point& to) override;

private:
    [[nodiscard]] SwSubTarget& Current() noexcept;

    /// The part of `region` that bounds and clip leave.
    [[nodiscard]] static IntRect Visible(SwSubTarget& target, const IntRect& region) noexcept {
        return target.Clips().Within(Intersect(region, target.Bounds()));
    }
    [[nodiscard]] IntRect Visible(const IntRect& region) noexcept { return Visible(Current(), region); }
    /// All of these pixels were replaced by opaque ones.
    void NoteOpaque(const IntRect& region) noexcept;

    /// One pipeline run: cover(pipeLine) sends coverage inside `visible`, which may be empty.
    template <class MakeSource, class Cover>
    void Composite(const GraphicsState& state, const IntRect& visible, const SwMaskInput* extraMask,
                   MakeSource&& makeSource, Cover&& cover);
    template <class MakeSource>
    void FillPath(const GraphicsState& state, const PathRef& path, bool snap, const SwMaskInput* extraMask,
                  MakeSource&& makeSource);
    /// Normal onto the surface, without masks and slanted clips.
    [[nodiscard]] bool IsPlain(const GraphicsState& state) noexcept;
    /// When IsPlain: most rectangles of a page in a few kernel calls, without a pipeline. False: not done.
    [[nodiscard]] bool FillPlainRectangle(const GraphicsState& state, const BasicFigure& figure, uint32_t color);
    /// The fill of a glyph by its kept coverage. False when it has to be drawn as any other path.
    [[nodiscard]] bool FillGlyph(const GraphicsState& state, const Shape& shape, const Brush& brush);
    /// Draws the group, in which something is, into `target`, the one around it.
    void DrawLayer(const GraphicsState& state, SwLayerSubTarget& layer, SwSubTarget& target);

    std::unique_ptr<SwSurface> m_surface;
    IntRect m_area{}; // the whole surface
    bool m_painting = false;

    // Before everything that may hold clips.
    SwClipMaker m_clips;
    SwBasicSubTarget m_basic;
    SwLayerStack m_layers;

    // What a draw call works with; warm after the first ones.
    Arena m_arena;
    PathShape m_shape;
    Rasterizer m_rasterizer;
    PenStorage m_pen;
    SwRowBuffers m_buffers;
    SwGlyphCache::Ref m_glyphs; // from the first text of a paint bracket to its end
};

} // namespace Graphics
