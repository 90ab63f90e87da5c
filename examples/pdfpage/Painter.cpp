// SPDX-License-Identifier: MIT
// Colours, paths and strokes.
#include "Painter.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace PdfPage {

Painter::Painter(fz_context* ctx, const Gxr::Calls& calls, Report& report, Caches& caches, Surface& page, float dpi,
                 bool adjust, GroupRoads roads)
    : m_ctx(ctx), m_calls(calls), m_report(report), m_caches(caches), m_page(page), m_dpi(dpi), m_adjust(adjust),
      m_roads(std::move(roads)), m_unitSquare(RectGeometry(report, fz_unit_rect)) {}

Painter::~Painter() {
    if (m_tile) {
        fz_drop_device(m_ctx, m_tile->device);
        fz_drop_display_list(m_ctx, m_tile->list);
    }
    fz_drop_default_colorspaces(m_ctx, m_defaults);
}

fz_rect Painter::Visible() const {
    const fz_rect area = fz_rect_from_irect(Current().Area());
    if (!m_device || m_device->container_len == 0)
        return area;
    return fz_intersect_rect(area, m_device->container[m_device->container_len - 1].scissor);
}

void Painter::SetDefaultColorspaces(fz_default_colorspaces* defaults) {
    fz_drop_default_colorspaces(m_ctx, m_defaults);
    m_defaults = defaults ? fz_keep_default_colorspaces(m_ctx, defaults) : nullptr;
}

GXColor Painter::Color(const Paint& paint) const {
    const float alpha = std::clamp(paint.alpha, 0.0f, 1.0f);
    if (m_stencilColor)
        return {m_stencilColor->red, m_stencilColor->green, m_stencilColor->blue, m_stencilColor->alpha * alpha};
    fz_colorspace* space = paint.space;
    if (m_defaults && space) {
        if (space == fz_device_gray(m_ctx))
            space = fz_default_gray(m_ctx, m_defaults);
        else if (space == fz_device_rgb(m_ctx))
            space = fz_default_rgb(m_ctx, m_defaults);
        else if (space == fz_device_cmyk(m_ctx))
            space = fz_default_cmyk(m_ctx, m_defaults);
    }
    float rgb[FZ_MAX_COLORS] = {0.0f, 0.0f, 0.0f};
    if (space && paint.color)
        Try(m_ctx,
            [&] { fz_convert_color(m_ctx, space, paint.color, fz_device_rgb(m_ctx), rgb, nullptr, paint.params); });
    return {rgb[0], rgb[1], rgb[2], alpha};
}

GXBrush Painter::Brush(const Paint& paint) {
    const GXColor color = Color(paint);
    if (!m_brush || std::memcmp(&color, &m_brushColor, sizeof color) != 0) {
        m_brushColor = color;
        m_report.Check(m_calls.CreateBrushSolid(&color, m_brush.Out()), "GXCreateBrushSolid");
    }
    return m_brush.Get();
}

void Painter::FillPath(const fz_path* path, bool evenOdd, const fz_matrix& ctm, const Paint& paint) {
    const Handle<GXGeometry> geometry = PathGeometry(m_ctx, m_report, path, evenOdd);
    if (!geometry)
        return;
    Current().SetMatrix(ctm);
    m_report.Check(m_calls.FillGeometry(Target(), geometry.Get(), Brush(paint)), "GXRenderTargetFillGeometry");
}

void Painter::ClipPath(const fz_path* path, bool evenOdd, const fz_matrix& ctm) {
    const Handle<GXGeometry> geometry = PathGeometry(m_ctx, m_report, path, evenOdd);
    Current().PushClip(geometry.Get(), ctm);
}

Handle<GXGeometry> Painter::Dashes(const fz_path* path, const fz_stroke_state& stroke, const fz_matrix& ctm) {
    const float expansion = fz_matrix_max_expansion(ctm);
    return CutIntoDashes(m_ctx, m_report, path, stroke, expansion > 0.0f ? 0.25f / expansion : 0.25f);
}

float Painter::PenWidth(const fz_stroke_state& stroke, const fz_matrix& ctm) const {
    // The library's thinnest line is one device pixel; that of a device with eight times the resolution an eighth.
    constexpr float kThinnest = 0.125f;
    const float expansion = fz_matrix_expansion(ctm);
    const float width = std::max(stroke.linewidth, 0.0f);
    const bool thinnest = width == 0.0f && !m_adjust && expansion > 0.0f && std::isfinite(expansion);
    return thinnest ? kThinnest / expansion : width;
}

void Painter::Stroke(const fz_path* path, GXGeometry geometry, const fz_stroke_state& stroke, const fz_matrix& ctm,
                     GXBrush brush) {
    GXStrokeStyle style = StrokeStyle(stroke, 1.0f);
    const float width = PenWidth(stroke, ctm);
    Current().SetMatrix(ctm);
    Handle<GXGeometry> pieces;
    if (HasDashes(stroke)) {
        if (style.dashCount > 0 && m_dashesSupported) {
            if (m_calls.StrokeGeometry(Target(), geometry, brush, width, &style) == GXResultSuccess)
                return;
            m_dashesSupported = false;
            m_report.Notice("dashes cut up here, the library refused them");
        }
        style.dashCount = 0;
        if (path)
            pieces = Dashes(path, stroke, ctm);
        if (pieces)
            geometry = pieces.Get();
        else
            m_report.Notice("dashes drawn as whole lines");
    }
    m_report.Check(m_calls.StrokeGeometry(Target(), geometry, brush, width, &style), "GXRenderTargetStrokeGeometry");
}

void Painter::StrokePath(const fz_path* path, const fz_stroke_state& stroke, const fz_matrix& ctm, const Paint& paint) {
    const Handle<GXGeometry> geometry = PathToStroke(m_ctx, m_report, path, stroke);
    if (geometry)
        Stroke(path, geometry.Get(), stroke, ctm, Brush(paint));
}

void Painter::ClipStroke(const fz_path* path, GXGeometry geometry, const fz_stroke_state& stroke,
                         const fz_matrix& ctm) {
    // The outline is flattened at 0.25 unit: it is made four times finer than a page pixel, then brought back by the
    // matrix.
    const float expansion = fz_matrix_max_expansion(ctm);
    const float scale = expansion > 0.0f && std::isfinite(expansion) ? 4.0f * expansion : 1.0f;
    const GXMatrix enlarge{scale, 0.0f, 0.0f, scale, 0.0f, 0.0f};
    // A line of no width is one page pixel wide.
    const float pen = PenWidth(stroke, ctm);
    const float width = pen > 0.0f ? pen * scale : 4.0f;
    GXStrokeStyle style = StrokeStyle(stroke, scale);
    Handle<GXGeometry> pieces, large, outline;
    if (HasDashes(stroke) && style.dashCount == 0 && path) {
        pieces = Dashes(path, stroke, ctm);
        if (pieces)
            geometry = pieces.Get();
    }
    if (m_report.Check(GXGeometryTransform(geometry, &enlarge, large.Out()), "GXGeometryTransform")) {
        if (GXGeometryWiden(large.Get(), width, &style, outline.Out()) != GXResultSuccess && style.dashCount > 0) {
            style.dashCount = 0;
            m_report.Notice("dashes drawn as whole lines");
            m_report.Check(GXGeometryWiden(large.Get(), width, &style, outline.Out()), "GXGeometryWiden");
        }
    }
    Current().PushClip(outline.Get(), fz_pre_scale(ctm, 1.0f / scale, 1.0f / scale));
}

void Painter::ClipStrokePath(const fz_path* path, const fz_stroke_state& stroke, const fz_matrix& ctm) {
    const Handle<GXGeometry> geometry = PathToStroke(m_ctx, m_report, path, stroke);
    ClipStroke(path, geometry.Get(), stroke, ctm);
}

} // namespace PdfPage
