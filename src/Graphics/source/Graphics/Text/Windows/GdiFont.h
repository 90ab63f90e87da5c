// SPDX-License-Identifier: MIT
// A font of GDI. Outlines are those that GDI makes at the pixel size; they may be hinted.
#pragma once

#include "../../Windows/SystemCalls.h"
#include "../FontBase.h"

namespace Graphics {

class GdiFont final : public FontBase {
public:
    /// Takes the font over; null is a font that the system could not make, whose glyphs are those of whatever font a
    /// device context begins with.
    GdiFont(HFONT font, float size) noexcept : FontBase(size), m_font(font) {}
    ~GdiFont() override;

    void LookUp(std::span<const uint16_t> text, uint16_t* glyphs) const override;
    void Outline(uint16_t glyph, Geometry& out, GlyphMetrics& metrics) const override;

private:
    HFONT m_font;
};

} // namespace Graphics
