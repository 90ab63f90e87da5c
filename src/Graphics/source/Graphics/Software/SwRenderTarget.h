// SPDX-License-Identifier: MIT
// The software back end: keeps state, clips and layers, and turns every drawing call into one pipeline run.
#pragma once

#include <memory>

#include "../Arena.h"
#include "../Geometry/Pen.h"
#include "../Scan/Rasterizer.h"
#include "SwClipMaker.h"
#include "SwGlyphCache.h"
#include "SwLayerStack.h"
#include "SwStateTarget.h"
#include "SwSubTarget.h"
#include "SwSurface.h"

namespace Graphics {

class SwRenderTarget final : public SwStateTarget {
public:
    explicit SwRenderTarget(std::unique_ptr<SwSurface> surface);
    ~SwRenderTarget() override;

    [[nodiscard]] GXPixelFormat GetPixelFormat() const override;
    [[nodiscard]] Size GetSize() const override;

    void BeginPaint() override;
    void EndPaint() override;
    void PushState() override;
    void PopState() override;
    void BeginLayer(const GXLayerDesc& desc) override;
    void EndLayer() override;

    void Clear(uint32_t argb) override;
    void Fill(const PathRef& path, const Brush& brush, bool text) override;
    void Stroke(const PathRef& path, const Brush& brush, float width, const StrokeStyle& style) override;
    void Clip(const PathRef& path) override;
    void DrawBitmap(const Bitmap& bitmap, const IntRect& source, const Rect& destination, float opacity,
                    uint32_t interpolation) override;
    void FillMask(const Bitmap& mask, const Brush& brush, const Rect& destination, uint32_t interpolation) override;
    void DrawGradient(std::shared_ptr<const Gradient> gradient, float opacity, const Matrix& m) override;
    void InvertRect(const Rect& rect) override;
    void InvertLine(const Point& from, const Point& to) override;

private:
    [[nodiscard]] SwSubTarget& Current() noexcept;
    [[nodiscard]] SwState& State() noexcept override { return Current().State(); }

    /// The part of `region` that bounds and clip leave.
    [[nodiscard]] static IntRect Visible(SwSubTarget& target, const IntRect& region) noexcept;
    [[nodiscard]] IntRect Visible(const IntRect& region) noexcept { return Visible(Current(), region); }
    /// All of these pixels were replaced by opaque ones.
    void NoteOpaque(const IntRect& region) noexcept;

    /// One pipeline run: cover(pipeLine) sends coverage inside `visible`, which may be empty.
    template <class MakeSource, class Cover>
    void Composite(const IntRect& visible, const SwMaskInput* extraMask, MakeSource&& makeSource, Cover&& cover);
    template <class MakeSource>
    void FillPath(const PathRef& path, bool snap, const SwMaskInput* extraMask, MakeSource&& makeSource);
    /// Normal onto the surface, without masks and slanted clips.
    [[nodiscard]] bool IsPlain() noexcept;
    /// When IsPlain: most rectangles of a page in a few kernel calls, without a pipeline. False: not done.
    [[nodiscard]] bool FillPlainRectangle(const BasicFigure& figure, uint32_t color);
    /// The fill of a glyph by its kept coverage. False when it has to be drawn as any other path.
    [[nodiscard]] bool FillGlyph(const Shape& shape, const Brush& brush);
    [[nodiscard]] bool HasLayers() const noexcept override { return !m_layers.IsEmpty(); }
    void CloseLayer() override;
    void DropLayer() noexcept override { m_layers.Drop(); }
    /// Draws the group, in which something is, into `target`, the one around it.
    void DrawLayer(SwLayerSubTarget& layer, SwSubTarget& target);

    std::unique_ptr<SwSurface> m_surface;
    IntRect m_area{}; // the whole surface

    // Before everything that may hold clips.
    SwClipMaker m_clips;
    SwBasicSubTarget m_basic;
    SwLayerStack m_layers;

    // What a draw call works with; warm after the first ones.
    Arena m_arena;
    Rasterizer m_rasterizer;
    PenStorage m_pen;
    SwRowBuffers m_buffers;
    SwGlyphCache::Ref m_glyphs; // from the first text of a paint bracket to its end
};

} // namespace Graphics
