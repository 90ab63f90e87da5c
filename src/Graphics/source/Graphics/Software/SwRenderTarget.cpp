// SPDX-License-Identifier: MIT
#include "SwRenderTarget.h"

#include "../Exception.h"
#include "../Geometry/DeviceFeed.h"
#include "../Pixels/PixelMath.h"
#include "../Scan/DeviceFigures.h"
#include "../Sources/StillPixels.h"
#include "../Sources/SwBitmapColorSource.h"
#include "SwAssembly.h"
#include "SwClear.h"
#include "SwInverter.h"
#include "SwPlaneColorSource.h"

namespace Graphics {
namespace {

void FillGlyphRows(const SwTargetPlanes& planes, const IntRect& visible, const GlyphCoverage& glyph,
                   uint32_t color) noexcept {
    const RowKernels& kernels = ActiveKernels();
    const uint8_t* shape = glyph.At(visible.left, visible.top);
    const auto stride = static_cast<ptrdiff_t>(glyph.strideBytes);
    MakeRowsOpaque(kernels, planes, visible, shape, stride);
    kernels.normalSolidBlock(PixelAt(planes, visible.left, visible.top), planes.colorStride, color, shape, stride,
                             static_cast<size_t>(visible.right - visible.left),
                             static_cast<size_t>(visible.bottom - visible.top));
}

} // namespace

SwRenderTarget::SwRenderTarget(std::unique_ptr<SwSurface> surface) : m_surface(std::move(surface)) {}

SwRenderTarget::~SwRenderTarget() {
    if (m_painting) {
        try {
            m_surface->Abandon();
        } catch (...) { // a destructor cannot report errors
        }
    }
}

GXPixelFormat SwRenderTarget::GetPixelFormat() const { return m_surface->GetPixelFormat(); }

Size SwRenderTarget::GetSize() const { return m_surface->GetSize(); }

SwSubTarget& SwRenderTarget::Current() noexcept {
    if (m_layers.IsEmpty()) {
        return m_basic;
    }
    return m_layers.Top();
}

void SwRenderTarget::BeginPaint() {
    m_surface->UpdateSurface();
    const GXPixelFormat format = m_surface->GetPixelFormat();
    if (format != GXPixelFormatPBGRA32 && format != GXPixelFormatBGRX32) {
        GX_RAISE("Graphics::SwRenderTarget::BeginPaint", "Unsuported pixel format");
    }
    const PixelView pixels = m_surface->BeginPaint();
    m_area = {0, 0, pixels.width, pixels.height};
    m_basic.Open(pixels);
    m_painting = true;
}

void SwRenderTarget::EndPaint() {
    while (!m_layers.IsEmpty()) {
        m_layers.Drop();
    }
    m_layers.Trim();
    m_clips.Forget();
    m_basic.Close();
    m_clips.Pool().Trim();
    m_glyphs.reset();
    m_rasterizer.Trim();
    m_pen.Trim();
    m_painting = false;
    m_surface->EndPaint();
}

void SwRenderTarget::NoteOpaque(const IntRect& region) noexcept {
    if (m_layers.IsEmpty()) {
        m_basic.NoteOpaque(region);
    }
}

template <class Cover> void SwRenderTarget::Composite(const Draw& draw, const IntRect& visible, Cover&& cover) {
    if (IsEmpty(visible)) {
        return;
    }
    const ArenaScope scope(m_arena);
    SwSubTarget& target = Current();
    const SwTargetPlanes planes = target.Planes(visible);
    const WrittenPixels written = WrittenBy(planes, visible);
    SwMaskInput mask;
    if (draw.mask != nullptr) {
        mask.source = CreateBitmapSource(m_arena, draw.mask->Place(draw.transform, true), &written);
        mask.type = GXMaskTypeAlpha;
    }
    SwColorSource& source = *SwColorSource::Create(m_arena, draw.ink, ToRect(visible), draw.transform, &written);
    RunPipeLine(
        m_buffers, m_arena,
        {draw.state, target.Clips().Current().get(), planes, visible, source, draw.mask != nullptr ? &mask : nullptr},
        cover);
}

inline bool SwRenderTarget::IsPlain(const Draw& draw, uint32_t& color) noexcept {
    const auto* solid = std::get_if<SolidInk>(&draw.ink);
    if (solid == nullptr || draw.mask != nullptr || draw.state.blendMode != 0 || draw.state.HasMasks() ||
        !m_layers.IsEmpty() || IsMasked(m_basic.Clips().Current().get())) {
        return false;
    }
    color = PremultiplyPixel(solid->argb);
    return true;
}

void SwRenderTarget::PaintPixels(const IntRect& r, uint32_t color) {
    const RowKernels& kernels = ActiveKernels();
    const SwTargetPlanes& planes = m_basic.Ready(r);
    uint32_t* const pixels = PixelAt(planes, r.left, r.top);
    const auto width = static_cast<size_t>(r.right - r.left);
    const auto height = static_cast<size_t>(r.bottom - r.top);
    if (color >> 24 == 255) {
        kernels.fillBlock(pixels, planes.colorStride, color, width, height);
        NoteOpaque(r);
    } else {
        MakeRowsOpaque(kernels, planes, r);
        kernels.solidRectangle(pixels, planes.colorStride, color, color, color, width, height);
    }
}

void SwRenderTarget::PaintPlain(const DeviceRectangle& rectangle, uint32_t color) {
    if (color >> 24 == 0 || IsEmpty(rectangle.Pixels())) {
        return;
    }
    if (rectangle.IsWhole()) {
        PaintPixels(rectangle.Pixels(), color);
        return;
    }
    const SampleRectangle& samples = rectangle.Samples();
    if (samples.Empty()) {
        return;
    }
    const IntRect r = samples.Pixels();
    if (samples.OnPixels()) {
        PaintPixels(r, color);
        return;
    }
    const RowKernels& kernels = ActiveKernels();
    const SwTargetPlanes& planes = m_basic.Ready(r);
    MakeRowsOpaque(kernels, planes, r);
    kernels.solidSamples(PixelAt(planes, r.left, r.top), planes.colorStride, color, samples.Frame(),
                         static_cast<size_t>(r.right - r.left));
    if (color >> 24 == 255) {
        NoteOpaque(r);
    }
}

inline void SwRenderTarget::PaintFigure(const Draw& draw, const BasicFigure& figure) {
    const bool snap = draw.state.strokeAdjustment;
    uint32_t color = 0;
    const bool isPlain = IsPlain(draw, color);
    DeviceRectangle rectangle;
    if (!rectangle.Set(figure, draw.transform, m_area, snap, isPlain, [&](const IntRect& r) { return Visible(r); })) {
        PaintShape(draw, m_shape.Of(figure), snap);
        return;
    }
    if (isPlain) {
        PaintPlain(rectangle, color);
        return;
    }
    Composite(draw, rectangle.Pixels(), [&](SwPipeLine& pipeLine) {
        rectangle.Send(pipeLine);
        if (rectangle.IsWhole() && pipeLine.Replaces()) {
            NoteOpaque(rectangle.Pixels());
        }
    });
}

void SwRenderTarget::PaintShape(const Draw& draw, const Shape& shape, bool snap) {
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, draw.transform, 0.0F)));
    Composite(draw, visible, [&](SwPipeLine& pipeLine) {
        m_rasterizer.Begin(ToRect(m_area), visible, snap);
        FeedFill(shape, draw.transform, m_rasterizer);
        m_rasterizer.Finish(pipeLine);
    });
}

void SwRenderTarget::PaintOutline(const Draw& draw, const Shape& outline) {
    if (m_glyphs == nullptr) {
        m_glyphs = GlyphCache::Take();
    }
    GlyphCoverage glyph;
    if (!m_glyphs->Place(outline, draw.transform, m_rasterizer, glyph)) {
        PaintShape(draw, outline, false);
        return;
    }
    const IntRect visible = Visible(glyph.Box());
    if (IsEmpty(visible)) {
        return;
    }
    uint32_t color = 0;
    if (IsPlain(draw, color)) {
        // Fast path of most text: one call for all rows.
        FillGlyphRows(m_basic.Ready(visible), visible, glyph, color);
        return;
    }
    Composite(draw, visible, [&](SwPipeLine& pipeLine) { glyph.Send(visible, m_arena, pipeLine); });
}

void SwRenderTarget::Paint(const GraphicsState& state, const Path& path, const Ink& ink, const ImageInk* mask) {
    const Draw draw{state, state.transform, ink, mask};
    switch (path.GetKind()) {
    case Path::Kind::Figure:
        PaintFigure(draw, path.Figure());
        break;
    case Path::Kind::Shape:
        PaintShape(draw, *path.Stored(), state.strokeAdjustment);
        break;
    case Path::Kind::Outline:
        PaintOutline(draw, *path.Stored());
        break;
    case Path::Kind::Glyphs:
        path.Glyphs().ForEach(state.transform, [&](const Shape& outline, const Matrix& m) {
            PaintOutline({state, m, ink, mask}, outline);
        });
        break;
    case Path::Kind::Plane: {
        const IntRect visible = Visible(m_area);
        Composite(draw, visible, [&](SwPipeLine& pipeLine) {
            pipeLine.Rectangle(visible.left, visible.top, visible.right, visible.bottom);
        });
        break;
    }
    }
}

void SwRenderTarget::Stroke(const GraphicsState& state, const Path& path, const Ink& ink, float width,
                            const StrokeStyle& style) {
    const Shape& shape = m_shape.Of(path);
    const IntRect visible = Visible(StrokeBox(shape, state.transform, width, style));
    Composite({state, state.transform, ink}, visible, [&](SwPipeLine& pipeLine) {
        RasterizeStroke(m_rasterizer, shape, state.transform, style, width, state.strokeAdjustment, m_pen, m_area,
                        visible);
        m_rasterizer.Finish(pipeLine);
    });
}

void SwRenderTarget::Clip(const GraphicsState& state, const Path& path) {
    ClipStack& clips = Current().Clips();
    const Shape& shape = m_shape.Of(path);
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, state.transform, 0.0F)));
    clips.Set(m_clips.Make(m_rasterizer, path, shape, state.transform, m_area, visible, clips.Current(),
                           state.strokeAdjustment));
}

void SwRenderTarget::Clear(uint32_t argb) {
    const IntRect visible = Visible(m_area);
    if (IsEmpty(visible)) {
        return;
    }
    if (m_layers.IsEmpty() && GetPixelFormat() == GXPixelFormatBGRX32) {
        argb |= 0xFF000000U;
    }
    ClearPlanes(ActiveKernels(), Current().Planes(visible), visible, Current().Clips().Current().get(),
                PremultiplyPixel(argb));
    if (argb >> 24 == 255 && !IsMasked(Current().Clips().Current().get())) {
        NoteOpaque(visible);
    }
}

void SwRenderTarget::BeginLayer(const GraphicsState& state, const GXLayerDesc& desc) {
    IntRect bounds = Visible(LayerBox(desc.bounds, state.transform, m_area));
    if (IsEmpty(bounds)) {
        bounds = {0, 0, 0, 0};
    }
    m_layers.Open(Current(), bounds, desc.isolated != 0, desc.knockout != 0, desc.opacity);
}

void SwRenderTarget::EndLayer(const GraphicsState& around) {
    SwLayerSubTarget& layer = m_layers.Top();
    if (!IsEmpty(layer.Touched())) {
        SwLayerSubTarget* const below = m_layers.BelowTop();
        DrawLayer(around, layer, below != nullptr ? static_cast<SwSubTarget&>(*below) : m_basic);
    }
    m_layers.Drop();
}

void SwRenderTarget::DrawLayer(const GraphicsState& state, SwLayerSubTarget& layer, SwSubTarget& target) {
    const ArenaScope scope(m_arena);
    state.CheckMasks();
    const IntRect visible = Visible(target, layer.Touched());
    if (IsEmpty(visible)) {
        return;
    }
    const SwTargetPlanes result = layer.Result();
    SwMaskInput shape;
    shape.plane = result.shape;
    shape.planeStride = result.planeStride;
    shape.planeOrigin = result.origin;
    const SwTargetPlanes planes = target.Planes(visible);
    SwPlaneColorSource source(result, layer.Opacity());
    RunPipeLine(m_buffers, m_arena, {state, target.Clips().Current().get(), planes, visible, source, &shape},
                [&](SwPipeLine& pipeLine) {
                    // Nothing may fail from here on, since the group's colours are rewritten in place.
                    layer.MakeResult(ActiveKernels(), visible);
                    pipeLine.Rectangle(visible.left, visible.top, visible.right, visible.bottom);
                });
}

void SwRenderTarget::Invert(const Matrix& transform, const BasicFigure& figure) {
    const Inversion inversion(transform, figure, m_shape);
    const IntRect visible = Visible(inversion.Box());
    if (!IsEmpty(visible)) {
        const SwTargetPlanes planes = Current().Planes(visible);
        SwInverter inverter(planes, visible, Current().Clips().Current().get());
        inversion.Send(inverter, m_rasterizer, m_area, visible);
    }
}

} // namespace Graphics
