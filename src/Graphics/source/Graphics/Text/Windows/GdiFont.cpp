// SPDX-License-Identifier: MIT
#include "GdiFont.h"

#include <algorithm>

#include "../../ProcessHeap.h"
#include "../GlyphRecords.h"
#include "GlyphContext.h"

namespace Graphics {

std::shared_ptr<const FontBase> FontBase::Create(const uint16_t* faceName, uint32_t flags, float size) {
    const int weight = (flags & GXFontBold) != 0 ? FW_BOLD : FW_NORMAL;
    const DWORD italic = (flags & GXFontItalic) != 0 ? 1 : 0;
    const HFONT font = g_system.createFont(PixelHeight(size), 0, 0, 0, weight, italic, 0, 0, 0, 0, 0, 0, 0,
                                           reinterpret_cast<const wchar_t*>(faceName));
    try {
        return std::make_shared<GdiFont>(font, size);
    } catch (...) {
        g_system.deleteObject(font);
        throw;
    }
}

GdiFont::~GdiFont() {
    if (m_font != nullptr) {
        g_system.deleteObject(m_font);
    }
}

void GdiFont::LookUp(std::span<const uint16_t> text, uint16_t* glyphs) const {
    std::fill_n(glyphs, text.size(), uint16_t{0});
    const GlyphContext context(m_font);
    if (!text.empty()) {
        // On failure the glyphs stay 0, the missing-glyph.
        g_system.getGlyphIndices(context.Get(), reinterpret_cast<const wchar_t*>(text.data()),
                                 static_cast<int>(text.size()), glyphs, 0);
    }
}

void GdiFont::Outline(uint16_t glyph, Geometry& out, GlyphMetrics& metrics) const {
    metrics = {};
    constexpr UINT kFormat = GGO_NATIVE | GGO_GLYPH_INDEX;
    constexpr MAT2 kDownwards = {{0, 1}, {0, 0}, {0, 0}, {0, -1}};
    const GlyphContext context(m_font);
    GLYPHMETRICS known{};
    const DWORD size = g_system.getGlyphOutline(context.Get(), glyph, kFormat, &known, 0, nullptr, &kDownwards);
    if (size == GDI_ERROR) { // a bitmap font
        int advance = 0;
        if (g_system.getCharWidthI(context.Get(), glyph, 1, nullptr, &advance) != 0) {
            metrics.advanceX = static_cast<float>(advance);
        }
        return;
    }
    metrics.advanceX = static_cast<float>(known.gmCellIncX);
    metrics.advanceY = static_cast<float>(known.gmCellIncY);
    metrics.originX = static_cast<float>(known.gmptGlyphOrigin.x);
    metrics.originY = static_cast<float>(known.gmptGlyphOrigin.y);
    metrics.boxWidth = static_cast<float>(known.gmBlackBoxX);
    metrics.boxHeight = static_cast<float>(known.gmBlackBoxY);
    if (size == 0) { // a blank glyph
        return;
    }
    HeapArray<uint8_t> records;
    records.resize(size);
    const DWORD read =
        g_system.getGlyphOutline(context.Get(), glyph, kFormat, &known, size, records.data(), &kDownwards);
    if (read != GDI_ERROR) {
        AddGlyphRecords({records.data(), std::min(read, size)}, out);
    }
}

} // namespace Graphics
