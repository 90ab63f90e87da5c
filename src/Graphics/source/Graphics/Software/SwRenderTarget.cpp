// SPDX-License-Identifier: MIT
#include "SwRenderTarget.h"

#include <algorithm>
#include <cmath>

#include "../Bitmaps/Bitmap.h"
#include "../Bitmaps/PixelTransfer.h"
#include "../Exception.h"
#include "../Geometry/DeviceFeed.h"
#include "../Geometry/Shape.h"
#include "../Geometry/StrokeStyle.h"
#include "../Paint/Brush.h"
#include "../Paint/Gradient.h"
#include "SwBitmapColorSource.h"
#include "SwInverter.h"
#include "SwPlaneColorSource.h"

namespace Graphics {
namespace {

/// Whole pixels around a box, one more on every side: a degenerate rectangle is one pixel wide, and snapping may move
/// an edge. NaN sides go as far as they can.
[[nodiscard]] IntRect RoundOut(const Rect& r) noexcept {
    static constexpr float kFar = 1.0e9F;
    const auto low = [](float v) {
        return v > -kFar ? SaturatingTruncate(std::floor(std::min(v, kFar))) - 1 : -1000000001;
    };
    const auto high = [](float v) {
        return v < kFar ? SaturatingTruncate(std::ceil(std::max(v, -kFar))) + 1 : 1000000001;
    };
    return {low(r.left), low(r.top), high(r.right), high(r.bottom)};
}

[[nodiscard]] Rect ToRect(const IntRect& r) noexcept {
    return {static_cast<float>(r.left), static_cast<float>(r.top), static_cast<float>(r.right),
            static_cast<float>(r.bottom)};
}

/// Device box of a path under a matrix; the widest box where a coordinate is not finite.
[[nodiscard]] Rect DeviceBox(const Shape& path, const Matrix& m, float reach) noexcept {
    constexpr float kFar = 1.0e9F;
    const Rect box = path.ControlBox();
    const Rect mapped = MapBox(m, {box.left - reach, box.top - reach, box.right + reach, box.bottom + reach});
    const bool finite = path.AllFinite() && std::isfinite(mapped.left) && std::isfinite(mapped.top) &&
                        std::isfinite(mapped.right) && std::isfinite(mapped.bottom);
    return finite ? mapped : Rect{-kFar, -kFar, kFar, kFar};
}

/// How far a stroke's outline may lie from its path, in user units.
[[nodiscard]] float StrokeReach(float width, const StrokeStyle& style) noexcept {
    constexpr float kDiagonal = 1.4142136F; // of a square cap
    const float factor = style.join == GXLineJoinMiter ? std::max(style.miterLimit, kDiagonal) : kDiagonal;
    return width * 0.5F * factor;
}

[[nodiscard]] uint32_t Premultiply(uint32_t argb) noexcept {
    const uint32_t alpha = argb >> 24;
    if (alpha == 255) {
        return argb;
    }
    const auto channel = [&](int shift) { return ((argb >> shift & 255U) * (alpha + 1) >> 8) << shift; };
    return alpha << 24 | channel(16) | channel(8) | channel(0);
}

} // namespace

/// Ends the objects of a draw call, also when it fails.
class SwRenderTarget::DrawScope {
public:
    explicit DrawScope(Arena& arena) noexcept : m_arena(arena) {}
    DrawScope(const DrawScope&) = delete;
    DrawScope& operator=(const DrawScope&) = delete;
    ~DrawScope() { m_arena.Reset(); }

private:
    Arena& m_arena;
};

/// A clip that was built not long ago, with everything it was made from.
struct SwRenderTarget::ClipKey {
    SwClipRef parent;
    SwClipRef clip;
    std::shared_ptr<const Shape> shape;
    size_t figureCount;
    uint32_t fillRule;
    Matrix transform;
    IntRect visible;
    bool snap;
};

SwRenderTarget::SwRenderTarget(std::unique_ptr<SwSurface> surface) : m_surface(std::move(surface)) {}

SwRenderTarget::~SwRenderTarget() = default;

GXPixelFormat SwRenderTarget::GetPixelFormat() const { return m_surface->GetPixelFormat(); }

Size SwRenderTarget::GetSize() const { return m_surface->GetSize(); }

SwSubTarget& SwRenderTarget::Current() noexcept {
    if (m_layers.empty()) {
        return m_basic;
    }
    return *m_layers.back();
}

const Shape& SwRenderTarget::Resolve(const PathRef& path) {
    if (path.shape != nullptr) {
        return **path.shape;
    }
    m_figure.Clear();
    path.figure->Replay(m_figure);
    return m_figure;
}

bool SwRenderTarget::SnapFigure(const BasicFigure& figure, IntRect& pixels) {
    const Matrix& m = State().transform;
    if (figure.GetKind() != BasicFigure::Kind::Rectangle || m.m01 != 0.0F || m.m10 != 0.0F) {
        return false;
    }
    const Rect& r = figure.Box();
    const Point a = Map(m, {r.left, r.top});
    const Point b = Map(m, {r.right, r.bottom});
    // NaN compares false.
    const auto inBand = [](float v) { return std::fabs(v) < kDeviceBand; };
    return inBand(a.x) && inBand(a.y) && inBand(b.x) && inBand(b.y) &&
           m_rasterizer.SnapRectangle(ToRect(m_area), a, b, pixels);
}

template <class Change> void SwRenderTarget::ChangeState(Change&& change) {
    change(m_cached);
    if (m_painting) {
        change(State());
    }
}

Matrix SwRenderTarget::GetTransform() const {
    return m_painting ? const_cast<SwRenderTarget*>(this)->State().transform : m_cached.transform;
}

void SwRenderTarget::SetTransform(const Matrix& m) {
    ChangeState([&](SwState& s) { s.transform = m; });
}

void SwRenderTarget::SetBlendMode(uint32_t mode) {
    ChangeState([&](SwState& s) { s.blendMode = mode; });
}

void SwRenderTarget::SetStrokeAdjustment(bool on) {
    ChangeState([&](SwState& s) { s.strokeAdjustment = on; });
}

void SwRenderTarget::SetOpacityMask(uint32_t type, std::shared_ptr<const Brush> brush) {
    const SwSoftMask mask{std::move(brush), type, GetTransform()};
    ChangeState([&](SwState& s) { s.opacityMask = mask; });
}

void SwRenderTarget::SetShapeMask(uint32_t type, std::shared_ptr<const Brush> brush) {
    const SwSoftMask mask{std::move(brush), type, GetTransform()};
    ChangeState([&](SwState& s) { s.shapeMask = mask; });
}

void SwRenderTarget::BeginPaint() {
    const GXPixelFormat format = m_surface->GetPixelFormat();
    if (format != GXPixelFormatPBGRA32 && format != GXPixelFormatBGRX32) {
        GX_RAISE("Graphics::SwRenderTarget::BeginPaint", "Unsuported pixel format");
    }
    const PixelView pixels = m_surface->BeginPaint();
    m_area = {0, 0, pixels.width, pixels.height};
    m_basic.Open(pixels.data, pixels.strideBytes, m_area, m_cached);
    if (format == GXPixelFormatBGRX32) {
        // With 255 in every fourth byte the composites for pixels with alpha keep it so.
        for (int32_t y = 0; y < pixels.height; ++y) {
            ActiveKernels().setOpaque(reinterpret_cast<uint32_t*>(pixels.data + y * pixels.strideBytes),
                                      static_cast<size_t>(pixels.width));
        }
    }
    m_painting = true;
}

void SwRenderTarget::EndPaint() {
    const auto finish = [this]() noexcept {
        m_layers.clear();
        m_recentClips.clear();
        m_basic.Close();
        m_cached = SwState();
        m_painting = false;
    };
    try {
        while (!m_layers.empty()) {
            CloseLayer();
        }
    } catch (...) {
        finish();
        m_surface->EndPaint();
        throw;
    }
    finish();
    m_surface->EndPaint();
}

void SwRenderTarget::PushState() { Current().PushState(); }

void SwRenderTarget::PopState() { Current().PopState(); }

IntRect SwRenderTarget::Visible(const IntRect& region) noexcept {
    SwSubTarget& target = Current();
    IntRect visible = Intersect(region, target.Bounds());
    if (target.State().clip) {
        visible = Intersect(visible, target.State().clip->Box());
    }
    return visible;
}

void SwRenderTarget::CheckMasks() {
    for (const SwSoftMask* mask : {&State().shapeMask, &State().opacityMask}) {
        if (mask->IsSet() && mask->type >= kMaskTypeCount) {
            GX_RAISE("Graphics::SwSoftMaskOp::SwSoftMaskOp", "Unsupported soft mask type.");
        }
    }
}

SwMaskInput SwRenderTarget::MaskInput(const SwSoftMask& mask, const IntRect& visible) {
    SwMaskInput input;
    input.source = SwColorSource::CreateFromBrush(m_arena, *mask.brush, ToRect(visible), mask.transform);
    input.type = mask.type;
    return input;
}

void SwRenderTarget::Assemble(SwPipeLine& pipeLine, const IntRect& visible, const SwMaskInput* extraMask) {
    const SwState& state = State();
    pipeLine.SetBlendMode(state.blendMode);
    if (state.shapeMask.IsSet()) {
        pipeLine.AddShapeMask(MaskInput(state.shapeMask, visible));
    }
    if (extraMask != nullptr) {
        pipeLine.AddShapeMask(*extraMask);
    }
    pipeLine.SetClip(state.clip.get());
    if (state.opacityMask.IsSet()) {
        pipeLine.SetOpacityMask(MaskInput(state.opacityMask, visible));
    }
}

template <class MakeSource>
void SwRenderTarget::FillPath(const PathRef& path, bool snap, const SwMaskInput* extraMask, MakeSource&& makeSource) {
    CheckMasks();
    const auto run = [&](const IntRect& visible, auto&& cover) {
        if (IsEmpty(visible)) {
            return;
        }
        const SwTargetPlanes planes = Current().Planes(visible);
        SwPipeLine pipeLine(ActiveKernels(), m_buffers, planes, visible);
        Assemble(pipeLine, visible, extraMask);
        pipeLine.SetColorSource(*makeSource(visible));
        cover(pipeLine, visible);
    };
    IntRect pixels;
    if (snap && path.figure != nullptr && SnapFigure(*path.figure, pixels)) {
        run(Visible(pixels), [](SwPipeLine& pipeLine, const IntRect& visible) {
            pipeLine.Rectangle(visible.left, visible.top, visible.right, visible.bottom);
        });
        return;
    }
    const Matrix transform = State().transform;
    const Shape& shape = Resolve(path);
    if (shape.Empty()) {
        return;
    }
    run(Visible(RoundOut(DeviceBox(shape, transform, 0.0F))), [&](SwPipeLine& pipeLine, const IntRect& visible) {
        m_rasterizer.Begin(ToRect(m_area), visible, snap);
        FeedFill(shape, transform, m_rasterizer);
        m_rasterizer.Finish(pipeLine);
    });
}

void SwRenderTarget::Fill(const PathRef& path, const Brush& brush, bool text) {
    const DrawScope scope(m_arena);
    FillPath(path, State().strokeAdjustment && !text, nullptr, [&](const IntRect& visible) {
        return SwColorSource::CreateFromBrush(m_arena, brush, ToRect(visible), State().transform);
    });
}

void SwRenderTarget::Stroke(const PathRef& path, const Brush& brush, float width, const StrokeStyle& style) {
    const DrawScope scope(m_arena);
    CheckMasks();
    const SwState& state = State();
    const Shape& shape = Resolve(path);
    if (shape.Empty()) {
        return;
    }
    // Two more pixels: the thinnest line is one wide, and adjustment moves edges by less than one.
    Rect box = DeviceBox(shape, state.transform, StrokeReach(width, style));
    box = {box.left - 2.0F, box.top - 2.0F, box.right + 2.0F, box.bottom + 2.0F};
    const IntRect visible = Visible(RoundOut(box));
    if (IsEmpty(visible)) {
        return;
    }
    m_rasterizer.Begin(ToRect(m_area), visible, state.strokeAdjustment);
    FeedStroke(shape, state.transform, style, width, state.strokeAdjustment, m_pen, ToRect(visible), m_rasterizer);
    const SwTargetPlanes planes = Current().Planes(visible);
    SwPipeLine pipeLine(ActiveKernels(), m_buffers, planes, visible);
    Assemble(pipeLine, visible, nullptr);
    pipeLine.SetColorSource(*SwColorSource::CreateFromBrush(m_arena, brush, ToRect(visible), state.transform));
    m_rasterizer.Finish(pipeLine);
}

void SwRenderTarget::Clip(const PathRef& path) {
    SwState& state = State();
    const bool snap = state.strokeAdjustment;
    const Shape& shape = Resolve(path);
    IntRect visible = Visible(RoundOut(DeviceBox(shape, state.transform, 0.0F)));
    if (shape.Empty() || IsEmpty(visible)) {
        visible = {0, 0, 0, 0};
    }
    // The same clip again, as hosts that save and restore state around every object ask for: built once.
    const auto figureCount = shape.Figures().size();
    const uint32_t rule = shape.FillRule();
    const auto same = [&](const ClipKey& key) {
        return path.shape != nullptr && key.shape == *path.shape && key.parent.get() == state.clip.get() &&
               key.figureCount == figureCount && key.fillRule == rule && key.snap == snap && key.visible == visible &&
               SameMatrix(key.transform, state.transform);
    };
    if (const auto found = std::find_if(m_recentClips.begin(), m_recentClips.end(), same);
        found != m_recentClips.end()) {
        state.clip = found->clip;
        return;
    }
    SwClipBuilder builder(m_clips, state.clip.get(), visible);
    if (!IsEmpty(visible)) {
        m_rasterizer.Begin(ToRect(m_area), visible, snap);
        FeedFill(shape, state.transform, m_rasterizer);
        m_rasterizer.Finish(builder);
    }
    SwClipRef clip = builder.Finish();
    if (path.shape != nullptr) {
        constexpr size_t kRecent = 8;
        ClipKey key{state.clip, clip, *path.shape, figureCount, rule, state.transform, visible, snap};
        if (m_recentClips.size() < kRecent) {
            m_recentClips.push_back(std::move(key));
        } else {
            m_recentClips[m_nextRecent++ % kRecent] = std::move(key);
        }
    }
    state.clip = std::move(clip);
}

void SwRenderTarget::DrawBitmap(const Bitmap& bitmap, const IntRect& source, const Rect& destination, float opacity,
                                uint32_t interpolation) {
    const DrawScope scope(m_arena);
    const PixelView whole = bitmap.View();
    const IntRect part = Intersect(source, {0, 0, whole.width, whole.height});
    if (IsEmpty(part)) {
        return;
    }
    const bool isWhole = part == IntRect{0, 0, whole.width, whole.height};
    // The source rectangle lies exactly on the destination.
    const float sx = (destination.right - destination.left) / static_cast<float>(source.right - source.left);
    const float sy = (destination.bottom - destination.top) / static_cast<float>(source.bottom - source.top);
    const Matrix place{sx,
                       0.0F,
                       0.0F,
                       sy,
                       destination.left + static_cast<float>(part.left - source.left) * sx,
                       destination.top + static_cast<float>(part.top - source.top) * sy};
    const BasicFigure figure(BasicFigure::Kind::Rectangle, destination);
    FillPath({nullptr, &figure}, State().strokeAdjustment, nullptr, [&](const IntRect&) {
        return CreateBitmapSource(m_arena, PixelTransfer::Part(whole, part), isWhole ? &bitmap.Derived() : nullptr,
                                  interpolation, GXExtendClamp, GXExtendClamp, opacity,
                                  Concat(place, State().transform), false);
    });
}

void SwRenderTarget::FillMask(const Bitmap& mask, const Brush& brush, const Rect& destination, uint32_t interpolation) {
    const DrawScope scope(m_arena);
    const PixelView view = mask.View();
    const Matrix place{(destination.right - destination.left) / static_cast<float>(view.width),
                       0.0F,
                       0.0F,
                       (destination.bottom - destination.top) / static_cast<float>(view.height),
                       destination.left,
                       destination.top};
    SwMaskInput input;
    input.source = CreateBitmapSource(m_arena, view, &mask.Derived(), interpolation, GXExtendClamp, GXExtendClamp, 1.0F,
                                      Concat(place, State().transform), true);
    input.type = GXMaskTypeAlpha;
    const BasicFigure figure(BasicFigure::Kind::Rectangle, destination);
    FillPath({nullptr, &figure}, State().strokeAdjustment, &input, [&](const IntRect& visible) {
        return SwColorSource::CreateFromBrush(m_arena, brush, ToRect(visible), State().transform);
    });
}

void SwRenderTarget::DrawGradient(std::shared_ptr<const Gradient> gradient, float opacity, const Matrix& m) {
    const DrawScope scope(m_arena);
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
    Assemble(pipeLine, visible, nullptr);
    pipeLine.SetColorSource(*SwColorSource::CreateFromBrush(m_arena, brush, ToRect(visible), State().transform));
    pipeLine.Rectangle(visible.left, visible.top, visible.right, visible.bottom);
}

void SwRenderTarget::Clear(uint32_t argb) {
    const IntRect visible = Visible(m_area);
    if (IsEmpty(visible)) {
        return;
    }
    if (m_layers.empty() && GetPixelFormat() == GXPixelFormatBGRX32) {
        argb |= 0xFF000000U;
    }
    Current().Clear(ActiveKernels(), visible, State().clip.get(), Premultiply(argb));
}

void SwRenderTarget::BeginLayer(const GXLayerDesc& desc) {
    const SwState& state = State();
    IntRect bounds = m_area;
    if (desc.bounds.left < desc.bounds.right && desc.bounds.top < desc.bounds.bottom) {
        const Rect box = MapBox(state.transform, desc.bounds);
        bounds = RoundOut({box.left + 1.0F, box.top + 1.0F, box.right - 1.0F, box.bottom - 1.0F});
    }
    bounds = Visible(bounds);
    if (m_spareLayers.empty()) {
        m_spareLayers.push_back(std::make_unique<SwLayerSubTarget>());
    }
    m_layers.reserve(m_layers.size() + 1);
    if (IsEmpty(bounds)) {
        bounds = {0, 0, 0, 0};
    }
    m_spareLayers.back()->Open(Current(), bounds, desc.isolated != 0, desc.knockout != 0, desc.opacity);
    m_layers.push_back(std::move(m_spareLayers.back()));
    m_spareLayers.pop_back();
}

void SwRenderTarget::EndLayer() {
    if (m_layers.empty()) {
        GX_RAISE("Graphics::SwRenderTarget::EndLayer", "No layer is open");
    }
    CloseLayer();
}

void SwRenderTarget::CloseLayer() {
    const DrawScope scope(m_arena);
    // Back among the spare ones however this ends.
    struct Keeper {
        std::vector<std::unique_ptr<SwLayerSubTarget>>& spare;
        std::unique_ptr<SwLayerSubTarget> layer;
        ~Keeper() {
            layer->Close();
            if (spare.size() < spare.capacity()) {
                spare.push_back(std::move(layer));
            }
        }
    } keeper{m_spareLayers, std::move(m_layers.back())};
    m_layers.pop_back();
    SwLayerSubTarget& layer = *keeper.layer;

    CheckMasks();
    const IntRect visible = Visible(layer.Touched());
    if (IsEmpty(visible)) {
        return;
    }
    layer.MakeResult(ActiveKernels());
    const SwTargetPlanes result = layer.Result();
    SwMaskInput shape;
    shape.plane = result.shape;
    shape.planeStride = result.planeStride;
    shape.planeOrigin = result.origin;
    const SwTargetPlanes planes = Current().Planes(visible);
    SwPipeLine pipeLine(ActiveKernels(), m_buffers, planes, visible);
    Assemble(pipeLine, visible, &shape);
    SwPlaneColorSource source(result, layer.Opacity());
    pipeLine.SetColorSource(source);
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
    const IntRect visible = Visible(m_area);
    if (IsEmpty(visible)) {
        return;
    }
    const Matrix transform = State().transform;
    const SwTargetPlanes planes = Current().Planes(visible);
    SwInverter(planes, visible, State().clip.get()).Line(Map(transform, from), Map(transform, to));
}

} // namespace Graphics
