// SPDX-License-Identifier: MIT
// Text is drawn from its baseline, and measured before it is placed.
#include "Guide.h"

#include <string>

namespace {

const uint16_t* Units(const std::u16string& text) { return reinterpret_cast<const uint16_t*>(text.c_str()); }

Owned<GXFontFace> Face(float points, uint32_t flags = 0) {
    Owned<GXFontFace> face;
    CHECK(GXCreateFontFace(Units(u"Liberation Sans"), flags, points, face.Out()));
    return face;
}

float Advance(GXFontFace face, const std::u16string& text) {
    float size[2];
    CHECK(GXFontFaceCalculateTextBound(face, Units(text), size));
    return size[0]; // pixels; size[1] is the size that the face was made with, in points
}

// With the baseline's start at (x, y) under the matrix of the moment.
void Write(GXRenderTarget page, GXFontFace face, const std::u16string& text, float x, float y, GXBrush brush) {
    CHECK(GXRenderTargetPushState(page));
    CHECK(GXRenderTargetTranslateCTM(page, x, y));
    CHECK(GXRenderTargetFillText(page, face, Units(text), brush));
    CHECK(GXRenderTargetPopState(page));
}

} // namespace

int main() {
    Page page(420, 200);
    const auto ink = Solid(0xFF264653), pale = Solid(0xFFF3DDB3), red = Solid(0xFFE76F51);

    // A background as wide as the text, a line at its baseline.
    const auto title = Face(24, GXFontBold);
    const std::u16string words = u"Measured text";
    const float width = Advance(title, words);
    const GXRect back = {20, 16, 20 + width, 56};
    const GXPoint from = {20, 48}, to = {20 + width, 48};
    CHECK(GXRenderTargetFillRect(page, &back, pale));
    CHECK(GXRenderTargetStrokeLine(page, &from, &to, red, 1, nullptr));
    Write(page, title, words, 20, 48, ink);

    // Set to the left, to the middle and to the right of a column.
    const auto body = Face(11);
    const std::u16string lines[] = {u"to the left", u"in the middle", u"to the right"};
    for (int i = 0; i < 3; ++i) {
        const float free = 180 - Advance(body, lines[i]);
        Write(page, body, lines[i], 20 + free * static_cast<float>(i) / 2, 90 + 22 * static_cast<float>(i), ink);
    }
    const GXRect column = {20, 70, 200, 144};
    CHECK(GXRenderTargetStrokeRect(page, &column, pale, 1, nullptr));

    // One word after the other: where one ends the next begins. Each keeps its own brush and style.
    float x = 20;
    for (const auto& [word, flags] :
         {std::pair<std::u16string, uint32_t>{u"regular ", 0}, {u"bold ", GXFontBold}, {u"italic", GXFontItalic}}) {
        const auto face = Face(13, flags);
        Write(page, face, word, x, 176, flags == 0 ? ink : red);
        x += Advance(face, word);
    }

    // Under a matrix text turns, grows and leans like everything else.
    CHECK(GXRenderTargetTranslateCTM(page, 320, 110));
    const auto ray = Face(12);
    for (int i = 0; i < 12; ++i) {
        Write(page, ray, u"outward", 26, 4, i % 2 == 0 ? ink : red);
        CHECK(GXRenderTargetRotateCTM(page, 3.14159265f / 6));
    }
    page.Save(L"text-and-measuring.png");
}
