// SPDX-License-Identifier: MIT
// The software back end: owns clips and layers, and runs one pipeline for each draw.
#pragma once

#include <memory>

#include "../Arena.h"
#include "../Coverage/ClipMaker.h"
#include "../Coverage/GlyphCache.h"
#include "../Drawing/RenderTargetBase.h"
#include "../Geometry/Pen.h"
#include "../Scan/DeviceRectangle.h"
#include "../Scan/Rasterizer.h"
#include "Surfaces/SwSurface.h"
#include "SwLayerStack.h"
#include "SwSubTarget.h"

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
    void Paint(const GraphicsState& state, const Path& path, const Ink& ink, const ImageInk* mask) override;
    void Stroke(const GraphicsState& state, const Path& path, const Ink& ink, float width,
                const StrokeStyle& style) override;
    void Clip(const GraphicsState& state, const Path& path) override;
    void Invert(const Matrix& transform, const BasicFigure& figure) override;

private:
    /// A draw without its path.
    struct Draw {
        const GraphicsState& state;
        const Matrix& transform; ///< of path, ink and mask: the state's, or one glyph's
        const Ink& ink;
        const ImageInk* mask = nullptr;
    };

    [[nodiscard]] SwSubTarget& Current() noexcept;
    /// The part of `region` inside bounds and clip.
    [[nodiscard]] static IntRect Visible(SwSubTarget& target, const IntRect& region) noexcept {
        return target.Clips().Within(Intersect(region, target.Bounds()));
    }
    [[nodiscard]] IntRect Visible(const IntRect& region) noexcept { return Visible(Current(), region); }
    /// Records that all of these pixels are now opaque.
    void NoteOpaque(const IntRect& region) noexcept;

    /// One pipeline run; cover(pipeLine) sends coverage inside `visible`, which may be empty.
    template <class Cover> void Composite(const Draw& draw, const IntRect& visible, Cover&& cover);
    /// Whether the draw is one colour in Normal mode onto the surface, without masks and without a masked clip: a few
    /// kernel calls paint it without a pipeline.
    [[nodiscard]] bool IsPlain(const Draw& draw, uint32_t& color) noexcept;
    void PaintPlain(const DeviceRectangle& rectangle, uint32_t color);
    void PaintPixels(const IntRect& r, uint32_t color);
    void PaintFigure(const Draw& draw, const BasicFigure& figure);
    void PaintShape(const Draw& draw, const Shape& shape, bool snap);
    /// Paints from cached coverage if the outline is small enough to be cached.
    void PaintOutline(const Draw& draw, const Shape& outline);
    /// Composites the group, which has content, into `target`, which contains it.
    void DrawLayer(const GraphicsState& state, SwLayerSubTarget& layer, SwSubTarget& target);

    std::unique_ptr<SwSurface> m_surface;
    IntRect m_area{}; // the whole surface
    bool m_painting = false;

    // Declared before all members that may hold clips.
    ClipMaker m_clips;
    SwBasicSubTarget m_basic;
    SwLayerStack m_layers;

    // Working memory of draw calls; allocated by the first ones.
    Arena m_arena;
    PathShape m_shape;
    Rasterizer m_rasterizer;
    PenStorage m_pen;
    SwRowBuffers m_buffers;
    GlyphCache::Ref m_glyphs; // from the first text of a paint bracket until its end
};

} // namespace Graphics
