// SPDX-License-Identifier: MIT
#include "Glyphs.h"

#include "Paths.h"

namespace PdfPage {
namespace {

struct Copier {
    GXGeometry to;
    fz_matrix matrix;
    GXPoint Map(const GXPoint* p) const {
        const fz_point q = fz_transform_point_xy(p->x, p->y, matrix);
        return {q.x, q.y};
    }
};

// Appends `from`, mapped by `matrix`, to `to`.
bool AppendGeometry(GXGeometry from, const fz_matrix& matrix, GXGeometry to) {
    Copier copier{to, matrix};
    GXGeometrySinkCallbacks sink{};
    sink.context = &copier;
    sink.SetFillRule = [](void*, uint32_t) {};
    sink.BeginFigure = [](void* arg, const GXPoint* p) {
        auto& c = *static_cast<Copier*>(arg);
        const GXPoint q = c.Map(p);
        GXGeometryBeginFigure(c.to, &q);
    };
    sink.EndFigure = [](void* arg) { GXGeometryEndFigure(static_cast<Copier*>(arg)->to); };
    sink.EndFigureClose = [](void* arg) { GXGeometryEndFigureClose(static_cast<Copier*>(arg)->to); };
    sink.LineTo = [](void* arg, const GXPoint* p) {
        auto& c = *static_cast<Copier*>(arg);
        const GXPoint q = c.Map(p);
        GXGeometryLineTo(c.to, &q);
    };
    sink.CubicTo = [](void* arg, const GXPoint* a, const GXPoint* b, const GXPoint* p) {
        auto& c = *static_cast<Copier*>(arg);
        const GXPoint qa = c.Map(a), qb = c.Map(b), q = c.Map(p);
        GXGeometryCubicCurveTo(c.to, &qa, &qb, &q);
    };
    return GXGeometrySendToSink(from, &sink) == GXResultSuccess;
}

} // namespace

Glyphs::~Glyphs() {
    for (auto& entry : m_fonts)
        fz_drop_font(m_ctx, entry.first);
}

GXGeometry Glyphs::Outline(Report& report, fz_font* font, int gid) {
    auto found = m_fonts.find(font);
    if (found == m_fonts.end()) {
        found = m_fonts.try_emplace(font).first;
        fz_keep_font(m_ctx, font);
    }
    const auto [glyph, isNew] = found->second.try_emplace(gid);
    if (!isNew)
        return glyph->second.Get();

    fz_path* path = nullptr;
    if (!Try(m_ctx, [&] { path = fz_outline_glyph(m_ctx, font, gid, fz_identity); }) || !path)
        return nullptr;
    glyph->second = PathGeometry(m_ctx, report, path, false);
    fz_drop_path(m_ctx, path);
    uint8_t empty = 0;
    if (glyph->second && GXGeometryEmpty(glyph->second.Get(), &empty) == GXResultSuccess && empty)
        glyph->second.Reset();
    return glyph->second.Get();
}

Handle<GXGeometry> Glyphs::TextGeometry(Report& report, const fz_text& text) {
    Handle<GXGeometry> geometry;
    if (!report.Check(GXCreateGeometry(geometry.Out()), "GXCreateGeometry"))
        return geometry;
    for (const fz_text_span* span = text.head; span; span = span->next) {
        if (fz_font_t3_procs(m_ctx, span->font)) {
            report.Notice("type 3 glyphs left out of a clip");
            continue;
        }
        for (int i = 0; i < span->len; ++i) {
            if (span->items[i].gid < 0)
                continue;
            if (const GXGeometry outline = Outline(report, span->font, span->items[i].gid))
                report.Check(AppendGeometry(outline, Placement(*span, span->items[i]), geometry.Get())
                                 ? GXResultSuccess
                                 : GXResultEngineError,
                             "GXGeometrySendToSink");
        }
    }
    return geometry;
}

} // namespace PdfPage
