// SPDX-License-Identifier: MIT
#include "SwRenderTarget.h"

#include "../Bitmaps/Bitmap.h"
#include "../Bitmaps/PixelTransfer.h"
#include "../Exception.h"
#include "../Geometry/DeviceFeed.h"
#include "../Geometry/Shape.h"
#include "../Paint/Brush.h"
#include "../Paint/Gradient.h"
#include "../Scan/DeviceFigures.h"
#include "../Scan/RectangleScanner.h"
#include "SwAssembly.h"
#include "SwBitmapColorSource.h"
#include "SwClear.h"
#include "SwInverter.h"
#include "SwPixelMath.h"
#include "SwPlaneColorSource.h"
#include "SwSolidColorSource.h"

namespace Graphics {
namespace {

[[nodiscard]] uint32_t Premultiply(uint32_t argb) noexcept {
    const uint32_t alpha = argb >> 24;
    if (alpha == 255) {
        return argb;
    }
    const auto channel = [&](int shift) { return ((argb >> shift & 255U) * (alpha + 1) >> 8) << shift; };
    return alpha << 24 | channel(16) | channel(8) | channel(0);
}

void MakeRowsOpaque(const SwTargetPlanes& planes, const IntRect& r) noexcept {
    for (int32_t y = r.top; planes.makesOpaque && y < r.bottom; ++y) {
        ActiveKernels().setOpaque(reinterpret_cast<uint32_t*>(planes.color + y * planes.colorStride) + r.left, nullptr,
                                  static_cast<size_t>(r.right - r.left));
    }
}

void FillGlyphRows(const SwTargetPlanes& planes, const IntRect& visible, const SwGlyph& glyph,
                   uint32_t color) noexcept {
    const SwKernels& kernels = ActiveKernels();
    const auto width = static_cast<size_t>(visible.right - visible.left);
    const auto row = [&](int32_t y) {
        return reinterpret_cast<uint32_t*>(planes.color + y * planes.colorStride) + visible.left;
    };
    for (int32_t y = visible.top; planes.makesOpaque && y < visible.bottom; ++y) {
        kernels.setOpaque(row(y), glyph.At(visible.left, y), width);
    }
    kernels.normalSolidBlock(row(visible.top), planes.colorStride, color, glyph.At(visible.left, visible.top),
                             static_cast<ptrdiff_t>(glyph.strideBytes), width,
                             static_cast<size_t>(visible.bottom - visible.top));
}

} // namespace

SwRenderTarget::SwRenderTarget(std::unique_ptr<SwSurface> surface) : m_surface(std::move(surface)) {}

SwRenderTarget::~SwRenderTarget() {
    if (m_painting) {
        try {
            m_surface->Abandon();
        } catch (...) { // nobody is left to be told
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
    m_painting = false;
    m_surface->EndPaint();
}

void SwRenderTarget::NoteOpaque(const IntRect& region) noexcept {
    if (m_layers.IsEmpty()) {
        m_basic.NoteOpaque(region);
    }
}

template <class MakeSource, class Cover>
void SwRenderTarget::Composite(const GraphicsState& state, const IntRect& visible, const SwMaskInput* extraMask,
                               MakeSource&& makeSource, Cover&& cover) {
    if (IsEmpty(visible)) {
        return;
    }
    const SwTargetPlanes planes = Current().Planes(visible);
    SwPipeLine pipeLine(ActiveKernels(), m_buffers, planes, visible);
    AssemblePipeLine(pipeLine, m_arena, state, Current().Clips().Current().get(), visible, extraMask);
    pipeLine.SetColorSource(*makeSource(visible));
    cover(pipeLine);
}

template <class MakeSource>
void SwRenderTarget::FillPath(const GraphicsState& state, const PathRef& path, bool snap, const SwMaskInput* extraMask,
                              MakeSource&& makeSource) {
    IntRect pixels;
    if (snap && path.figure != nullptr && SnapFigure(*path.figure, state.transform, m_area, pixels)) {
        state.CheckMasks();
        const IntRect visible = Visible(pixels);
        Composite(state, visible, extraMask, makeSource, [&](SwPipeLine& pipeLine) {
            pipeLine.Rectangle(visible.left, visible.top, visible.right, visible.bottom);
            if (pipeLine.Replaces()) {
                NoteOpaque(visible);
            }
        });
        return;
    }
    const Matrix transform = state.transform;
    Vertex a;
    Vertex b;
    if (!snap && path.figure != nullptr && UprightCorners(*path.figure, transform, a, b)) {
        state.CheckMasks();
        const IntRect visible = Visible(SampleRectangle::Box(a, b));
        SampleRectangle samples;
        if (samples.Set(a, b, m_area.top * 8, m_area.bottom * 8, visible)) {
            Composite(state, visible, extraMask, makeSource,
                      [&](SwPipeLine& pipeLine) { RectangleScanner(samples).Send(pipeLine); });
            return;
        }
    }
    const Shape& shape = m_shape.Of(path);
    if (shape.Empty()) {
        return;
    }
    state.CheckMasks();
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, transform, 0.0F)));
    Composite(state, visible, extraMask, makeSource, [&](SwPipeLine& pipeLine) {
        m_rasterizer.Begin(ToRect(m_area), visible, snap);
        FeedFill(shape, transform, m_rasterizer);
        m_rasterizer.Finish(pipeLine);
    });
}

bool SwRenderTarget::FillGlyph(const GraphicsState& state, const Shape& shape, const Brush& brush) {
    if (shape.Empty()) {
        return true;
    }
    state.CheckMasks();
    if (m_glyphs == nullptr) {
        m_glyphs = SwGlyphCache::Take();
    }
    SwGlyph glyph;
    if (!m_glyphs->Place(shape, state.transform, m_rasterizer, glyph)) {
        return false;
    }
    const IntRect visible = Visible(glyph.Box());
    if (IsEmpty(visible)) {
        return true;
    }
    if (brush.Kind() == kBrushSolid && IsPlain(state)) {
        // Most text: one call for all rows, without a pipeline.
        FillGlyphRows(m_basic.Planes(visible), visible, glyph, SolidColorOf(static_cast<const SolidBrush&>(brush)));
        return true;
    }
    const ArenaScope scope(m_arena);
    const auto makeSource = [&](const IntRect& region) {
        return SwColorSource::CreateFromBrush(m_arena, brush, ToRect(region), state.transform);
    };
    Composite(state, visible, nullptr, makeSource,
              [&](SwPipeLine& pipeLine) { glyph.Send(visible, m_arena, pipeLine); });
    return true;
}

bool SwRenderTarget::IsPlain(const GraphicsState& state) noexcept {
    if (!m_layers.IsEmpty()) {
        return false;
    }
    return state.blendMode == 0 && !state.HasMasks() && !IsMasked(m_basic.Clips().Current().get());
}

bool SwRenderTarget::FillPlainRectangle(const GraphicsState& state, const BasicFigure& figure, uint32_t color) {
    const SwKernels& kernels = ActiveKernels();
    const auto paint = [&](const IntRect& r, uint32_t left, uint32_t inner, uint32_t right) {
        const SwTargetPlanes planes = m_basic.Planes(r);
        auto* const pixels = reinterpret_cast<uint32_t*>(planes.color + r.top * planes.colorStride) + r.left;
        const auto width = static_cast<size_t>(r.right - r.left);
        const auto height = static_cast<size_t>(r.bottom - r.top);
        if ((left & inner & right) >> 24 == 255) {
            kernels.fillBlock(pixels, planes.colorStride, color, width, height);
            NoteOpaque(r);
        } else {
            MakeRowsOpaque(planes, r);
            kernels.solidRectangle(pixels, planes.colorStride, left, inner, right, width, height);
        }
    };
    if (state.strokeAdjustment) {
        IntRect pixels;
        if (!SnapFigure(figure, state.transform, m_area, pixels)) {
            return false;
        }
        const IntRect visible = Visible(pixels);
        if (!IsEmpty(visible) && color >> 24 != 0) {
            paint(visible, color, color, color);
        }
        return true;
    }
    Vertex a;
    Vertex b;
    SampleRectangle samples;
    if (!UprightCorners(figure, state.transform, a, b) ||
        !samples.Set(a, b, m_area.top * 8, m_area.bottom * 8, Visible(SampleRectangle::Box(a, b)))) {
        return false;
    }
    if (samples.Empty() || color >> 24 == 0) {
        return true;
    }
    const IntRect pixels = samples.Pixels();
    const int32_t left = samples.Columns(pixels.left);
    const int32_t right = samples.Columns(pixels.right - 1);
    samples.ForRows([&](int32_t y0, int32_t y1, int32_t rows) {
        const auto scaled = [&](int32_t columns) {
            return columns * rows == 64 ? color : ScalePixel(color, ShapeOfSamples(columns * rows) + 1U);
        };
        paint({pixels.left, y0, pixels.right, y1}, scaled(left), scaled(8), scaled(right));
    });
    return true;
}

void SwRenderTarget::Fill(const GraphicsState& state, const PathRef& path, const Brush& brush, bool text) {
    if (text && path.shape != nullptr && FillGlyph(state, **path.shape, brush)) {
        return;
    }
    if (path.figure != nullptr && !text && brush.Kind() == kBrushSolid && IsPlain(state) &&
        FillPlainRectangle(state, *path.figure, SolidColorOf(static_cast<const SolidBrush&>(brush)))) {
        return;
    }
    const ArenaScope scope(m_arena);
    FillPath(state, path, state.strokeAdjustment && !text, nullptr, [&](const IntRect& visible) {
        return SwColorSource::CreateFromBrush(m_arena, brush, ToRect(visible), state.transform);
    });
}

void SwRenderTarget::Stroke(const GraphicsState& state, const PathRef& path, const Brush& brush, float width,
                            const StrokeStyle& style) {
    const ArenaScope scope(m_arena);
    const Shape& shape = m_shape.Of(path);
    if (shape.Empty()) {
        return;
    }
    state.CheckMasks();
    const IntRect visible = Visible(StrokeBox(shape, state.transform, width, style));
    if (IsEmpty(visible)) {
        return;
    }
    RasterizeStroke(m_rasterizer, shape, state.transform, style, width, state.strokeAdjustment, m_pen, m_area, visible);
    const SwTargetPlanes planes = Current().Planes(visible);
    SwPipeLine pipeLine(ActiveKernels(), m_buffers, planes, visible);
    AssemblePipeLine(pipeLine, m_arena, state, Current().Clips().Current().get(), visible, nullptr);
    pipeLine.SetColorSource(*SwColorSource::CreateFromBrush(m_arena, brush, ToRect(visible), state.transform));
    m_rasterizer.Finish(pipeLine);
}

void SwRenderTarget::Clip(const GraphicsState& state, const PathRef& path) {
    SwClipStack& clips = Current().Clips();
    const Shape& shape = m_shape.Of(path);
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, state.transform, 0.0F)));
    clips.Set(m_clips.Make(m_rasterizer, path, shape, state.transform, m_area, visible, clips.Current(),
                           state.strokeAdjustment));
}

void SwRenderTarget::DrawBitmap(const GraphicsState& state, const Bitmap& bitmap, const IntRect& source,
                                const Rect& destination, float opacity, uint32_t interpolation) {
    const ArenaScope scope(m_arena);
    const PixelView whole = bitmap.View();
    const IntRect part = Intersect(source, {0, 0, whole.width, whole.height});
    if (IsEmpty(part)) {
        return;
    }
    const bool isWhole = part == IntRect{0, 0, whole.width, whole.height};
    const Matrix place = PlaceImage(part, source, destination);
    const BasicFigure figure(BasicFigure::Kind::Rectangle, destination);
    FillPath(state, {nullptr, &figure}, state.strokeAdjustment, nullptr, [&](const IntRect&) {
        return CreateBitmapSource(m_arena, PixelTransfer::Part(whole, part), isWhole ? bitmap.DerivedToKeep() : nullptr,
                                  interpolation, GXExtendClamp, GXExtendClamp, opacity, Concat(place, state.transform),
                                  false);
    });
}

void SwRenderTarget::FillMask(const GraphicsState& state, const Bitmap& mask, const Brush& brush,
                              const Rect& destination, uint32_t interpolation) {
    const ArenaScope scope(m_arena);
    const PixelView view = mask.View();
    const IntRect whole{0, 0, view.width, view.height};
    const Matrix place = PlaceImage(whole, whole, destination);
    SwMaskInput input;
    input.source = CreateBitmapSource(m_arena, view, mask.DerivedToKeep(), interpolation, GXExtendClamp, GXExtendClamp,
                                      1.0F, Concat(place, state.transform), true);
    input.type = GXMaskTypeAlpha;
    const BasicFigure figure(BasicFigure::Kind::Rectangle, destination);
    FillPath(state, {nullptr, &figure}, state.strokeAdjustment, &input, [&](const IntRect& visible) {
        return SwColorSource::CreateFromBrush(m_arena, brush, ToRect(visible), state.transform);
    });
}

void SwRenderTarget::DrawGradient(const GraphicsState& state, std::shared_ptr<const Gradient> gradient, float opacity,
                                  const Matrix& m) {
    const ArenaScope scope(m_arena);
    state.CheckMasks();
    const IntRect visible = Visible(m_area);
    if (IsEmpty(visible)) {
        return;
    }
    GradientBrush brush(std::move(gradient));
    brush.opacity = opacity;
    brush.transform = m;
    const SwTargetPlanes planes = Current().Planes(visible);
    SwPipeLine pipeLine(ActiveKernels(), m_buffers, planes, visible);
    AssemblePipeLine(pipeLine, m_arena, state, Current().Clips().Current().get(), visible, nullptr);
    pipeLine.SetColorSource(*SwColorSource::CreateFromBrush(m_arena, brush, ToRect(visible), state.transform));
    pipeLine.Rectangle(visible.left, visible.top, visible.right, visible.bottom);
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
                Premultiply(argb));
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
    SwPipeLine pipeLine(ActiveKernels(), m_buffers, planes, visible);
    AssemblePipeLine(pipeLine, m_arena, state, target.Clips().Current().get(), visible, &shape);
    SwPlaneColorSource source(result, layer.Opacity());
    pipeLine.SetColorSource(source);
    // Nothing fails from here on: the group's colours are rewritten in place.
    layer.MakeResult(ActiveKernels(), visible);
    pipeLine.Rectangle(visible.left, visible.top, visible.right, visible.bottom);
}

void SwRenderTarget::InvertRect(const Matrix& transform, const Rect& rect) {
    const BasicFigure figure(BasicFigure::Kind::Rectangle, rect);
    const Shape& shape = m_shape.Of({nullptr, &figure});
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, transform, 0.0F)));
    if (IsEmpty(visible)) {
        return;
    }
    const SwTargetPlanes planes = Current().Planes(visible);
    SwInverter inverter(planes, visible, Current().Clips().Current().get());
    m_rasterizer.Begin(ToRect(m_area), visible, true);
    FeedFill(shape, transform, m_rasterizer);
    m_rasterizer.Finish(inverter);
}

void SwRenderTarget::InvertLine(const Matrix& transform, const Point& from, const Point& to) {
    const Point a = Map(transform, from);
    const Point b = Map(transform, to);
    const IntRect visible = Visible(PixelInverter::LineBox(a, b));
    if (IsEmpty(visible)) {
        return;
    }
    const SwTargetPlanes planes = Current().Planes(visible);
    SwInverter(planes, visible, Current().Clips().Current().get()).Line(a, b);
}

} // namespace Graphics
