// SPDX-License-Identifier: MIT
#include "Paths.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <vector>

namespace PdfPage {
namespace {

// Receives a path walk. A figure begins with its first segment: a lone moveto draws nothing, a closed one draws a dot.
struct Builder {
    GXGeometry geometry = nullptr;
    const fz_matrix* matrix = nullptr;
    bool skipDots = false; // figures without extent are left out
    GXPoint start{};
    bool pending = false; // a moveto waits for a segment
    bool open = false;
    bool failed = false;

    GXPoint Map(float x, float y) const {
        if (!matrix)
            return {x, y};
        const fz_point p = fz_transform_point_xy(x, y, *matrix);
        return {p.x, p.y};
    }
    void Note(GXResult result) { failed |= result != GXResultSuccess; }
    void End() {
        if (open)
            Note(GXGeometryEndFigure(geometry));
        open = false;
    }
    // Whether a segment of these points, or the end of the figure, is to be left out.
    bool IsDot(std::initializer_list<GXPoint> points) {
        const auto atStart = [&](const GXPoint& p) { return p.x == start.x && p.y == start.y; };
        return skipDots && !open && std::all_of(points.begin(), points.end(), atStart);
    }
    void NeedFigure() {
        if (open)
            return;
        Note(GXGeometryBeginFigure(geometry, &start));
        open = true;
        pending = false;
    }
};

void MoveTo(fz_context*, void* arg, float x, float y) {
    auto& b = *static_cast<Builder*>(arg);
    b.End();
    b.start = b.Map(x, y);
    b.pending = true;
}

void LineTo(fz_context*, void* arg, float x, float y) {
    auto& b = *static_cast<Builder*>(arg);
    const GXPoint p = b.Map(x, y);
    if (b.IsDot({p}))
        return;
    b.NeedFigure();
    b.Note(GXGeometryLineTo(b.geometry, &p));
}

void CurveTo(fz_context*, void* arg, float x1, float y1, float x2, float y2, float x3, float y3) {
    auto& b = *static_cast<Builder*>(arg);
    const GXPoint c1 = b.Map(x1, y1), c2 = b.Map(x2, y2), p = b.Map(x3, y3);
    if (b.IsDot({c1, c2, p}))
        return;
    b.NeedFigure();
    b.Note(GXGeometryCubicCurveTo(b.geometry, &c1, &c2, &p));
}

void ClosePath(fz_context*, void* arg) {
    auto& b = *static_cast<Builder*>(arg);
    if ((!b.open && !b.pending) || b.IsDot({}))
        return;
    b.NeedFigure();
    b.Note(GXGeometryEndFigureClose(b.geometry));
    b.open = false;
}

// Flattens and cuts. Lengths in user space.
struct Dasher {
    static constexpr size_t kMaxPieces = 400000;

    GXGeometry geometry = nullptr;
    const float* lengths = nullptr;
    int count = 0;
    float phase = 0.0f;
    float tolerance = 0.25f;

    fz_point start{}, at{};
    int index = 0;
    float left = 0.0f;    // of the current dash or gap
    bool penDown = false; // a piece is open
    bool inFigure = false;
    bool failed = false;
    size_t pieces = 0;

    bool On() const { return index % 2 == 0; }
    void Note(GXResult result) { failed |= result != GXResultSuccess; }
    void Lift() {
        if (penDown)
            Note(GXGeometryEndFigure(geometry));
        penDown = false;
    }
    void Put(fz_point p) {
        const GXPoint g{p.x, p.y};
        if (penDown)
            return Note(GXGeometryLineTo(geometry, &g));
        Note(GXGeometryBeginFigure(geometry, &g));
        penDown = true;
        if (++pieces > kMaxPieces)
            failed = true;
    }
    // An odd count runs twice, so that dashes and gaps swap in the second round.
    void Next() {
        index = (index + 1) % (count % 2 ? 2 * count : count);
        left = lengths[index % count];
    }
    void Begin() {
        inFigure = true;
        index = 0;
        left = lengths[0];
        float skip = phase;
        while (skip >= left) {
            skip -= left;
            Next();
        }
        left -= skip;
        if (On())
            Put(at);
    }
    void Line(fz_point to) {
        if (!inFigure)
            Begin();
        const fz_point from = at;
        const float dx = to.x - from.x, dy = to.y - from.y;
        const float length = std::hypot(dx, dy);
        if (!std::isfinite(length))
            failed = true;
        float done = 0.0f;
        while (!failed && length - done > left) {
            done += left;
            const fz_point cut{from.x + dx * (done / length), from.y + dy * (done / length)};
            if (On()) {
                Put(cut);
                Lift();
            }
            Next();
            if (On())
                Put(cut);
        }
        left -= length - done;
        if (On() && !failed)
            Put(to);
        at = to;
    }
    void End() {
        Lift();
        inFigure = false;
    }
};

void DashMoveTo(fz_context*, void* arg, float x, float y) {
    auto& d = *static_cast<Dasher*>(arg);
    d.End();
    d.start = d.at = {x, y};
}

void DashLineTo(fz_context*, void* arg, float x, float y) { static_cast<Dasher*>(arg)->Line({x, y}); }

void DashCurveTo(fz_context*, void* arg, float x1, float y1, float x2, float y2, float x3, float y3) {
    auto& d = *static_cast<Dasher*>(arg);
    const fz_point p0 = d.at;
    // n chords leave at most |second difference| * 6 / (8 n^2) between curve and polygon.
    const float bend =
        std::max(std::hypot(p0.x - 2 * x1 + x2, p0.y - 2 * y1 + y2), std::hypot(x1 - 2 * x2 + x3, y1 - 2 * y2 + y3));
    const float wanted = std::ceil(std::sqrt(0.75f * bend / d.tolerance));
    const int n = wanted >= 1.0f && wanted < 500.0f ? static_cast<int>(wanted) : wanted >= 500.0f ? 500 : 1;
    for (int i = 1; i < n; ++i) {
        const float t = static_cast<float>(i) / static_cast<float>(n), u = 1.0f - t;
        const float a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, e = t * t * t;
        d.Line({a * p0.x + b * x1 + c * x2 + e * x3, a * p0.y + b * y1 + c * y2 + e * y3});
    }
    d.Line({x3, y3});
}

void DashClosePath(fz_context*, void* arg) {
    auto& d = *static_cast<Dasher*>(arg);
    d.Line(d.start);
    d.End();
}

} // namespace

bool AppendPath(fz_context* ctx, const fz_path* path, const fz_matrix* matrix, GXGeometry geometry, bool skipDots) {
    static constexpr fz_path_walker kWalker{MoveTo, LineTo, CurveTo, ClosePath, nullptr, nullptr, nullptr, nullptr};
    Builder builder;
    builder.geometry = geometry;
    builder.matrix = matrix;
    builder.skipDots = skipDots;
    Try(ctx, [&] { fz_walk_path(ctx, path, &kWalker, &builder); });
    builder.End();
    return !builder.failed;
}

Handle<GXGeometry> PathGeometry(fz_context* ctx, Report& report, const fz_path* path, bool evenOdd, bool skipDots) {
    Handle<GXGeometry> geometry;
    if (!report.Check(GXCreateGeometry(geometry.Out()), "GXCreateGeometry"))
        return geometry;
    if (evenOdd)
        report.Check(GXGeometrySetFillRule(geometry.Get(), GXFillRuleEvenOdd), "GXGeometrySetFillRule");
    report.Check(AppendPath(ctx, path, nullptr, geometry.Get(), skipDots) ? GXResultSuccess : GXResultEngineError,
                 "building a path");
    return geometry;
}

Handle<GXGeometry> PathToStroke(fz_context* ctx, Report& report, const fz_path* path, const fz_stroke_state& stroke) {
    return PathGeometry(ctx, report, path, false, stroke.start_cap == FZ_LINECAP_SQUARE);
}

Handle<GXGeometry> RectGeometry(Report& report, const fz_rect& rect) {
    Handle<GXGeometry> geometry;
    const GXRect r{rect.x0, rect.y0, rect.x1, rect.y1};
    if (report.Check(GXCreateGeometry(geometry.Out()), "GXCreateGeometry"))
        report.Check(GXGeometryRectangle(geometry.Get(), &r), "GXGeometryRectangle");
    return geometry;
}

bool HasDashes(const fz_stroke_state& stroke) {
    float sum = 0.0f;
    for (int i = 0; i < stroke.dash_len; ++i)
        sum += std::max(stroke.dash_list[i], 0.0f);
    return stroke.dash_len > 0 && sum > 0.0f && std::isfinite(sum);
}

GXStrokeStyle StrokeStyle(const fz_stroke_state& stroke, float scale) {
    GXStrokeStyle style{};
    style.cap = stroke.start_cap == FZ_LINECAP_ROUND    ? GXLineCapRound
                : stroke.start_cap == FZ_LINECAP_SQUARE ? GXLineCapSquare
                                                        : GXLineCapFlat;
    style.join = stroke.linejoin == FZ_LINEJOIN_ROUND   ? GXLineJoinRound
                 : stroke.linejoin == FZ_LINEJOIN_BEVEL ? GXLineJoinBevel
                                                        : GXLineJoinMiter;
    style.miterLimit = std::max(stroke.miterlimit, 1.0f);
    if (HasDashes(stroke) && stroke.dash_len <= kMaxDashes) {
        style.dashCount = static_cast<uint64_t>(stroke.dash_len);
        style.dashPhase = stroke.dash_phase * scale;
        for (int i = 0; i < stroke.dash_len; ++i)
            style.dashes[i] = std::max(stroke.dash_list[i], 0.0f) * scale;
    }
    return style;
}

Handle<GXGeometry> CutIntoDashes(fz_context* ctx, Report& report, const fz_path* path, const fz_stroke_state& stroke,
                                 float tolerance) {
    static constexpr fz_path_walker kWalker{DashMoveTo, DashLineTo, DashCurveTo, DashClosePath,
                                            nullptr,    nullptr,    nullptr,     nullptr};
    std::vector<float> lengths(stroke.dash_list, stroke.dash_list + stroke.dash_len);
    float period = 0.0f;
    for (float& length : lengths)
        period += length = std::max(length, 0.0f);
    if (lengths.size() % 2)
        period *= 2;

    Handle<GXGeometry> geometry;
    if (!report.Check(GXCreateGeometry(geometry.Out()), "GXCreateGeometry"))
        return geometry;
    Dasher dasher;
    dasher.geometry = geometry.Get();
    dasher.lengths = lengths.data();
    dasher.count = static_cast<int>(lengths.size());
    dasher.phase = std::isfinite(stroke.dash_phase) ? std::fmod(stroke.dash_phase, period) : 0.0f;
    if (dasher.phase < 0.0f)
        dasher.phase += period;
    dasher.tolerance = tolerance;
    Try(ctx, [&] { fz_walk_path(ctx, path, &kWalker, &dasher); });
    dasher.End();
    if (dasher.failed)
        geometry.Reset();
    return geometry;
}

} // namespace PdfPage
