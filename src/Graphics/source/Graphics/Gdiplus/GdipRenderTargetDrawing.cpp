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

bool GdipRenderTarget::DrawsItself(const GraphicsState& state) const noexcept {
    return m_targets.back().Transparent() && state.blendMode == 0 && !state.HasMasks();
}

GdipShows GdipRenderTarget::Judge(const GraphicsState& state, const IntRect& visible) const noexcept {
    return {m_device.blends, state.transform, visible};
}

void GdipRenderTarget::Leave(const GraphicsState& state, const IntRect& visible, GdipPageList::Call call) {
    m_page.Add(state, visible, std::move(call));
    m_left = Region::Combine(m_left, Region(visible), RegionOp::Union);
}

template <class MakeSource, class Feed>
void GdipRenderTarget::Draw(const GraphicsState& state, const IntRect& visible, uint32_t interpolation,
                            MakeSource&& makeSource, Feed&& feed, GdipPageList::Call call) {
    GdipPath path(m_toPage);
    feed(path);
    const std::unique_ptr<GdipColorSource> source = makeSource();
    source->Check();
    m_page.Add(state, visible, std::move(call));
    m_graphics->Fill(path, *source, interpolation);
}

template <class Feed>
void GdipRenderTarget::DrawWith(const GraphicsState& state, const Brush& brush, const IntRect& visible, Feed&& feed,
                                GdipPageList::Call call) {
    if (!DrawsItself(state) || !Judge(state, visible).Shows(brush)) {
        Leave(state, visible, std::move(call));
        return;
    }
    const auto makeSource = [&] {
        return GdipColorSource::CreateFromBrush(brush, {state.transform, m_toPage, visible, m_makeTarget});
    };
    Draw(state, visible, InterpolationOf(brush), makeSource, feed, std::move(call));
}

void GdipRenderTarget::FeedPath(const Shape& shape, const Matrix& transform, bool snap, GdipPath& sink) {
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

void GdipRenderTarget::Fill(const GraphicsState& state, const PathRef& path, const Brush& brush, bool text) {
    const Shape& shape = m_shape.Of(path);
    if (shape.Empty()) {
        return;
    }
    state.CheckMasks();
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, state.transform, 0.0F)));
    if (IsEmpty(visible)) {
        return;
    }
    const bool snap = state.strokeAdjustment && !text;
    DrawWith(
        state, brush, visible, [&](GdipPath& sink) { FeedPath(shape, state.transform, snap, sink); },
        [kept = GdipKeptPath(path), paint = m_page.Keep(brush), text](RenderTargetBase& t, const GraphicsState& s) {
            t.Fill(s, kept.Ref(), *paint, text);
        });
}

void GdipRenderTarget::Stroke(const GraphicsState& state, const PathRef& path, const Brush& brush, float width,
                              const StrokeStyle& style) {
    const Shape& shape = m_shape.Of(path);
    if (shape.Empty()) {
        return;
    }
    state.CheckMasks();
    const IntRect visible = Visible(StrokeBox(shape, state.transform, width, style));
    if (IsEmpty(visible)) {
        return;
    }
    DrawWith(
        state, brush, visible,
        [&](GdipPath& sink) {
            static_cast<void>(FeedStroke(shape, state.transform, style, width, state.strokeAdjustment, m_pen,
                                         ToRect(m_device.area), ToRect(visible), sink));
        },
        [kept = GdipKeptPath(path), paint = m_page.Keep(brush), width,
         style](RenderTargetBase& t, const GraphicsState& s) { t.Stroke(s, kept.Ref(), *paint, width, style); });
}

void GdipRenderTarget::Clip(const GraphicsState& state, const PathRef& path) {
    const Shape& shape = m_shape.Of(path);
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, state.transform, 0.0F)));
    if (m_targets.back().Transparent()) {
        GdipPath figure(m_toPage);
        FeedPath(shape, state.transform, state.strokeAdjustment, figure);
        m_graphics->IntersectClip(figure);
    }
    m_page.AddScope(
        state, [kept = GdipKeptPath(path)](RenderTargetBase& t, const GraphicsState& s) { t.Clip(s, kept.Ref()); });
    GdipClip& clip = CurrentClip();
    clip.box = shape.Empty() || IsEmpty(visible) ? IntRect{} : visible;
    clip.isCut = true;
}

void GdipRenderTarget::DrawBitmap(const GraphicsState& state, const Bitmap& bitmap, const IntRect& source,
                                  const Rect& destination, float opacity, uint32_t interpolation) {
    state.CheckMasks();
    const PixelView whole = bitmap.View();
    const IntRect part = Intersect(source, {0, 0, whole.width, whole.height});
    const BasicFigure figure(BasicFigure::Kind::Rectangle, destination);
    const PathRef path{nullptr, &figure};
    const Shape& shape = m_shape.Of(path);
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, state.transform, 0.0F)));
    if (IsEmpty(part) || IsEmpty(visible)) {
        return;
    }
    GdipPageList::Call call = [kept = m_page.Keep(bitmap), source, destination, opacity,
                               interpolation](RenderTargetBase& t, const GraphicsState& s) {
        t.DrawBitmap(s, *kept, source, destination, opacity, interpolation);
    };
    const PixelView pixels = PixelTransfer::Part(whole, part);
    const Matrix place = PlaceImage(part, source, destination);
    // Beyond the bitmap its edge goes on, which no texture does that is good at the edge itself.
    if (!DrawsItself(state) || !(part == source) ||
        !Judge(state, visible).Shows(pixels, opacity, interpolation, Concat(place, state.transform))) {
        Leave(state, visible, std::move(call));
        return;
    }
    const auto makeSource = [&] {
        // Mirrored beyond its edges: a clamped texture fades out there.
        return std::make_unique<GdipBitmapColorSource>(
            pixels, bitmap.DpiX(), bitmap.DpiY(), opacity, Concat(Concat(place, state.transform), m_toPage),
            static_cast<uint32_t>(GXExtendMirror), static_cast<uint32_t>(GXExtendMirror));
    };
    const bool snap = state.strokeAdjustment;
    Draw(
        state, visible, interpolation, makeSource,
        [&](GdipPath& sink) { FeedPath(shape, state.transform, snap, sink); }, std::move(call));
}

void GdipRenderTarget::FillMask(const GraphicsState& state, const Bitmap& mask, const Brush& brush,
                                const Rect& destination, uint32_t interpolation) {
    state.CheckMasks();
    const BasicFigure figure(BasicFigure::Kind::Rectangle, destination);
    const IntRect visible = Visible(RoundOut(DeviceBox(m_shape.Of({nullptr, &figure}), state.transform, 0.0F)));
    if (!IsEmpty(visible)) {
        Leave(state, visible,
              [kept = m_page.Keep(mask), paint = m_page.Keep(brush), destination,
               interpolation](RenderTargetBase& t, const GraphicsState& s) {
                  t.FillMask(s, *kept, *paint, destination, interpolation);
              });
    }
}

void GdipRenderTarget::DrawGradient(const GraphicsState& state, std::shared_ptr<const Gradient> gradient, float opacity,
                                    const Matrix& m) {
    state.CheckMasks();
    const IntRect visible = CurrentClip().box;
    if (IsEmpty(visible)) {
        return;
    }
    GradientBrush brush(std::move(gradient));
    brush.opacity = opacity;
    brush.transform = m;
    DrawWith(
        state, brush, visible,
        [&](GdipPath& sink) {
            sink.SetFillRule(GXFillRuleNonZero);
            AddRectangle(sink, ToRect(visible));
        },
        [brush](RenderTargetBase& t, const GraphicsState& s) {
            t.DrawGradient(s, brush.gradient, brush.opacity, brush.transform);
        });
}

void GdipRenderTarget::Clear(uint32_t argb) {
    const IntRect visible = CurrentClip().box;
    if (IsEmpty(visible)) {
        return;
    }
    GdipPageList::Call call = [argb](RenderTargetBase& t, const GraphicsState&) { t.Clear(argb); };
    if (m_targets.size() > 1) {
        Leave({}, visible, std::move(call));
        return;
    }
    m_page.Add({}, visible, std::move(call));
    m_graphics->Clear(argb | 0xFF000000U); // paper stays opaque
    if (!CurrentClip().isCut) {
        m_left = Region(); // nothing is seen of what lies below
    }
}

void GdipRenderTarget::InvertRect(const Matrix& transform, const Rect& rect) {
    const BasicFigure figure(BasicFigure::Kind::Rectangle, rect);
    LeaveInversion(transform, figure,
                   [rect](RenderTargetBase& t, const GraphicsState& s) { t.InvertRect(s.transform, rect); });
}

void GdipRenderTarget::InvertLine(const Matrix& transform, const Point& from, const Point& to) {
    const BasicFigure figure(BasicFigure::Kind::Line, {from.x, from.y, to.x, to.y});
    LeaveInversion(transform, figure,
                   [from, to](RenderTargetBase& t, const GraphicsState& s) { t.InvertLine(s.transform, from, to); });
}

void GdipRenderTarget::LeaveInversion(const Matrix& transform, const BasicFigure& figure, GdipPageList::Call call) {
    const IntRect visible = Visible(RoundOut(DeviceBox(m_shape.Of({nullptr, &figure}), transform, 0.0F)));
    if (!IsEmpty(visible)) {
        GraphicsState state;
        state.transform = transform;
        Leave(state, visible, std::move(call));
    }
}

} // namespace Graphics
