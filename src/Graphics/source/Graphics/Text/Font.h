// SPDX-License-Identifier: MIT
// The object behind a font face handle: a platform font and the glyphs that it has been asked for. A glyph is read once
// and kept as long as the face, so drawing text takes neither a lock nor memory once its glyphs are known, and their
// coverage is found again under the same shapes.
#pragma once

#include <array>
#include <atomic>
#include <memory>

#include "FontBase.h"

namespace Graphics {

struct FontGlyph {
    Shape shape; ///< empty for a blank
    GlyphMetrics metrics;
};

/// Glyphs by a 16-bit number. Readers never wait; several threads may add.
class GlyphTable {
public:
    GlyphTable() noexcept = default;
    GlyphTable(const GlyphTable&) = delete;
    GlyphTable& operator=(const GlyphTable&) = delete;
    ~GlyphTable();

    /// Null where nothing was put.
    [[nodiscard]] const FontGlyph* Get(uint16_t number) const noexcept {
        const Page* page = m_pages[number >> 8].load(std::memory_order_acquire);
        return page == nullptr ? nullptr : (*page)[number & 255].load(std::memory_order_acquire);
    }
    /// Puts a glyph unless another thread was first; returns the one that is there now.
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
    /// Of one UTF-16 code unit; lives as long as the font.
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
    mutable GlyphTable m_byIndex; // owns: many code units may share one glyph, as all that are missing do
};

} // namespace Graphics
