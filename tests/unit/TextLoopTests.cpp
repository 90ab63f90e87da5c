// SPDX-License-Identifier: MIT
// The loop that places the glyphs of a string, with a font made for the test: no platform's fonts move on vertically,
// but fonts of vertical writing do.
#include <gtest/gtest.h>

#include <vector>

#include "Bitmaps/Bitmap.h"
#include "Paint/Brush.h"
#include "Target/RenderTarget.h"
#include "Text/Font.h"

namespace Graphics {
namespace {

/// Every glyph is one pixel right below the origin; glyph n moves on by (n, 2n).
class DotFont final : public FontBase {
public:
    DotFont() : FontBase(10.0F) {}
    void LookUp(std::span<const uint16_t> text, uint16_t* glyphs) const override {
        std::copy(text.begin(), text.end(), glyphs);
    }
    void Outline(uint16_t glyph, Geometry& out, GlyphMetrics& metrics) const override {
        metrics.advanceX = glyph;
        metrics.advanceY = 2.0F * static_cast<float>(glyph);
        out.BeginFigure({0, 0});
        out.LineTo({1, 0});
        out.LineTo({1, 1});
        out.LineTo({0, 1});
        out.EndFigureClose();
    }
};

TEST(TextLoop, GlyphsMoveOnInBothDirectionsUnderTheMatrix) {
    const auto canvas = Bitmap::Create({16, 16, GXPixelFormatPBGRA32, 96.0F, 96.0F});
    canvas->ColorFill(nullptr, {0, 0, 0, 0});
    const auto target = RenderTarget::ForBitmap(canvas);
    const Font font(std::make_shared<DotFont>());
    const SolidBrush brush(Color{1, 0, 0, 1});
    const uint16_t text[] = {1, 3, 2, 0};
    target->BeginPaint();
    const Matrix swapped{0, 1, 1, 0, 1, 2}; // x and y exchanged, moved by (1, 2)
    target->SetTransform(swapped);
    target->FillText(font, text, brush);
    EXPECT_EQ(target->GetTransform().m20, 1.0F);
    EXPECT_EQ(target->GetTransform().m21, 2.0F);
    target->EndPaint();
    std::vector<uint32_t> pixels(256), expected(256);
    canvas->CopyToMemory(nullptr, {pixels.data(), 64, 64});
    for (const auto& [x, y] : {std::pair{0, 0}, std::pair{1, 2}, std::pair{4, 8}}) {
        expected[static_cast<size_t>(2 + x) * 16 + static_cast<size_t>(1 + y)] = 0xFFFF0000U;
    }
    EXPECT_EQ(pixels, expected) << "a glyph does not stand where those before it end";
    EXPECT_EQ(font.TextWidth(text), 6.0F);
}

} // namespace
} // namespace Graphics
