// SPDX-License-Identifier: MIT
// The drawing calls of the target: each is drawn at once and recorded, or only recorded.
#include "../Geometry/DeviceFeed.h"
#include "../Scan/DeviceFigures.h"
#include "../Scan/SnapRectangle.h"
#include "GdipRenderTarget.h"
#include "GdipShows.h"

namespace Graphics {
namespace {

/// The sampling mode of GDI+ for the ink's texture.
[[nodiscard]] uint32_t InterpolationOf(const Ink& ink) noexcept {
    const auto* image = std::get_if<ImageInk>(&ink);
    return image != nullptr ? image->interpolation : static_cast<uint32_t>(GXInterpolationLinear);
}

/// True, with two opposite corners, if the shape is one upright rectangle on the device.
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

template <class Feed>
void GdipRenderTarget::Draw(const GraphicsState& state, const Ink& ink, const IntRect& visible, Feed&& feed,
                            GdipPageList::Call call) {
    if (!DrawsItself(state) || !Judge(state, visible).Shows(ink)) {
        Leave(state, visible, std::move(call));
        return;
    }
    GdipPath path(m_toPage);
    feed(path);
    const std::unique_ptr<GdipColorSource> source =
        GdipColorSource::Create(ink, {state.transform, m_toPage, visible, m_makeTarget});
    m_page.Add(state, visible, std::move(call));
    m_graphics->Fill(path, *source, InterpolationOf(ink));
}

void GdipRenderTarget::FeedPath(const Shape& shape, const Matrix& transform, bool snap, GdipPath& sink) {
    IntRect pixels;
    Point a, b;
    // Thin rules are at least one pixel wide, as on the screen.
    if (snap && IsUpright(shape, transform, a, b) && SnapRectangle(m_device.area, ToVertex(a), ToVertex(b), pixels)) {
        sink.SetFillRule(GXFillRuleNonZero);
        AddRectangle(sink, ToRect(pixels));
    } else {
        FeedFill(shape, transform, sink);
    }
}

void GdipRenderTarget::Paint(const GraphicsState& state, const Path& path, const Ink& ink, const ImageInk* mask) {
    if (path.GetKind() != Path::Kind::Glyphs) {
        PaintOne(state, path, ink, mask);
        return;
    }
    GraphicsState placed = state;
    path.Glyphs().ForEach(state.transform, [&](const Shape& outline, const Matrix& m) {
        placed.transform = m;
        PaintOne(placed, Path::Outline(outline), ink, mask);
    });
}

void GdipRenderTarget::PaintOne(const GraphicsState& state, const Path& path, const Ink& ink, const ImageInk* mask) {
    const bool isPlane = path.GetKind() == Path::Kind::Plane;
    const Shape* const shape = isPlane ? nullptr : &m_shape.Of(path);
    const IntRect visible = isPlane ? CurrentClip().box : Visible(RoundOut(DeviceBox(*shape, state.transform, 0.0F)));
    if (IsEmpty(visible)) {
        return;
    }
    const auto kept = [&] { return std::pair(GdipKeptPath(path), m_page.Keep(ink)); };
    if (mask != nullptr) {
        Leave(state, visible,
              [kept = kept(), cover = m_page.Keep(Ink(*mask))](RenderTargetBase& t, const GraphicsState& s) {
                  t.Paint(s, kept.first.Get(), kept.second.ink, &std::get<ImageInk>(cover.ink));
              });
        return;
    }
    const bool snap = state.strokeAdjustment && path.GetKind() != Path::Kind::Outline;
    const auto feed = [&](GdipPath& sink) {
        if (isPlane) {
            sink.SetFillRule(GXFillRuleNonZero);
            AddRectangle(sink, ToRect(visible));
        } else {
            FeedPath(*shape, state.transform, snap, sink);
        }
    };
    Draw(state, ink, visible, feed, [kept = kept()](RenderTargetBase& t, const GraphicsState& s) {
        t.Paint(s, kept.first.Get(), kept.second.ink, nullptr);
    });
}

void GdipRenderTarget::Stroke(const GraphicsState& state, const Path& path, const Ink& ink, float width,
                              const StrokeStyle& style) {
    const Shape& shape = m_shape.Of(path);
    const IntRect visible = Visible(StrokeBox(shape, state.transform, width, style));
    if (IsEmpty(visible)) {
        return;
    }
    const auto feed = [&](GdipPath& sink) {
        static_cast<void>(FeedStroke(shape, state.transform, style, width, state.strokeAdjustment, m_pen,
                                     ToRect(m_device.area), ToRect(visible), sink));
    };
    Draw(state, ink, visible, feed,
         [kept = GdipKeptPath(path), keptInk = m_page.Keep(ink), width,
          style](RenderTargetBase& t, const GraphicsState& s) { t.Stroke(s, kept.Get(), keptInk.ink, width, style); });
}

void GdipRenderTarget::Clip(const GraphicsState& state, const Path& path) {
    const Shape& shape = m_shape.Of(path);
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, state.transform, 0.0F)));
    if (m_targets.back().Transparent()) {
        GdipPath figure(m_toPage);
        FeedPath(shape, state.transform, state.strokeAdjustment, figure);
        m_graphics->IntersectClip(figure);
    }
    m_page.AddScope(
        state, [kept = GdipKeptPath(path)](RenderTargetBase& t, const GraphicsState& s) { t.Clip(s, kept.Get()); });
    GdipClip& clip = CurrentClip();
    clip.box = shape.Empty() || IsEmpty(visible) ? IntRect{} : visible;
    clip.isCut = true;
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
    m_graphics->Clear(argb | 0xFF000000U); // the page stays opaque
    if (!CurrentClip().isCut) {
        m_left = Region(); // everything below is covered
    }
}

void GdipRenderTarget::Invert(const Matrix& transform, const BasicFigure& figure) {
    const IntRect visible = Visible(RoundOut(DeviceBox(m_shape.Of(figure), transform, 0.0F)));
    if (!IsEmpty(visible)) {
        GraphicsState state;
        state.transform = transform;
        Leave(state, visible, [figure](RenderTargetBase& t, const GraphicsState& s) { t.Invert(s.transform, figure); });
    }
}

} // namespace Graphics
