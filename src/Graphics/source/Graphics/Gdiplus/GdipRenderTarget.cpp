// SPDX-License-Identifier: MIT
#include "GdipRenderTarget.h"

#include "../Bitmaps/Bitmap.h"
#include "../Bitmaps/PixelTransfer.h"
#include "../Exception.h"
#include "../Geometry/DeviceFeed.h"
#include "../Scan/DeviceFigures.h"
#include "GdipBitmapColorSource.h"
#include "GdipFlattener.h"
#include "GdipShows.h"

namespace Graphics {
namespace {

constexpr uint32_t kMaskTypes = 4;
constexpr float kPointsPerInch = 72.0F;

/// How GDI+ samples the texture that stands for the brush.
[[nodiscard]] uint32_t InterpolationOf(const Brush& brush) noexcept {
    return brush.Kind() == kBrushBitmap ? static_cast<const BitmapBrush&>(brush).interpolation
                                        : static_cast<uint32_t>(GXInterpolationLinear);
}

/// The opposite corners of a shape that is one upright rectangle on the device.
[[nodiscard]] bool IsUpright(const Shape& shape, const Matrix& m, Point& a, Point& b) noexcept {
    if (shape.Figures().size() != 1) {
        return false;
    }
    const Figure& figure = shape.Figures().front();
    const auto points = figure.Points();
    const uint32_t lines = figure.SegmentCount();
    if (points.size() != lines + 1 || lines < 3 || lines > 4 ||
        (lines == 4 && (points[4].x != points[0].x || points[4].y != points[0].y))) {
        return false;
    }
    Point p[4];
    for (size_t i = 0; i < 4; ++i) {
        p[i] = Map(m, points[i]);
    }
    a = p[0];
    b = p[2];
    const auto inBand = [](const Point& q) {
        return std::fabs(q.x) < GdipPath::kBand && std::fabs(q.y) < GdipPath::kBand;
    };
    return inBand(a) && inBand(b) &&
           ((a.y == p[1].y && p[1].x == b.x && b.y == p[3].y && p[3].x == a.x) ||
            (a.x == p[1].x && p[1].y == b.y && b.x == p[3].x && p[3].y == a.y));
}

} // namespace

GdipRenderTarget::GdipRenderTarget(const GdipDevice& device, BitmapTargetMaker makeTarget) : m_makeTarget(makeTarget) {
    SetDevice(device);
}

GdipRenderTarget::~GdipRenderTarget() = default;

void GdipRenderTarget::SetDevice(const GdipDevice& device) noexcept {
    m_device = device;
    m_toPage = {kPointsPerInch / device.dpiX, 0.0F, 0.0F, kPointsPerInch / device.dpiY, 0.0F, 0.0F};
}

Size GdipRenderTarget::GetSize() const {
    return {static_cast<uint32_t>(m_device.area.right), static_cast<uint32_t>(m_device.area.bottom)};
}

// --- State ---

template <class Change> void GdipRenderTarget::ChangeState(const GdipPageList::Call& call, Change&& change) {
    change(m_cached);
    if (m_graphics != nullptr) {
        m_page.AddState(State().transform, call);
        change(State());
    }
}

Matrix GdipRenderTarget::GetTransform() const {
    return m_graphics != nullptr ? m_targets.back().State().transform : m_cached.transform;
}

void GdipRenderTarget::SetTransform(const Matrix& m) {
    m_cached.transform = m; // every call is noted with its matrix
    if (m_graphics != nullptr) {
        State().transform = m;
    }
}

void GdipRenderTarget::SetBlendMode(uint32_t mode) {
    ChangeState([mode](RenderTargetBase& t) { t.SetBlendMode(mode); }, [mode](auto& s) { s.blendMode = mode; });
}

void GdipRenderTarget::SetStrokeAdjustment(bool on) {
    ChangeState([on](RenderTargetBase& t) { t.SetStrokeAdjustment(on); }, [on](auto& s) { s.strokeAdjustment = on; });
}

void GdipRenderTarget::SetOpacityMask(uint32_t type, std::shared_ptr<const Brush> brush) {
    SetMask(&GdipState::opacityMask, &RenderTargetBase::SetOpacityMask, {std::move(brush), type, GetTransform()});
}

void GdipRenderTarget::SetShapeMask(uint32_t type, std::shared_ptr<const Brush> brush) {
    SetMask(&GdipState::shapeMask, &RenderTargetBase::SetShapeMask, {std::move(brush), type, GetTransform()});
}

void GdipRenderTarget::SetMask(GdipMask GdipState::*which, MaskSetter set, GdipMask mask) {
    if (mask.brush != nullptr) {
        mask.brush = m_page.Keep(*mask.brush);
    }
    m_cached.*which = mask;
    if (m_graphics != nullptr) {
        AddMask(set, mask);
        State().*which = std::move(mask);
    }
}

void GdipRenderTarget::AddMask(MaskSetter set, const GdipMask& mask) {
    m_page.AddState(mask.transform, [set, mask](RenderTargetBase& t) { (t.*set)(mask.type, mask.brush); });
}

void GdipRenderTarget::CheckMasks() {
    for (const GdipMask* mask : {&State().shapeMask, &State().opacityMask}) {
        if (mask->brush != nullptr && mask->type >= kMaskTypes) {
            GX_RAISE("Graphics::GdipRenderTarget::CheckMasks", "Unsupported soft mask type.");
        }
    }
}

// --- The bracket ---

void GdipRenderTarget::BeginPaint() {
    if (GdipBitmap::FormatOf(m_device.format) == 0) {
        GX_RAISE("Graphics::GdipRenderTarget::BeginPaint", "Unsuported pixel format");
    }
    try {
        m_graphics = Open();
        GdipState first = m_cached;
        first.clip = m_device.area;
        first.restore = m_graphics->Save();
        m_targets.emplace_back(first, true);
        m_page.AddState(kIdentity, [mode = first.blendMode, on = first.strokeAdjustment](RenderTargetBase& t) {
            t.SetBlendMode(mode);
            t.SetStrokeAdjustment(on);
        });
        AddMask(&RenderTargetBase::SetShapeMask, first.shapeMask);
        AddMask(&RenderTargetBase::SetOpacityMask, first.opacityMask);
    } catch (...) {
        Finish();
        throw;
    }
}

void GdipRenderTarget::Finish() noexcept {
    m_graphics.reset();
    Close();
    m_targets.clear();
    m_page.Clear();
    m_left = Region();
}

void GdipRenderTarget::EndPaint() {
    struct AtEnd {
        GdipRenderTarget& target;
        ~AtEnd() {
            target.Finish();
            target.m_cached = GdipState();
        }
    };
    const AtEnd atEnd{*this};
    // Groups that are still open end with the page.
    m_graphics->Restore(m_targets.front().First().restore);
    GdipFlattener(m_page, m_makeTarget)
        .Run(m_left, [this](const PixelView& pixels, const IntPoint& origin, const std::vector<IntRect>& rects) {
            Place(*m_graphics, pixels, origin, rects);
        });
}

void GdipRenderTarget::PushState() {
    const GdipGraphics::SavedState restore = m_graphics->Save();
    m_page.AddState(kIdentity, [](RenderTargetBase& t) { t.PushState(); });
    m_targets.back().PushState(restore);
}

void GdipRenderTarget::PopState() {
    const GdipGraphics::SavedState restore = m_targets.back().PopState();
    m_page.AddState(kIdentity, [](RenderTargetBase& t) { t.PopState(); });
    m_graphics->Restore(restore);
}

void GdipRenderTarget::BeginLayer(const GXLayerDesc& desc) {
    const GdipState state = State();
    GdipState first;
    first.transform = state.transform;
    first.strokeAdjustment = state.strokeAdjustment;
    first.clip = Intersect(LayerBox(desc.bounds, state.transform, m_device.area), state.clip);
    if (IsEmpty(first.clip)) {
        first.clip = {};
    }
    const bool transparent = DrawsItself() && desc.knockout == 0 && desc.opacity == 1.0F;
    m_targets.reserve(m_targets.size() + 1);
    first.restore = m_graphics->Save();
    if (transparent && !(first.clip == state.clip)) {
        GdipPath box(m_toPage);
        AddRectangle(box, ToRect(first.clip));
        m_graphics->IntersectClip(box);
    }
    m_page.AddState(first.transform, [desc](RenderTargetBase& t) { t.BeginLayer(desc); });
    m_targets.emplace_back(first, transparent);
}

void GdipRenderTarget::EndLayer() {
    if (m_targets.size() < 2) {
        GX_RAISE("Graphics::GdipRenderTarget::EndLayer", "No layer is open");
    }
    const GdipGraphics::SavedState restore = m_targets.back().First().restore;
    m_targets.pop_back();
    m_page.AddState(State().transform, [](RenderTargetBase& t) { t.EndLayer(); });
    m_graphics->Restore(restore);
    CheckMasks();
}

// --- Drawing ---

const Shape& GdipRenderTarget::Resolve(const PathRef& path) {
    if (path.shape != nullptr) {
        return **path.shape;
    }
    m_figure.Clear();
    path.figure->Replay(m_figure);
    return m_figure;
}

IntRect GdipRenderTarget::Visible(const IntRect& pixels) noexcept { return Intersect(pixels, State().clip); }

bool GdipRenderTarget::DrawsItself() noexcept {
    const GdipState& state = State();
    return m_targets.back().Transparent() && state.blendMode == 0 && state.shapeMask.brush == nullptr &&
           state.opacityMask.brush == nullptr;
}

GdipShows GdipRenderTarget::Judge(const IntRect& visible) noexcept {
    return {m_device.blends, State().transform, visible};
}

void GdipRenderTarget::Leave(const IntRect& visible, GdipPageList::Call call) {
    m_page.Add(State().transform, visible, std::move(call));
    m_left = Region::Combine(m_left, Region(visible), RegionOp::Union);
}

template <class MakeSource, class Feed>
void GdipRenderTarget::Draw(const IntRect& visible, uint32_t interpolation, MakeSource&& makeSource, Feed&& feed,
                            GdipPageList::Call call) {
    GdipPath path(m_toPage);
    feed(path);
    const std::unique_ptr<GdipColorSource> source = makeSource();
    source->Check();
    m_page.Add(State().transform, visible, std::move(call));
    m_graphics->Fill(path, *source, interpolation);
}

template <class Feed>
void GdipRenderTarget::DrawWith(const Brush& brush, const IntRect& visible, Feed&& feed, GdipPageList::Call call) {
    if (!DrawsItself() || !Judge(visible).Shows(brush)) {
        Leave(visible, std::move(call));
        return;
    }
    const auto makeSource = [&] {
        return GdipColorSource::CreateFromBrush(brush, {State().transform, m_toPage, visible, m_makeTarget});
    };
    Draw(visible, InterpolationOf(brush), makeSource, feed, std::move(call));
}

void GdipRenderTarget::FeedPath(const Shape& shape, bool snap, GdipPath& sink) {
    const Matrix& transform = State().transform;
    IntRect pixels;
    Point a, b;
    // Thin rules are at least one pixel, as on the screen.
    if (snap && IsUpright(shape, transform, a, b) && m_rasterizer.SnapRectangle(ToRect(m_device.area), a, b, pixels)) {
        sink.SetFillRule(GXFillRuleNonZero);
        AddRectangle(sink, ToRect(pixels));
    } else {
        FeedFill(shape, transform, sink);
    }
}

void GdipRenderTarget::Fill(const PathRef& path, const Brush& brush, bool text) {
    CheckMasks();
    const Shape& shape = Resolve(path);
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, State().transform, 0.0F)));
    if (shape.Empty() || IsEmpty(visible)) {
        return;
    }
    const bool snap = State().strokeAdjustment && !text;
    DrawWith(
        brush, visible, [&](GdipPath& sink) { FeedPath(shape, snap, sink); },
        [kept = GdipKeptPath(path), paint = m_page.Keep(brush), text](RenderTargetBase& t) {
            t.Fill(kept.Ref(), *paint, text);
        });
}

void GdipRenderTarget::Stroke(const PathRef& path, const Brush& brush, float width, const StrokeStyle& style) {
    CheckMasks();
    const GdipState& state = State();
    const Shape& shape = Resolve(path);
    const IntRect visible = Visible(StrokeBox(shape, state.transform, width, style));
    if (shape.Empty() || IsEmpty(visible)) {
        return;
    }
    DrawWith(
        brush, visible,
        [&](GdipPath& sink) {
            FeedStroke(shape, state.transform, style, width, state.strokeAdjustment, m_pen, ToRect(visible), sink);
        },
        [kept = GdipKeptPath(path), paint = m_page.Keep(brush), width, style](RenderTargetBase& t) {
            t.Stroke(kept.Ref(), *paint, width, style);
        });
}

void GdipRenderTarget::Clip(const PathRef& path) {
    GdipState& state = State();
    const Shape& shape = Resolve(path);
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, state.transform, 0.0F)));
    if (m_targets.back().Transparent()) {
        GdipPath figure(m_toPage);
        FeedPath(shape, state.strokeAdjustment, figure);
        m_graphics->IntersectClip(figure);
    }
    m_page.AddState(state.transform, [kept = GdipKeptPath(path)](RenderTargetBase& t) { t.Clip(kept.Ref()); });
    state.clip = shape.Empty() || IsEmpty(visible) ? IntRect{} : visible;
    state.clipped = true;
}

void GdipRenderTarget::DrawBitmap(const Bitmap& bitmap, const IntRect& source, const Rect& destination, float opacity,
                                  uint32_t interpolation) {
    CheckMasks();
    const PixelView whole = bitmap.View();
    const IntRect part = Intersect(source, {0, 0, whole.width, whole.height});
    const BasicFigure figure(BasicFigure::Kind::Rectangle, destination);
    const PathRef path{nullptr, &figure};
    const Shape& shape = Resolve(path);
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, State().transform, 0.0F)));
    if (IsEmpty(part) || IsEmpty(visible)) {
        return;
    }
    GdipPageList::Call call = [kept = m_page.Keep(bitmap), source, destination, opacity,
                               interpolation](RenderTargetBase& t) {
        t.DrawBitmap(*kept, source, destination, opacity, interpolation);
    };
    const PixelView pixels = PixelTransfer::Part(whole, part);
    const Matrix place = PlaceImage(part, source, destination);
    // Beyond the bitmap its edge goes on, which no texture does that is good at the edge itself.
    if (!DrawsItself() || !(part == source) ||
        !Judge(visible).Shows(pixels, opacity, interpolation, Concat(place, State().transform))) {
        Leave(visible, std::move(call));
        return;
    }
    const auto makeSource = [&] {
        // Mirrored beyond its edges: a clamped texture fades out there.
        return std::make_unique<GdipBitmapColorSource>(
            pixels, bitmap.DpiX(), bitmap.DpiY(), opacity, Concat(Concat(place, State().transform), m_toPage),
            static_cast<uint32_t>(GXExtendMirror), static_cast<uint32_t>(GXExtendMirror));
    };
    const bool snap = State().strokeAdjustment;
    Draw(
        visible, interpolation, makeSource, [&](GdipPath& sink) { FeedPath(shape, snap, sink); }, std::move(call));
}

void GdipRenderTarget::FillMask(const Bitmap& mask, const Brush& brush, const Rect& destination,
                                uint32_t interpolation) {
    CheckMasks();
    const BasicFigure figure(BasicFigure::Kind::Rectangle, destination);
    const IntRect visible = Visible(RoundOut(DeviceBox(Resolve({nullptr, &figure}), State().transform, 0.0F)));
    if (!IsEmpty(visible)) {
        Leave(visible, [kept = m_page.Keep(mask), paint = m_page.Keep(brush), destination,
                        interpolation](RenderTargetBase& t) { t.FillMask(*kept, *paint, destination, interpolation); });
    }
}

void GdipRenderTarget::DrawGradient(std::shared_ptr<const Gradient> gradient, float opacity, const Matrix& m) {
    CheckMasks();
    const IntRect visible = State().clip;
    if (IsEmpty(visible)) {
        return;
    }
    GradientBrush brush(std::move(gradient));
    brush.opacity = opacity;
    brush.transform = m;
    DrawWith(
        brush, visible,
        [&](GdipPath& sink) {
            sink.SetFillRule(GXFillRuleNonZero);
            AddRectangle(sink, ToRect(visible));
        },
        [brush](RenderTargetBase& t) { t.DrawGradient(brush.gradient, brush.opacity, brush.transform); });
}

void GdipRenderTarget::Clear(uint32_t argb) {
    const IntRect visible = State().clip;
    if (IsEmpty(visible)) {
        return;
    }
    GdipPageList::Call call = [argb](RenderTargetBase& t) { t.Clear(argb); };
    if (m_targets.size() > 1) {
        Leave(visible, std::move(call));
        return;
    }
    m_page.Add(State().transform, visible, std::move(call));
    m_graphics->Clear(argb | 0xFF000000U); // paper stays opaque
    if (!State().clipped) {
        m_left = Region(); // nothing is seen of what lies below
    }
}

void GdipRenderTarget::InvertRect(const Rect& rect) {
    const BasicFigure figure(BasicFigure::Kind::Rectangle, rect);
    const IntRect visible = Visible(RoundOut(DeviceBox(Resolve({nullptr, &figure}), State().transform, 0.0F)));
    if (!IsEmpty(visible)) {
        Leave(visible, [rect](RenderTargetBase& t) { t.InvertRect(rect); });
    }
}

void GdipRenderTarget::InvertLine(const Point& from, const Point& to) {
    const BasicFigure figure(BasicFigure::Kind::Line, {from.x, from.y, to.x, to.y});
    const IntRect visible = Visible(RoundOut(DeviceBox(Resolve({nullptr, &figure}), State().transform, 0.0F)));
    if (!IsEmpty(visible)) {
        Leave(visible, [from, to](RenderTargetBase& t) { t.InvertLine(from, to); });
    }
}

} // namespace Graphics
