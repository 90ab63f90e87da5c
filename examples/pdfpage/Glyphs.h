// SPDX-License-Identifier: MIT
// Glyph outlines in em units, one geometry for each font and glyph, kept for the whole document.
#pragma once

#include "Handle.h"
#include "MuPdf.h"
#include "Report.h"

#include <unordered_map>

namespace PdfPage {

class Glyphs {
public:
    explicit Glyphs(fz_context* ctx) : m_ctx(ctx) {}
    ~Glyphs();
    Glyphs(const Glyphs&) = delete;
    Glyphs& operator=(const Glyphs&) = delete;

    // Null for a glyph without an outline.
    GXGeometry Outline(Report& report, fz_font* font, int gid);

    // The matrix that places one item of a span: the span's matrix at the item's position.
    static fz_matrix Placement(const fz_text_span& span, const fz_text_item& item) {
        return {span.trm.a, span.trm.b, span.trm.c, span.trm.d, item.x, item.y};
    }

    // All outlines of a text in one non-zero geometry, in the text's user space. Type 3 glyphs have none.
    Handle<GXGeometry> TextGeometry(Report& report, const fz_text& text);

private:
    fz_context* m_ctx;
    // The fonts are kept, so that an address never comes to mean another font.
    std::unordered_map<fz_font*, std::unordered_map<int, Handle<GXGeometry>>> m_fonts;
};

} // namespace PdfPage
