// SPDX-License-Identifier: MIT
#include "PageSurvey.h"

#include "Interpreter.h"
#include "Matrix.h"

#include <algorithm>
#include <cmath>

namespace Gxr {
namespace {

// Pixels that snapping and anti-aliasing can move an edge by, and one for the floats on the way.
constexpr double kEdgeMargin = 3.0;
// Rows beside those that a band shows which interpolation may look at.
constexpr double kSampleMargin = 3.0;

// Nanoseconds, roughly: only how rows compare counts, and later drawings correct it by what bands took.
constexpr double kCallCost = 300.0, kPointCost = 60.0, kStrokePointCost = 400.0;
constexpr double kSolidPixel = 0.15, kMeshPixel = 1.5, kGradientPixel = 3.0, kBitmapPixel = 3.0;
constexpr double kBlendPixel = 3.0, kMaskPixel = 1.0, kLayerPixel = 1.0, kEndLayerPixel = 2.0;

bool IsStroke(Op op) {
    return op == Op::StrokeGeometry || op == Op::StrokeLine || op == Op::StrokeRect || op == Op::StrokeEllipse;
}

bool IsClip(Op op) { return op == Op::ClipGeometry || op == Op::ClipRect || op == Op::ClipEllipse; }

// How far a stroke reaches beside its path, in device pixels: half of the pen, which is a pixel wide at least and can
// grow by one where strokes are adjusted, out to the tip of a miter or the corner of a square cap.
double PenReach(const SeenCall& call, const GXMatrix& m) {
    const double scale =
        std::sqrt(double{m.m00} * m.m00 + double{m.m01} * m.m01 + double{m.m10} * m.m10 + double{m.m11} * m.m11);
    const double width = std::max(call.numbers[0] * scale, 1.0) + 1.0;
    const double limit = call.style != nullptr ? double{call.style->miterLimit} : 10.0;
    return 0.5 * width * std::max(limit, 1.5);
}

} // namespace

PageSurvey::PageSurvey(Interpreter& interpreter, const Objects& objects, GXSize target, const GXMatrix& matrix,
                       float scale)
    : m_objects(objects), m_scale(scale), m_costs(target.height + size_t{1}, 0.0) {
    AddSurface(Multiply({scale, 0, 0, scale, 0, 0}, matrix), target.width, target.height);
    interpreter.Watch(*this);
    m_costs.pop_back();
    double cost = 0;
    for (double& row : m_costs)
        row = std::max(cost += row, 0.0);
}

Band PageSurvey::BandOf(Rows page) const {
    Band band;
    band.calls = &m_calls;
    band.surfaces.resize(m_surfaces.size());
    band.surfaces[0] = page;
    // From the last use to the first: what a surface has to show is known before what is shown on it.
    for (size_t i = m_uses.size(); i-- > 0;) {
        const Use& use = m_uses[i];
        const Rows on = band.surfaces[use.on];
        const int32_t height = m_surfaces[use.source].height;
        if (on.IsEmpty())
            continue;
        Rows needed{0, height};
        if (use.step != 0) {
            const double a = (on.top - use.start) / use.step, b = (on.bottom - use.start) / use.step;
            // Beyond its edges a surface goes on as its outermost rows.
            needed.top = static_cast<int32_t>(
                std::clamp(std::floor(std::min(a, b) - kSampleMargin), 0.0, static_cast<double>(height - 1)));
            needed.bottom = static_cast<int32_t>(
                std::clamp(std::ceil(std::max(a, b) + kSampleMargin), 1.0, static_cast<double>(height)));
        }
        Rows& rows = band.surfaces[use.source];
        rows = rows.IsEmpty() ? needed : Rows{std::min(rows.top, needed.top), std::max(rows.bottom, needed.bottom)};
    }
    return band;
}

void PageSurvey::AddSurface(const GXMatrix& base, double width, double height) {
    Surface& surface = m_surfaces.emplace_back();
    surface.base = surface.state.ctm = base;
    surface.width = static_cast<int32_t>(width);
    surface.height = static_cast<int32_t>(height);
    surface.state.clip = Whole(surface);
}

void PageSurvey::OnSurface(uint32_t width, uint32_t height) {
    AddSurface({m_scale, 0, 0, m_scale, 0, 0}, std::ceil(static_cast<double>(width) * m_scale),
               std::ceil(static_cast<double>(height) * m_scale));
}

void PageSurvey::OnSurfaceBrush(uint32_t surface, const GXBitmapBrushOptions* options, const GXMatrix* matrix) {
    SurfaceBrush& brush = m_brushes.emplace_back();
    brush.surface = surface;
    brush.matrix = {1.0f / m_scale, 0, 0, 1.0f / m_scale, 0, 0};
    if (matrix != nullptr)
        brush.matrix = Multiply(brush.matrix, *matrix);
    brush.rowsInPlace =
        options == nullptr || (options->extendY == GXExtendClamp && options->interpolation <= GXInterpolationLinear);
}

void PageSurvey::OnCall(const SeenCall& call) {
    Surface& surface = m_surfaces[call.surface];
    if (call.brushReference % 2 == kOfSurface) {
        const SurfaceBrush& brush = m_brushes[static_cast<size_t>(call.brushReference / 2 - 1)];
        const GXMatrix matrix = Multiply(brush.matrix, surface.state.ctm);
        // Smaller than by a little, bitmaps are drawn from reduced ones, which mix rows.
        const bool inPlace = brush.rowsInPlace && matrix.m01 == 0 && std::isfinite(matrix.m21) &&
                             std::isfinite(matrix.m11) && std::abs(matrix.m11) > 0.99f;
        NoteUse(brush.surface, call.surface, inPlace ? &matrix : nullptr);
    }
    if (call.bitmapReference % 2 == kOfSurface)
        NoteUse(static_cast<uint32_t>(call.bitmapReference / 2), call.surface, nullptr);

    Box box = Whole(surface);
    if (!Reach(call, surface, &box))
        box = Whole(surface);
    // Nothing is drawn beyond the clip; and a clip that leaves a band nothing need not be made there, since nothing is
    // drawn under it.
    if (IsClip(call.op))
        surface.state.clip = Common(surface.state.clip, box);
    box = Common(surface.state.clip, box);
    m_calls.push_back(TouchedBy(box, surface));
    Follow(call, surface);

    const double perPixel = PixelCost(call, surface.state);
    double perCall = kCallCost;
    if (call.geometryNumber != 0)
        perCall += static_cast<double>(m_objects.PointCount(call.geometryNumber)) *
                   (IsStroke(call.op) ? kStrokePointCost : kPointCost);
    AddCost(call.surface, box, perPixel, perCall);
}

void PageSurvey::Follow(const SeenCall& call, Surface& surface) {
    State& state = surface.state;
    const auto put = [&](const GXMatrix& first) { state.ctm = Multiply(first, state.ctm); };
    switch (call.op) {
    case Op::BeginPaint:
        state.clip = Whole(surface);
        break;
    case Op::EndPaint:
        state = {};
        state.ctm = surface.base;
        state.clip = Whole(surface);
        surface.open.clear();
        break;
    case Op::PushState:
    case Op::BeginLayer:
        surface.open.emplace_back(call.op, state);
        if (call.op == Op::BeginLayer) {
            state.blended = state.opacityMask = state.shapeMask = false;
            ++state.layers;
            Box bounds;
            const GXRect& b = call.layer->bounds;
            if (b.left < b.right && b.top < b.bottom && Map(b, state.ctm, kEdgeMargin, &bounds))
                state.clip = Common(state.clip, bounds);
        }
        break;
    case Op::PopState:
        state = surface.open.back().second;
        surface.open.pop_back();
        break;
    case Op::EndLayer: {
        const Box drawn = state.clip;
        while (surface.open.back().first == Op::PushState)
            surface.open.pop_back();
        state = surface.open.back().second;
        surface.open.pop_back();
        AddCost(call.surface, Common(drawn, state.clip), kEndLayerPixel, 0);
        break;
    }
    case Op::SetCTM:
        state.ctm = call.matrix != nullptr ? Multiply(*call.matrix, surface.base) : surface.base;
        break;
    case Op::ConcatCTM:
        if (call.matrix != nullptr)
            put(*call.matrix);
        break;
    case Op::RotateCTM: {
        const double angle = std::isfinite(call.numbers[0]) ? double{call.numbers[0]} : 0.0;
        const auto c = static_cast<float>(std::cos(angle)), s = static_cast<float>(std::sin(angle));
        put({c, s, -s, c, 0, 0});
        break;
    }
    case Op::ScaleCTM:
        put({call.numbers[0], 0, 0, call.numbers[1], 0, 0});
        break;
    case Op::TranslateCTM:
        put({1, 0, 0, 1, call.numbers[0], call.numbers[1]});
        break;
    case Op::SetBlendMode:
        state.blended = call.word != GXBlendModeNormal;
        break;
    case Op::SetOpacityMask:
        state.opacityMask = call.brushReference > kOfSurface;
        break;
    case Op::SetShapeMask:
        state.shapeMask = call.brushReference > kOfSurface;
        break;
    default:
        break;
    }
}

void PageSurvey::NoteUse(uint32_t source, uint32_t on, const GXMatrix* matrix) {
    const Use use{source, on, matrix != nullptr && source != on ? double{matrix->m11} : 0.0,
                  matrix != nullptr ? double{matrix->m21} : 0.0};
    // A brush that fills many shapes in a row is one use.
    if (m_uses.empty() || m_uses.back().source != source || m_uses.back().on != on || m_uses.back().step != use.step ||
        m_uses.back().start != use.start)
        m_uses.push_back(use);
    // What the surface has cost is due where it is seen, row by row; in full for every band where that is not known,
    // which says nothing about where bands should end.
    Surface& shown = m_surfaces[source];
    if (use.step != 0) {
        const double a = use.start, b = use.start + use.step * shown.height;
        const Box box{0, std::min(a, b), 1, std::max(a, b)};
        AddCost(on, box, 0, std::exchange(shown.cost, 0.0));
    }
}

bool PageSurvey::OwnBox(const SeenCall& call, GXRect* box) const {
    if (call.geometry != nullptr)
        return GXGeometryGetBound(call.geometry, nullptr, box) == GXResultSuccess;
    if (call.rect != nullptr) {
        *box = *call.rect;
        return true;
    }
    if (call.op == Op::StrokeLine || call.op == Op::InvertLine) {
        const GXPoint *const a = call.points[0], *const b = call.points[1];
        if (a == nullptr || b == nullptr)
            return false;
        *box = {a->x, a->y, b->x, b->y};
        return true;
    }
    GXSize size{};
    if ((call.op != Op::DrawBitmap && call.op != Op::FillMask) || call.bitmap == nullptr ||
        GXBitmapGetSize(call.bitmap, &size) != GXResultSuccess)
        return false;
    const GXPoint at = call.points[0] != nullptr ? *call.points[0] : GXPoint{0, 0};
    *box = {at.x, at.y, at.x + static_cast<float>(size.width), at.y + static_cast<float>(size.height)};
    return true;
}

bool PageSurvey::Reach(const SeenCall& call, const Surface& surface, Box* box) const {
    GXRect own;
    const double margin = kEdgeMargin + (IsStroke(call.op) ? PenReach(call, surface.state.ctm) : 0.0);
    switch (call.op) {
    case Op::Clear:
    case Op::DrawGradient:
    case Op::FillText:
    case Op::BeginLayer:
        return false;
    default:
        return OwnBox(call, &own) && Map(own, surface.state.ctm, margin, box);
    }
}

double PageSurvey::PixelCost(const SeenCall& call, const State& state) const {
    double cost = kSolidPixel;
    switch (call.op) {
    case Op::Clear:
        return kSolidPixel;
    case Op::DrawBitmap:
    case Op::StretchBitmap:
        cost = kBitmapPixel;
        break;
    case Op::DrawGradient:
        cost = kGradientPixel;
        break;
    case Op::FillGeometry:
    case Op::FillTextGeometry:
    case Op::FillRect:
    case Op::FillEllipse:
    case Op::StrokeGeometry:
    case Op::StrokeLine:
    case Op::StrokeRect:
    case Op::StrokeEllipse:
    case Op::FillMask:
        if (call.brushReference % 2 == kOfSurface) {
            cost = kBitmapPixel;
        } else if (call.brushReference != 0) {
            const ObjectKind kind = m_objects.BrushKind(call.brushReference / 2);
            cost = kind == ObjectKind::BitmapBrush     ? kBitmapPixel
                   : kind == ObjectKind::GradientBrush ? kGradientPixel
                                                       : kSolidPixel;
        }
        cost += call.op == Op::FillMask ? kMaskPixel : 0.0;
        break;
    case Op::InvertRect:
        return kMeshPixel;
    default:
        return 0.0;
    }
    return cost + (state.blended ? kBlendPixel : 0.0) + (state.opacityMask ? kMaskPixel : 0.0) +
           (state.shapeMask ? kMaskPixel : 0.0) + (state.layers > 0 ? kLayerPixel : 0.0);
}

void PageSurvey::AddCost(uint32_t number, const Box& box, double perPixel, double perCall) {
    Surface& surface = m_surfaces[number];
    const Rows rows = RowsOf(box, surface);
    if (rows.IsEmpty())
        return;
    const double widest = surface.width;
    const double width = std::max(std::clamp(box.right, 0.0, widest) - std::clamp(box.left, 0.0, widest), 0.0);
    const double perRow = perPixel * width + perCall / (rows.bottom - rows.top);
    if (number != 0) {
        surface.cost += perRow * (rows.bottom - rows.top);
        return;
    }
    m_costs[static_cast<size_t>(rows.top)] += perRow;
    m_costs[static_cast<size_t>(rows.bottom)] -= perRow;
}

PageSurvey::Box PageSurvey::Whole(const Surface& surface) {
    return {0, 0, static_cast<double>(surface.width), static_cast<double>(surface.height)};
}

PageSurvey::Box PageSurvey::Common(const Box& a, const Box& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

bool PageSurvey::Map(const GXRect& rect, const GXMatrix& m, double margin, Box* box) {
    double left = 0, top = 0, right = 0, bottom = 0;
    for (int corner = 0; corner < 4; ++corner) {
        const double x = corner % 2 == 0 ? rect.left : rect.right, y = corner < 2 ? rect.top : rect.bottom;
        const double u = x * m.m00 + y * m.m10 + m.m20, v = x * m.m01 + y * m.m11 + m.m21;
        // Beyond this, floats are coarser than the margin.
        if (!(std::abs(u) < 1e6 && std::abs(v) < 1e6))
            return false;
        left = corner == 0 ? u : std::min(left, u);
        right = corner == 0 ? u : std::max(right, u);
        top = corner == 0 ? v : std::min(top, v);
        bottom = corner == 0 ? v : std::max(bottom, v);
    }
    if (!(margin < 1e6))
        return false;
    *box = {left - margin, top - margin, right + margin, bottom + margin};
    return true;
}

Rows PageSurvey::RowsOf(const Box& box, const Surface& surface) {
    const double height = surface.height;
    return {static_cast<int32_t>(std::clamp(std::floor(box.top), 0.0, height)),
            static_cast<int32_t>(std::clamp(std::ceil(box.bottom), 0.0, height))};
}

Touched PageSurvey::TouchedBy(const Box& box, const Surface& surface) {
    const double width = surface.width;
    return {RowsOf(box, surface), static_cast<int32_t>(std::clamp(std::floor(box.left), 0.0, width)),
            static_cast<int32_t>(std::clamp(std::ceil(box.right), 0.0, width))};
}

} // namespace Gxr
