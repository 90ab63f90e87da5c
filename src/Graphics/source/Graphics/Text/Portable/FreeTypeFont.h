// SPDX-License-Identifier: MIT
// A font face read with FreeType. Outlines are loaded unhinted in font units and scaled here, so they are rounded only
// once between file and shape.
#pragma once

#include "../FontBase.h"
#include "FontLibrary.h"

namespace Graphics {

class FreeTypeFont final : public FontBase {
public:
    /// Call under the lock. Raises "No font found" if the file is not a font with outlines.
    FreeTypeFont(std::shared_ptr<FontLibrary> library, const FontMatch& match, float size);
    ~FreeTypeFont() override;

    void LookUp(std::span<const uint16_t> text, uint16_t* glyphs) const override;
    void Outline(uint16_t glyph, Geometry& out, GlyphMetrics& metrics) const override;

private:
    std::shared_ptr<FontLibrary> m_library;
    FT_Face m_face = nullptr;
    FontMatch m_match;
    double m_scale = 0.0; // pixels per font unit
    bool m_symbols = false;
};

} // namespace Graphics
