// SPDX-License-Identifier: MIT
// The drawing calls of the target: each is drawn at once and noted, or only noted.
#include "../Bitmaps/Bitmap.h"
#include "../Bitmaps/PixelTransfer.h"
#include "../Exception.h"
#include "../Geometry/DeviceFeed.h"
#include "../Scan/DeviceFigures.h"
#include "GdipBitmapColorSource.h"
#include "GdipRenderTarget.h"
#include "GdipShows.h"

namespace Graphics {
namespace {

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
    if (snap && IsUpright(shape, transform, a, b) &&
        Rasterizer::SnapRectangle(m_device.area, ToVertex(a), ToVertex(b), pixels)) {
        sink.SetFillRule(GXFillRuleNonZero);
        AddRectangle(sink, ToRect(pixels));
    } else {
        FeedFill(shape, transform, sink);
    }
}

void GdipRenderTarget::Fill(const PathRef& path, const Brush& brush, bool text) {
    const Shape& shape = Resolve(path);
    if (shape.Empty()) {
        return;
    }
    CheckMasks();
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, State().transform, 0.0F)));
    if (IsEmpty(visible)) {
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
    const GdipState& state = State();
    const Shape& shape = Resolve(path);
    if (shape.Empty()) {
        return;
    }
    CheckMasks();
    const IntRect visible = Visible(StrokeBox(shape, state.transform, width, style));
    if (IsEmpty(visible)) {
        return;
    }
    DrawWith(
        brush, visible,
        [&](GdipPath& sink) {
            static_cast<void>(FeedStroke(shape, state.transform, style, width, state.strokeAdjustment, m_pen,
                                         ToRect(m_device.area), ToRect(visible), sink));
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
