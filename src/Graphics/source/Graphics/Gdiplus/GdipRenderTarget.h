// SPDX-License-Identifier: MIT
// The GDI+ back end. What GDI+ can draw as it is meant is drawn at once: paths in opaque colours, images and gradients;
// with alpha where the device composites. Everything else (groups with an effect, soft masks, blend modes, inversion,
// meshes, stencils) is only noted: the pixels that it reaches are drawn by the software renderer from the list of all
// calls when painting ends, and cover what GDI+ has drawn there. So a pixel is either GDI+'s alone or the screen's
// alone.
#pragma once

#include "../Geometry/Pen.h"
#include "../Regions/Region.h"
#include "../Scan/Rasterizer.h"
#include "GdipColorSource.h"
#include "GdipPageList.h"
#include "GdipShows.h"
#include "GdipSubTarget.h"

namespace Graphics {

/// What is drawn on.
struct GdipDevice {
    IntRect area{}; ///< device pixels, from (0, 0) on
    float dpiX = 0, dpiY = 0;
    GXPixelFormat format = GXPixelFormatBGRX32;
    bool blends = false; ///< composites pixels with alpha
};

class GdipRenderTarget : public RenderTargetBase {
public:
    GdipRenderTarget(const GdipDevice& device, BitmapTargetMaker makeTarget);
    ~GdipRenderTarget() override;

    [[nodiscard]] GXPixelFormat GetPixelFormat() const override { return m_device.format; }
    [[nodiscard]] Size GetSize() const override;

    /// As it is now: pages are drawn once more from the list of calls.
    [[nodiscard]] std::shared_ptr<const Brush> KeepMask(std::shared_ptr<const Brush> brush) override;

    /// Raises "Unsuported pixel format" when GDI+ has no counterpart of the target's format, and what Open raises.
    void BeginPaint() override;
    void EndPaint() override;
    void PushState() override;
    void PopState() override;
    void BeginLayer(const GraphicsState& state, const GXLayerDesc& desc) override;
    void EndLayer(const GraphicsState& around) override;
    void DropLayer() noexcept override;

    void Clear(uint32_t argb) override;
    void Paint(const GraphicsState& state, const Path& path, const Ink& ink, const ImageInk* mask) override;
    void Stroke(const GraphicsState& state, const Path& path, const Ink& ink, float width,
                const StrokeStyle& style) override;
    void Clip(const GraphicsState& state, const Path& path) override;
    void Invert(const Matrix& transform, const BasicFigure& figure) override;

protected:
    /// The graphics of a page that begins. Sees to it that the device is the present one: pages of a job may differ.
    [[nodiscard]] virtual std::unique_ptr<GdipGraphics> Open() = 0;
    void SetDevice(const GdipDevice& device) noexcept;
    /// Brings opaque pixels, the first one at `origin`, to these rectangles of the device.
    virtual void Place(GdipGraphics& graphics, const PixelView& pixels, const IntPoint& origin,
                       const std::vector<IntRect>& rects) = 0;
    /// The page ends, whether it succeeded or not; the graphics is gone.
    virtual void Close() noexcept = 0;

private:
    void Finish() noexcept;

    [[nodiscard]] GdipClip& CurrentClip() noexcept { return m_targets.back().Clip(); }
    /// The part of `pixels` that the clip leaves.
    [[nodiscard]] IntRect Visible(const IntRect& pixels) noexcept { return Intersect(pixels, CurrentClip().box); }
    /// Whether GDI+ may draw under the state.
    [[nodiscard]] bool DrawsItself(const GraphicsState& state) const noexcept;
    [[nodiscard]] GdipShows Judge(const GraphicsState& state, const IntRect& visible) const noexcept;
    /// Fills what feed(path) adds with the ink and notes `call`, or nothing but the note where that is not for GDI+.
    template <class Feed>
    void Draw(const GraphicsState& state, const Ink& ink, const IntRect& visible, Feed&& feed, GdipPageList::Call call);
    /// These pixels are the software renderer's.
    void Leave(const GraphicsState& state, const IntRect& visible, GdipPageList::Call call);
    void PaintOne(const GraphicsState& state, const Path& path, const Ink& ink, const ImageInk* mask);
    void FeedPath(const Shape& shape, const Matrix& transform, bool snap, GdipPath& sink);

    GdipDevice m_device;
    Matrix m_toPage{};
    const BitmapTargetMaker m_makeTarget;

    // While painting.
    std::unique_ptr<GdipGraphics> m_graphics;
    std::vector<GdipSubTarget> m_targets; // the page, then the open groups
    GdipPageList m_page;
    Region m_left; // pixels left to the software renderer

    Rasterizer m_rasterizer; // for rectangles on whole pixels
    PenStorage m_pen;
    PathShape m_shape;
};

} // namespace Graphics
