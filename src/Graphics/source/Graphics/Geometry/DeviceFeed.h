// SPDX-License-Identifier: MIT
// The two path pipelines that bring a shape to a sink in device pixels: FeedFill and FeedStroke.
#pragma once

#include <optional>

#include "DashBoxes.h"
#include "Dasher.h"
#include "Pen.h"
#include "Shape.h"
#include "StripClipper.h"
#include "StrokeAdjuster.h"
#include "StrokePlan.h"
#include "Transformer.h"

namespace Graphics {

inline constexpr float kDeviceBand = 32535.0F;
inline constexpr float kFillTolerance = 0.25F;

/// The range of device pixels that a sink accepts: [-BandOf, BandOf] in both directions.
template <class Sink> constexpr float BandOf() noexcept {
    if constexpr (requires { Sink::kBand; }) {
        return Sink::kBand;
    } else {
        return kDeviceBand;
    }
}

/// Calls `feed` with a sink that clips figures to the accepted range, first in y and then in x.
template <FigureSink Sink, class Feed> void ThroughBand(Sink& sink, const Feed& feed) {
    constexpr float band = BandOf<Sink>();
    StripClipper<Sink> x(sink, ClipAxis::X, -band, band, kFillTolerance);
    StripClipper<StripClipper<Sink>> y(x, ClipAxis::Y, -band, band, kFillTolerance);
    feed(y);
}

/// Sends the fill rule and the mapped shape, without figures that have a non-finite coordinate.
template <GeometrySink Sink> void FeedFill(const Shape& shape, const Matrix& m, Sink& sink) {
    sink.SetFillRule(shape.FillRule());
    const Rect box = MapBox(m, shape.ControlBox());
    constexpr float inner = BandOf<Sink>() - 1;
    // Inside the range the clippers change nothing. NaN compares false.
    if (shape.AllFinite() && box.left > -inner && box.top > -inner && box.right < inner && box.bottom < inner) {
        if (IsIdentity(m)) {
            shape.ReplayFigures(sink);
        } else {
            Transformer<Sink> transformer(sink, m);
            shape.ReplayFigures(transformer);
        }
        return;
    }
    ThroughBand(sink, [&](auto& band) {
        Transformer<std::remove_reference_t<decltype(band)>> transformer(band, m);
        shape.ReplayFigures(transformer, [&](const Figure& figure) { return AllFinite(figure, m); });
    });
}

/// Moves coordinates that miss a whole pixel by a rounding error onto that pixel.
template <FigureSink Sink> class WholePixelSnapper {
public:
    explicit WholePixelSnapper(Sink& sink) noexcept : m_sink(sink) {}

    void BeginFigure(const Point& start) { m_sink.BeginFigure(SnapToPixel(start)); }
    void EndFigure() { m_sink.EndFigure(); }
    void EndFigureClose() { m_sink.EndFigureClose(); }
    void LineTo(const Point& p) { m_sink.LineTo(SnapToPixel(p)); }
    void CubicTo(const Point& c1, const Point& c2, const Point& end) { m_sink.CubicTo(c1, c2, SnapToPixel(end)); }

private:
    Sink& m_sink;
};

namespace Detail {

/// Sends the dashes of the line from a to b. Requires DashesAreBoxes.
template <TakesBoxes Sink>
void SendDashBoxes(Sink& sink, const Point& a, const Point& b, const StrokePlan& plan, const StrokeStyle& style,
                   const DashSequence& dashes, bool snaps) {
    const DashSight sight(plan, style, dashes);
    BoxPen<Sink> pen(sink, plan, style.cap, snaps);
    Dasher<BoxPen<Sink>> dasher(pen, dashes, plan.userTolerance);
    dasher.SetSight(&sight);
    dasher.BeginFigure(a);
    dasher.LineTo(b);
    dasher.EndFigure();
}

/// Runs `replay` with a sink in user space that strokes into `sink`, in device space.
template <class Sink, class Replay>
void StrokeInto(Sink& sink, const StrokePlan& plan, const StrokeStyle& style, const DashSequence* dashes,
                PenStorage& storage, const Replay& replay) {
    using PenType = Pen<Sink>;
    PenType pen(sink, storage, style, plan.half, plan.tolerance);
    pen.Outline().RefineCurves();
    std::optional<PenView> corners, points, curves;
    if (plan.cull) {
        corners = plan.ViewOf(plan.visiblePixels);
        points = plan.PointViewOf(plan.visiblePixels);
        pen.Outline().SetView(&*corners, &*points);
    }
    if (plan.cullTarget) {
        curves = plan.ViewOf(plan.targetPixels);
        pen.Outline().SetCurveView(&*curves);
    }
    pen.Outline().SetDotDirection(plan.toPen.m00, plan.toPen.m01);
    Transformer<PenType> toPen(pen, plan.toPen);
    if (dashes == nullptr) {
        replay(toPen);
        return;
    }
    const DashSight sight(plan, style, *dashes);
    Dasher<Transformer<PenType>> dasher(toPen, *dashes, plan.userTolerance);
    dasher.RefineCurves(plan.userHalf);
    dasher.SetSight(&sight);
    replay(dasher);
}

/// StrokeInto for a sink in device space: puts toDevice between pen and sink.
template <class Sink, class Replay>
void StrokeMapped(Sink& sink, const StrokePlan& plan, const StrokeStyle& style, const DashSequence* dashes,
                  PenStorage& storage, const Replay& replay) {
    if (IsIdentity(plan.toDevice)) {
        StrokeInto(sink, plan, style, dashes, storage, replay);
    } else {
        Transformer<Sink> toDevice(sink, plan.toDevice);
        StrokeInto(toDevice, plan, style, dashes, storage, replay);
    }
}

/// Strokes one figure; storage.path holds its adjusted points.
template <class Sink>
void StrokeAdjusted(Sink& sink, const Figure& figure, StrokeAdjuster::Result result, StrokePlan plan,
                    const StrokeAdjuster& adjuster, const StrokeStyle& style, const DashSequence* dashes,
                    PenStorage& storage) {
    // Half the width is 1 in the adjuster's pen space; the axis with the larger scale sets the tolerance.
    const Matrix& device = adjuster.ToDevice();
    plan.SetPen(adjuster.ToPen(), device, 1.0F, kFillTolerance / std::max(device.m00, device.m11));
    const HeapArray<Point>& path = storage.path;
    if constexpr (TakesBoxes<Sink>) {
        if (dashes != nullptr && path.size() == 2 && !figure.Closed() &&
            DashesAreBoxes(path[0], path[1], plan, style)) {
            SendDashBoxes(sink, path[0], path[1], plan, style, *dashes, true);
            return;
        }
    }
    const bool straight = result == StrokeAdjuster::Result::Path;
    ThroughBand(sink, [&](auto& band) {
        using Band = std::remove_reference_t<decltype(band)>;
        WholePixelSnapper<Band> snapper(band);
        Transformer<WholePixelSnapper<Band>> toDevice(snapper, plan.toDevice);
        StrokeInto(toDevice, plan, style, dashes, storage, [&](auto& user) {
            user.BeginFigure(path[0]);
            uint32_t segment = 0;
            for (size_t i = 1; i < path.size(); ++segment) {
                if (straight || figure.Kind(segment) == Figure::kLine) {
                    user.LineTo(path[i]);
                    i += 1;
                } else {
                    user.CubicTo(path[i], path[i + 1], path[i + 2]);
                    i += 3;
                }
            }
            if (figure.Closed()) {
                user.EndFigureClose();
            } else {
                user.EndFigure();
            }
        });
    });
}

/// The box of the figures whose mapped points are all finite; false if there is none. `all`: every figure is finite.
[[nodiscard]] inline bool FiniteBox(const Shape& shape, const Matrix& m, Rect& box, bool& all) noexcept {
    const auto finite = [](const Rect& r) {
        return std::isfinite(r.left) && std::isfinite(r.top) && std::isfinite(r.right) && std::isfinite(r.bottom);
    };
    box = shape.ControlBox();
    all = shape.AllFinite() && finite(MapBox(m, box));
    if (all) {
        return true;
    }
    bool any = false;
    for (const Figure& figure : shape.Figures()) {
        if (!AllFinite(figure, m)) {
            continue;
        }
        for (const Point& p : figure.Points()) {
            box = any ? Rect{std::min(box.left, p.x), std::min(box.top, p.y), std::max(box.right, p.x),
                             std::max(box.bottom, p.y)}
                      : Rect{p.x, p.y, p.x, p.y};
            any = true;
        }
    }
    return any;
}

} // namespace Detail

/// Sends the mapped outline of the stroked shape under the non-zero rule. Width 0 is one device pixel. `adjust` moves
/// the stroke edges of horizontal and vertical segments onto whole pixels. What cannot touch `visible` may be omitted.
/// Returns true if figures that `target` would show may have been omitted. Raises for a bad dash pattern before sending
/// anything.
template <GeometrySink Sink>
bool FeedStroke(const Shape& shape, const Matrix& m, const StrokeStyle& style, float width, bool adjust,
                PenStorage& storage, const Rect& target, const Rect& visible, Sink& sink) {
    std::optional<DashSequence> dashes;
    if (style.dashCount != 0) {
        dashes.emplace(style);
    }
    sink.SetFillRule(GXFillRuleNonZero);
    Rect box;
    bool allFinite = false;
    if (!Detail::FiniteBox(shape, m, box, allFinite)) {
        return false;
    }
    const StrokePlan plan(box, m, style, width, {target, visible});
    if (plan.nothing) {
        return plan.partial;
    }
    const DashSequence* pattern = dashes ? &*dashes : nullptr;
    std::optional<StrokeAdjuster> adjuster;
    if (adjust) {
        adjuster.emplace(m, width);
    }
    const bool adjusts = adjuster && adjuster->Applies();

    const auto replay = [&](auto& user) {
        shape.ReplayFigures(user, [&](const Figure& figure) {
            if (!allFinite && !AllFinite(figure, m)) {
                return false;
            }
            if (adjusts) {
                const StrokeAdjuster::Result result = adjuster->Adjust(figure, storage.path);
                if (result != StrokeAdjuster::Result::Untouched) {
                    Detail::StrokeAdjusted(sink, figure, result, plan, *adjuster, style, pattern, storage);
                    return false;
                }
            }
            if constexpr (TakesBoxes<Sink>) {
                if (pattern != nullptr && !figure.Closed() && figure.SegmentCount() == 1 &&
                    figure.Kind(0) == Figure::kLine &&
                    DashesAreBoxes(figure.Points()[0], figure.Points()[1], plan, style)) {
                    Detail::SendDashBoxes(sink, figure.Points()[0], figure.Points()[1], plan, style, *pattern, false);
                    return false;
                }
            }
            return true;
        });
    };
    if (plan.inBand) {
        Detail::StrokeMapped(sink, plan, style, pattern, storage, replay);
    } else {
        ThroughBand(sink, [&](auto& band) { Detail::StrokeMapped(band, plan, style, pattern, storage, replay); });
    }
    return plan.partial;
}

/// The same with the whole target visible.
template <GeometrySink Sink>
bool FeedStroke(const Shape& shape, const Matrix& m, const StrokeStyle& style, float width, bool adjust,
                PenStorage& storage, const Rect& target, Sink& sink) {
    return FeedStroke(shape, m, style, width, adjust, storage, target, target, sink);
}

} // namespace Graphics
