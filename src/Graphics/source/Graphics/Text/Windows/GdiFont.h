// SPDX-License-Identifier: MIT
// A GDI font. GDI makes the outlines at the pixel size; they may be hinted.
#pragma once

#include "../../Windows/SystemCalls.h"
#include "../FontBase.h"

namespace Graphics {

class GdiFont final : public FontBase {
public:
    /// Takes ownership of the font. Null is a font that the system could not create; its glyphs are then those of the
    /// device context's default font.
    GdiFont(HFONT font, float size) noexcept : FontBase(size), m_font(font) {}
    ~GdiFont() override;

    void LookUp(std::span<const uint16_t> text, uint16_t* glyphs) const override;
    void Outline(uint16_t glyph, Geometry& out, GlyphMetrics& metrics) const override;

private:
    HFONT m_font;
};

} // namespace Graphics
