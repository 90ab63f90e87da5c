// SPDX-License-Identifier: MIT
// The object behind a font face handle: a platform font and a table of its glyphs. (1) A glyph is read once and kept as
// long as the face, so drawing text with known glyphs needs neither locks nor memory. (2) Its shape keeps its identity,
// so its cached coverage is found again.
#pragma once

#include <array>
#include <atomic>
#include <memory>

#include "FontBase.h"

namespace Graphics {

struct FontGlyph {
    Shape shape; ///< empty for a blank glyph
    GlyphMetrics metrics;
};

/// Glyphs by a 16-bit number. Readers do not lock; several threads may add glyphs.
class GlyphTable {
public:
    GlyphTable() noexcept = default;
    GlyphTable(const GlyphTable&) = delete;
    GlyphTable& operator=(const GlyphTable&) = delete;
    ~GlyphTable();

    /// Null if there is none.
    [[nodiscard]] const FontGlyph* Get(uint16_t number) const noexcept {
        const Page* page = m_pages[number >> 8].load(std::memory_order_acquire);
        return page == nullptr ? nullptr : (*page)[number & 255].load(std::memory_order_acquire);
    }
    /// Adds a glyph unless another thread was first; returns the one that is stored.
    const FontGlyph* Put(uint16_t number, const FontGlyph* glyph);

    template <class F> void ForEach(F&& f) const {
        for (const auto& slot : m_pages) {
            if (const Page* page = slot.load(std::memory_order_acquire)) {
                for (const auto& glyph : *page) {
                    if (const FontGlyph* g = glyph.load(std::memory_order_acquire)) {
                        f(g);
                    }
                }
            }
        }
    }

private:
    using Page = std::array<std::atomic<const FontGlyph*>, 256>;
    std::array<std::atomic<Page*>, 256> m_pages{};
};

class Font {
public:
    explicit Font(std::shared_ptr<const FontBase> base) noexcept : m_base(std::move(base)) {}
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    ~Font();

    [[nodiscard]] float GetSize() const noexcept { return m_base->GetSize(); }
    /// The glyph of one UTF-16 code unit; lives as long as the font.
    [[nodiscard]] const FontGlyph& Glyph(uint16_t codeUnit) const {
        const FontGlyph* known = m_byCodeUnit.Get(codeUnit);
        return known != nullptr ? *known : Read(codeUnit);
    }
    /// Sum of the advances of null-terminated text.
    [[nodiscard]] float TextWidth(const uint16_t* text) const;

private:
    [[nodiscard]] const FontGlyph& Read(uint16_t codeUnit) const;

    std::shared_ptr<const FontBase> m_base;
    mutable GlyphTable m_byCodeUnit;
    mutable GlyphTable m_byIndex; // owns the glyphs; several code units may share one, such as the missing-glyph
};

} // namespace Graphics
