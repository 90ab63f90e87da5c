// SPDX-License-Identifier: MIT
// Text: glyph outlines, and type 3 glyphs by running their procedures.
#include "Painter.h"

namespace PdfPage {

void Painter::FillText(const fz_text& text, const fz_matrix& ctm, const Paint& paint) {
    for (const fz_text_span* span = text.head; span; span = span->next) {
        if (fz_font_t3_procs(m_ctx, span->font)) {
            FillType3(*span, ctm, paint);
            continue;
        }
        const GXBrush brush = Brush(paint);
        for (int i = 0; i < span->len; ++i) {
            const fz_text_item& item = span->items[i];
            const GXGeometry outline = item.gid < 0 ? nullptr : m_caches.glyphs.Outline(m_report, span->font, item.gid);
            if (!outline)
                continue;
            Current().SetMatrix(fz_concat(Glyphs::Placement(*span, item), ctm));
            m_report.Check(m_calls.FillTextGeometry(Target(), outline, brush), "GXRenderTargetFillTextGeometry");
        }
    }
}

void Painter::FillType3(const fz_text_span& span, const fz_matrix& ctm, const Paint& paint) {
    constexpr int kMaxDepth = 8; // a damaged font may show itself
    if (m_type3Depth >= kMaxDepth)
        return;
    const GXColor color = Color(paint);
    const GXColor* const before = m_stencilColor;
    ++m_type3Depth;
    for (int i = 0; i < span.len; ++i) {
        const fz_text_item& item = span.items[i];
        if (item.gid < 0 || item.gid >= 256)
            continue;
        // A glyph declared as a stencil has no colours of its own.
        m_stencilColor = before || (span.font->t3flags[item.gid] & FZ_DEVFLAG_MASK) ? &color : nullptr;
        const fz_matrix matrix = fz_concat(Glyphs::Placement(span, item), ctm);
        Try(m_ctx, [&] { fz_run_t3_glyph(m_ctx, span.font, item.gid, matrix, m_device); });
    }
    --m_type3Depth;
    m_stencilColor = before;
}

void Painter::StrokeText(const fz_text& text, const fz_stroke_state& stroke, const fz_matrix& ctm, const Paint& paint) {
    for (const fz_text_span* span = text.head; span; span = span->next) {
        if (fz_font_t3_procs(m_ctx, span->font)) {
            FillType3(*span, ctm, paint);
            continue;
        }
        for (int i = 0; i < span->len; ++i) {
            const fz_text_item& item = span->items[i];
            const GXGeometry outline = item.gid < 0 ? nullptr : m_caches.glyphs.Outline(m_report, span->font, item.gid);
            if (!outline)
                continue;
            // The pen works in the text's user space, so the outline has to be brought there.
            const GXMatrix placement = ToMatrix(Glyphs::Placement(*span, item));
            Handle<GXGeometry> placed;
            if (m_report.Check(GXGeometryTransform(outline, &placement, placed.Out()), "GXGeometryTransform"))
                Stroke(nullptr, placed.Get(), stroke, ctm, Brush(paint));
        }
    }
}

void Painter::ClipText(const fz_text& text, const fz_matrix& ctm) {
    const Handle<GXGeometry> geometry = m_caches.glyphs.TextGeometry(m_report, text);
    Current().PushClip(geometry.Get(), ctm);
}

void Painter::ClipStrokeText(const fz_text& text, const fz_stroke_state& stroke, const fz_matrix& ctm) {
    const Handle<GXGeometry> geometry = m_caches.glyphs.TextGeometry(m_report, text);
    ClipStroke(nullptr, geometry.Get(), stroke, ctm);
}

} // namespace PdfPage
