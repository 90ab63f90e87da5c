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
    if (IsPainting()) {
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
    try {
        m_basic.Open(pixels, Cached());
    } catch (...) {
        m_surface->Abandon();
        throw;
    }
    StartPainting();
}

void SwRenderTarget::EndPaint() {
    CloseLayers();
    m_layers.Trim();
    m_clips.Forget();
    m_basic.Close();
    m_clips.Pool().Trim();
    m_glyphs.reset();
    m_rasterizer.Trim();
    m_pen.Trim();
    StopPainting();
    m_surface->EndPaint();
}

void SwRenderTarget::PushState() { Current().PushState(); }

void SwRenderTarget::PopState() { Current().PopState(); }

IntRect SwRenderTarget::Visible(SwSubTarget& target, const IntRect& region) noexcept {
    const IntRect visible = Intersect(region, target.Bounds());
    return target.State().clip ? Intersect(visible, target.State().clip->Box()) : visible;
}

void SwRenderTarget::NoteOpaque(const IntRect& region) noexcept {
    if (m_layers.IsEmpty()) {
        m_basic.NoteOpaque(region);
    }
}

template <class MakeSource, class Cover>
void SwRenderTarget::Composite(const IntRect& visible, const SwMaskInput* extraMask, MakeSource&& makeSource,
                               Cover&& cover) {
    if (IsEmpty(visible)) {
        return;
    }
    const SwTargetPlanes planes = Current().Planes(visible);
    SwPipeLine pipeLine(ActiveKernels(), m_buffers, planes, visible);
    AssemblePipeLine(pipeLine, m_arena, State(), visible, extraMask);
    pipeLine.SetColorSource(*makeSource(visible));
    cover(pipeLine);
}

template <class MakeSource>
void SwRenderTarget::FillPath(const PathRef& path, bool snap, const SwMaskInput* extraMask, MakeSource&& makeSource) {
    IntRect pixels;
    if (snap && path.figure != nullptr && SnapFigure(*path.figure, State().transform, m_area, pixels)) {
        CheckMasks();
        const IntRect visible = Visible(pixels);
        Composite(visible, extraMask, makeSource, [&](SwPipeLine& pipeLine) {
            pipeLine.Rectangle(visible.left, visible.top, visible.right, visible.bottom);
            if (pipeLine.Replaces()) {
                NoteOpaque(visible);
            }
        });
        return;
    }
    const Matrix transform = State().transform;
    Vertex a;
    Vertex b;
    if (!snap && path.figure != nullptr && UprightCorners(*path.figure, transform, a, b)) {
        CheckMasks();
        const IntRect visible = Visible(SampleRectangle::Box(a, b));
        SampleRectangle samples;
        if (samples.Set(a, b, m_area.top * 8, m_area.bottom * 8, visible)) {
            Composite(visible, extraMask, makeSource,
                      [&](SwPipeLine& pipeLine) { RectangleScanner(samples).Send(pipeLine); });
            return;
        }
    }
    const Shape& shape = Resolve(path);
    if (shape.Empty()) {
        return;
    }
    CheckMasks();
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, transform, 0.0F)));
    Composite(visible, extraMask, makeSource, [&](SwPipeLine& pipeLine) {
        m_rasterizer.Begin(ToRect(m_area), visible, snap);
        FeedFill(shape, transform, m_rasterizer);
        m_rasterizer.Finish(pipeLine);
    });
}

bool SwRenderTarget::FillGlyph(const Shape& shape, const Brush& brush) {
    if (shape.Empty()) {
        return true;
    }
    CheckMasks();
    const SwState& state = State();
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
    if (brush.Kind() == kBrushSolid && IsPlain()) {
        // Most text: one call for all rows, without a pipeline.
        FillGlyphRows(m_basic.Planes(visible), visible, glyph, SolidColorOf(static_cast<const SolidBrush&>(brush)));
        return true;
    }
    const ArenaScope scope(m_arena);
    const auto makeSource = [&](const IntRect& region) {
        return SwColorSource::CreateFromBrush(m_arena, brush, ToRect(region), state.transform);
    };
    Composite(visible, nullptr, makeSource, [&](SwPipeLine& pipeLine) { glyph.Send(visible, m_arena, pipeLine); });
    return true;
}

bool SwRenderTarget::IsPlain() noexcept {
    if (!m_layers.IsEmpty()) {
        return false;
    }
    const SwState& state = m_basic.State();
    return state.blendMode == 0 && !state.shapeMask.IsSet() && !state.opacityMask.IsSet() &&
           !IsMasked(state.clip.get());
}

bool SwRenderTarget::FillPlainRectangle(const BasicFigure& figure, uint32_t color) {
    const SwState& state = m_basic.State();
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

void SwRenderTarget::Fill(const PathRef& path, const Brush& brush, bool text) {
    if (text && path.shape != nullptr && FillGlyph(**path.shape, brush)) {
        return;
    }
    if (path.figure != nullptr && !text && brush.Kind() == kBrushSolid && IsPlain() &&
        FillPlainRectangle(*path.figure, SolidColorOf(static_cast<const SolidBrush&>(brush)))) {
        return;
    }
    const ArenaScope scope(m_arena);
    FillPath(path, State().strokeAdjustment && !text, nullptr, [&](const IntRect& visible) {
        return SwColorSource::CreateFromBrush(m_arena, brush, ToRect(visible), State().transform);
    });
}

void SwRenderTarget::Stroke(const PathRef& path, const Brush& brush, float width, const StrokeStyle& style) {
    const ArenaScope scope(m_arena);
    const SwState& state = State();
    const Shape& shape = Resolve(path);
    if (shape.Empty()) {
        return;
    }
    CheckMasks();
    const IntRect visible = Visible(StrokeBox(shape, state.transform, width, style));
    if (IsEmpty(visible)) {
        return;
    }
    RasterizeStroke(m_rasterizer, shape, state.transform, style, width, state.strokeAdjustment, m_pen, m_area, visible);
    const SwTargetPlanes planes = Current().Planes(visible);
    SwPipeLine pipeLine(ActiveKernels(), m_buffers, planes, visible);
    AssemblePipeLine(pipeLine, m_arena, State(), visible, nullptr);
    pipeLine.SetColorSource(*SwColorSource::CreateFromBrush(m_arena, brush, ToRect(visible), state.transform));
    m_rasterizer.Finish(pipeLine);
}

void SwRenderTarget::Clip(const PathRef& path) {
    SwState& state = State();
    const Shape& shape = Resolve(path);
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, state.transform, 0.0F)));
    state.clip =
        m_clips.Make(m_rasterizer, path, shape, state.transform, m_area, visible, state.clip, state.strokeAdjustment);
}

void SwRenderTarget::DrawBitmap(const Bitmap& bitmap, const IntRect& source, const Rect& destination, float opacity,
                                uint32_t interpolation) {
    const ArenaScope scope(m_arena);
    const PixelView whole = bitmap.View();
    const IntRect part = Intersect(source, {0, 0, whole.width, whole.height});
    if (IsEmpty(part)) {
        return;
    }
    const bool isWhole = part == IntRect{0, 0, whole.width, whole.height};
    const Matrix place = PlaceImage(part, source, destination);
    const BasicFigure figure(BasicFigure::Kind::Rectangle, destination);
    FillPath({nullptr, &figure}, State().strokeAdjustment, nullptr, [&](const IntRect&) {
        return CreateBitmapSource(m_arena, PixelTransfer::Part(whole, part), isWhole ? bitmap.DerivedToKeep() : nullptr,
                                  interpolation, GXExtendClamp, GXExtendClamp, opacity,
                                  Concat(place, State().transform), false);
    });
}

void SwRenderTarget::FillMask(const Bitmap& mask, const Brush& brush, const Rect& destination, uint32_t interpolation) {
    const ArenaScope scope(m_arena);
    const PixelView view = mask.View();
    const IntRect whole{0, 0, view.width, view.height};
    const Matrix place = PlaceImage(whole, whole, destination);
    SwMaskInput input;
    input.source = CreateBitmapSource(m_arena, view, mask.DerivedToKeep(), interpolation, GXExtendClamp, GXExtendClamp,
                                      1.0F, Concat(place, State().transform), true);
    input.type = GXMaskTypeAlpha;
    const BasicFigure figure(BasicFigure::Kind::Rectangle, destination);
    FillPath({nullptr, &figure}, State().strokeAdjustment, &input, [&](const IntRect& visible) {
        return SwColorSource::CreateFromBrush(m_arena, brush, ToRect(visible), State().transform);
    });
}

void SwRenderTarget::DrawGradient(std::shared_ptr<const Gradient> gradient, float opacity, const Matrix& m) {
    const ArenaScope scope(m_arena);
    CheckMasks();
    const IntRect visible = Visible(m_area);
    if (IsEmpty(visible)) {
        return;
    }
    GradientBrush brush(std::move(gradient));
    brush.opacity = opacity;
    brush.transform = m;
    const SwTargetPlanes planes = Current().Planes(visible);
    SwPipeLine pipeLine(ActiveKernels(), m_buffers, planes, visible);
    AssemblePipeLine(pipeLine, m_arena, State(), visible, nullptr);
    pipeLine.SetColorSource(*SwColorSource::CreateFromBrush(m_arena, brush, ToRect(visible), State().transform));
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
    ClearPlanes(ActiveKernels(), Current().Planes(visible), visible, State().clip.get(), Premultiply(argb));
    if (argb >> 24 == 255 && !IsMasked(State().clip.get())) {
        NoteOpaque(visible);
    }
}

void SwRenderTarget::BeginLayer(const GXLayerDesc& desc) {
    const SwState& state = State();
    IntRect bounds = Visible(LayerBox(desc.bounds, state.transform, m_area));
    if (IsEmpty(bounds)) {
        bounds = {0, 0, 0, 0};
    }
    m_layers.Open(Current(), bounds, desc.isolated != 0, desc.knockout != 0, desc.opacity);
}

void SwRenderTarget::EndLayer() {
    if (m_layers.IsEmpty()) {
        GX_RAISE("Graphics::SwRenderTarget::EndLayer", "No layer is open");
    }
    CloseLayer();
}

void SwRenderTarget::CloseLayer() {
    SwLayerSubTarget& layer = m_layers.Top();
    if (!IsEmpty(layer.Touched())) {
        SwLayerSubTarget* const around = m_layers.BelowTop();
        DrawLayer(layer, around != nullptr ? static_cast<SwSubTarget&>(*around) : m_basic);
    }
    m_layers.Drop();
}

void SwRenderTarget::DrawLayer(SwLayerSubTarget& layer, SwSubTarget& target) {
    const ArenaScope scope(m_arena);
    CheckMasks(target.State());
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
    AssemblePipeLine(pipeLine, m_arena, target.State(), visible, &shape);
    SwPlaneColorSource source(result, layer.Opacity());
    pipeLine.SetColorSource(source);
    // Nothing fails from here on: the group's colours are rewritten in place.
    layer.MakeResult(ActiveKernels(), visible);
    pipeLine.Rectangle(visible.left, visible.top, visible.right, visible.bottom);
}

void SwRenderTarget::InvertRect(const Rect& rect) {
    const BasicFigure figure(BasicFigure::Kind::Rectangle, rect);
    const Shape& shape = Resolve({nullptr, &figure});
    const Matrix transform = State().transform;
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, transform, 0.0F)));
    if (IsEmpty(visible)) {
        return;
    }
    const SwTargetPlanes planes = Current().Planes(visible);
    SwInverter inverter(planes, visible, State().clip.get());
    m_rasterizer.Begin(ToRect(m_area), visible, true);
    FeedFill(shape, transform, m_rasterizer);
    m_rasterizer.Finish(inverter);
}

void SwRenderTarget::InvertLine(const Point& from, const Point& to) {
    const Matrix transform = State().transform;
    const Point a = Map(transform, from);
    const Point b = Map(transform, to);
    const IntRect visible = Visible(PixelInverter::LineBox(a, b));
    if (IsEmpty(visible)) {
        return;
    }
    const SwTargetPlanes planes = Current().Planes(visible);
    SwInverter(planes, visible, State().clip.get()).Line(a, b);
}

} // namespace Graphics
