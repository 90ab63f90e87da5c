// SPDX-License-Identifier: MIT
// The GDI+ back end. (1) GDI+ draws at once what it draws correctly: paths in opaque colours, images and gradients,
// also with alpha if the device composites. (2) Everything else (groups with an effect, soft masks, blend modes,
// inversion, meshes, stencils) is only recorded: when painting ends, the software renderer draws the affected pixels
// from the display list of all calls, over what GDI+ has drawn there. (3) So every pixel comes either from GDI+ alone
// or from the software renderer alone.
#pragma once

#include "../Geometry/Pen.h"
#include "../Regions/Region.h"
#include "../Scan/Rasterizer.h"
#include "GdipColorSource.h"
#include "GdipPageList.h"
#include "GdipShows.h"
#include "GdipSubTarget.h"

namespace Graphics {

/// The properties of the device.
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

    /// A copy of the brush's present content, because pages are drawn again from the display list.
    [[nodiscard]] std::shared_ptr<const Brush> KeepMask(std::shared_ptr<const Brush> brush) override;

    /// Raises "Unsuported pixel format" if GDI+ has no counterpart of the target's format, and what Open raises.
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
    /// The graphics of a new page. Calls SetDevice with the present device, since pages of a job may differ.
    [[nodiscard]] virtual std::unique_ptr<GdipGraphics> Open() = 0;
    void SetDevice(const GdipDevice& device) noexcept;
    /// Copies opaque pixels, the first one at `origin`, to these rectangles of the device.
    virtual void Place(GdipGraphics& graphics, const PixelView& pixels, const IntPoint& origin,
                       const std::vector<IntRect>& rects) = 0;
    /// Ends the page, successful or not; the graphics object no longer exists.
    virtual void Close() noexcept = 0;

private:
    void Finish() noexcept;

    [[nodiscard]] GdipClip& CurrentClip() noexcept { return m_targets.back().Clip(); }
    /// The part of `pixels` inside the clip.
    [[nodiscard]] IntRect Visible(const IntRect& pixels) noexcept { return Intersect(pixels, CurrentClip().box); }
    /// Whether GDI+ may draw under this state.
    [[nodiscard]] bool DrawsItself(const GraphicsState& state) const noexcept;
    [[nodiscard]] GdipShows Judge(const GraphicsState& state, const IntRect& visible) const noexcept;
    /// Fills the path that feed(path) adds with the ink and records `call`; if GDI+ cannot, only records it.
    template <class Feed>
    void Draw(const GraphicsState& state, const Ink& ink, const IntRect& visible, Feed&& feed, GdipPageList::Call call);
    /// Leaves these pixels to the software renderer and records the call.
    void Leave(const GraphicsState& state, const IntRect& visible, GdipPageList::Call call);
    void PaintOne(const GraphicsState& state, const Path& path, const Ink& ink, const ImageInk* mask);
    void FeedPath(const Shape& shape, const Matrix& transform, bool snap, GdipPath& sink);

    GdipDevice m_device;
    Matrix m_toPage{};
    const BitmapTargetMaker m_makeTarget;

    // Valid while painting.
    std::unique_ptr<GdipGraphics> m_graphics;
    std::vector<GdipSubTarget> m_targets; // the page, then the open groups
    GdipPageList m_page;
    Region m_left; // pixels left to the software renderer

    Rasterizer m_rasterizer; // for rectangles on whole pixels
    PenStorage m_pen;
    PathShape m_shape;
};

} // namespace Graphics
