// SPDX-License-Identifier: MIT
#include "Font.h"

namespace Graphics {

GlyphTable::~GlyphTable() {
    for (const auto& slot : m_pages) {
        delete slot.load(std::memory_order_relaxed);
    }
}

const FontGlyph* GlyphTable::Put(uint16_t number, const FontGlyph* glyph) {
    std::atomic<Page*>& slot = m_pages[number >> 8];
    Page* page = slot.load(std::memory_order_acquire);
    if (page == nullptr) {
        auto fresh = std::make_unique<Page>();
        if (slot.compare_exchange_strong(page, fresh.get(), std::memory_order_acq_rel)) {
            page = fresh.release();
        }
    }
    const FontGlyph* there = nullptr;
    return (*page)[number & 255].compare_exchange_strong(there, glyph, std::memory_order_acq_rel) ? glyph : there;
}

Font::~Font() {
    m_byIndex.ForEach([](const FontGlyph* glyph) { delete glyph; });
}

const FontGlyph& Font::Read(uint16_t codeUnit) const {
    uint16_t index = 0;
    m_base->LookUp({&codeUnit, 1}, &index);
    const FontGlyph* glyph = m_byIndex.Get(index);
    if (glyph == nullptr) {
        Geometry outline;
        GlyphMetrics metrics;
        m_base->Outline(index, outline, metrics);
        std::unique_ptr<const FontGlyph> fresh(new FontGlyph{outline, metrics});
        glyph = m_byIndex.Put(index, fresh.get());
        if (glyph == fresh.get()) {
            static_cast<void>(fresh.release());
        }
    }
    return *m_byCodeUnit.Put(codeUnit, glyph);
}

float Font::TextWidth(const uint16_t* text) const {
    float width = 0.0F;
    for (; *text != 0; ++text) {
        width += Glyph(*text).metrics.advanceX;
    }
    return width;
}

} // namespace Graphics
