// SPDX-License-Identifier: MIT
// Font faces and text through the C interface, with a font that every test machine has (Debian: fonts-liberation).
#include "TargetSupport.h"

#include <cmath>
#include <limits>
#include <thread>

namespace {

using namespace TargetSupport;

using Text16 = std::vector<uint16_t>;

Text16 Utf16(const char* ascii) {
    Text16 out;
    for (; *ascii != 0; ++ascii) {
        out.push_back(static_cast<uint8_t>(*ascii));
    }
    out.push_back(0);
    return out;
}

Owned<GXFontFace> Face(const char* name, uint32_t flags, float size) {
    Owned<GXFontFace> face;
    EXPECT_EQ(GXCreateFontFace(Utf16(name).data(), flags, size, face.Out()), GXResultSuccess) << name << " " << size;
    return face;
}

struct Bound {
    float width = -1;
    float size = -1;
};

Bound Measure(GXFontFace face, const Text16& text) {
    float out[2] = {-1, -1};
    EXPECT_EQ(GXFontFaceCalculateTextBound(face, text.data(), out), GXResultSuccess);
    return {out[0], out[1]};
}

void Place(const Canvas& canvas, float x, float y) {
    const GXMatrix m{1, 0, 0, 1, x, y};
    ASSERT_EQ(GXRenderTargetSetCTM(canvas.target, &m), GXResultSuccess);
}

struct Ink {
    uint32_t left = UINT32_MAX, right = 0, top = UINT32_MAX, bottom = 0;
};

Ink InkOf(const Canvas& canvas) {
    Ink ink;
    const auto pixels = canvas.Pixels();
    for (uint32_t i = 0; i < pixels.size(); ++i) {
        if (pixels[i] != 0) {
            ink.left = std::min(ink.left, i % canvas.width);
            ink.right = std::max(ink.right, i % canvas.width);
            ink.top = std::min(ink.top, i / canvas.width);
            ink.bottom = std::max(ink.bottom, i / canvas.width);
        }
    }
    return ink;
}

TEST(Text, BoundsAddUpAndHoldTheInk) {
    const auto face = Face("Liberation Sans", 0, 24.0F);
    const auto ink = Solid(0xFF000000);
    const Text16 text = Utf16("Hxo nmH");
    float sum = 0;
    for (const uint16_t unit : text) {
        sum += unit == 0 ? 0 : Measure(face, {unit, 0}).width;
    }
    const Bound bound = Measure(face, text);
    EXPECT_EQ(bound.width, sum);
    EXPECT_EQ(bound.size, 24.0F);
    EXPECT_EQ(Measure(face, {0}).width, 0.0F);
    EXPECT_EQ(Measure(face, {0}).size, 24.0F);

    Canvas canvas(300, 80);
    Place(canvas, 20, 50);
    ASSERT_EQ(GXRenderTargetFillText(canvas.target, face, text.data(), ink), GXResultSuccess);
    const Ink drawn = InkOf(canvas);
    EXPECT_GE(drawn.left, 20U);
    EXPECT_LT(static_cast<float>(drawn.right), 20 + bound.width);
    EXPECT_GT(static_cast<float>(drawn.right), 20 + bound.width - 6);
    // H stands on the baseline and is 1409 / 2048 of the em of 32 pixels high; o hangs a little below.
    // Windows may hint, which moves level edges by less than a pixel.
    EXPECT_NEAR(drawn.top, 50.0 - 23.0, 1.0);
    EXPECT_LE(drawn.bottom, 51U);
}

TEST(Text, AStringIsItsGlyphsOneAdvanceAfterTheOther) {
    const auto face = Face("Liberation Serif", GXFontItalic, 20.0F);
    const auto brush = Solid(0xC0204060);
    Canvas whole(200, 60);
    Canvas parts(200, 60);
    const GXMatrix m{1.5F, 0.2F, -0.1F, 1.25F, 10.3F, 30.7F};
    GXMatrix at = m;
    ASSERT_EQ(GXRenderTargetSetCTM(whole.target, &m), GXResultSuccess);
    const Text16 text = Utf16("Wave gj");
    ASSERT_EQ(GXRenderTargetFillText(whole.target, face, text.data(), brush), GXResultSuccess);
    for (size_t i = 0; text[i] != 0; ++i) {
        const Text16 one{text[i], 0};
        ASSERT_EQ(GXRenderTargetSetCTM(parts.target, &at), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetFillText(parts.target, face, one.data(), brush), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetTranslateCTM(parts.target, Measure(face, one).width, 0), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetGetCTM(parts.target, &at), GXResultSuccess);
    }
    EXPECT_EQ(whole.Pixels(), parts.Pixels());
    GXMatrix after;
    ASSERT_EQ(GXRenderTargetGetCTM(whole.target, &after), GXResultSuccess);
    EXPECT_EQ(std::memcmp(&after, &m, sizeof m), 0);
}

TEST(Text, NothingAndStrangeTextLeaveEverythingInOrder) {
    const auto face = Face("Liberation Sans", 0, 12.0F);
    const auto brush = Solid(0xFF000000);
    Canvas canvas(100, 40);
    Place(canvas, 10, 30);
    ASSERT_EQ(GXRenderTargetFillText(canvas.target, face, Text16{0}.data(), brush), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetFillText(canvas.target, face, Utf16("   ").data(), brush), GXResultSuccess);
    EXPECT_EQ(InkOf(canvas).right, 0U);

    // A pair of surrogates is two missing characters, as is a lone one, and they show.
    const Text16 pair{0xD83D, 0xDE00, 0};
    const Text16 missing{0xE123, 0};
    EXPECT_EQ(Measure(face, pair).width, 2 * Measure(face, missing).width);
    ASSERT_EQ(GXRenderTargetFillText(canvas.target, face, pair.data(), brush), GXResultSuccess);
    EXPECT_GT(InkOf(canvas).right, 10U);

    // Half way: the second glyph meets a mask that cannot be.
    const GXMatrix m{1, 0, 0, 1, 3, 4};
    ASSERT_EQ(GXRenderTargetSetCTM(canvas.target, &m), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetSetShapeMask(canvas.target, 77, brush), GXResultSuccess);
    LastMessage message;
    EXPECT_EQ(GXRenderTargetFillText(canvas.target, face, pair.data(), brush), GXResultEngineError);
    EXPECT_EQ(message.Text(), "Unsupported soft mask type.");
    GXMatrix after;
    ASSERT_EQ(GXRenderTargetGetCTM(canvas.target, &after), GXResultSuccess);
    EXPECT_EQ(std::memcmp(&after, &m, sizeof m), 0);
    ASSERT_EQ(GXRenderTargetEndPaint(canvas.target), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetFillText(canvas.target, face, pair.data(), brush), GXResultEngineError);
    EXPECT_EQ(message.Text(), "Painting has not begun");
}

TEST(Text, AnySizeIsTaken) {
    const auto brush = Solid(0xFF000000);
    Canvas canvas(60, 40);
    for (const float size : {0.0F, -0.0F, 0.1F, 1.0F, -20.0F, 3000.0F, 1.0e30F, -1.0e30F, NAN, INFINITY, -INFINITY}) {
        const auto face = Face("Liberation Sans", GXFontBold, size);
        float out[2];
        ASSERT_EQ(GXFontFaceCalculateTextBound(face, Utf16("W").data(), out), GXResultSuccess);
        EXPECT_EQ(std::memcmp(&out[1], &size, sizeof size), 0);
        EXPECT_GE(out[0], 0.0F) << size;
        EXPECT_LE(out[0], 32767.0F) << size;
        for (const float x : {0.0F, 30.0F, -1.0e9F}) {
            Place(canvas, x, 30);
            EXPECT_EQ(GXRenderTargetFillText(canvas.target, face, Utf16("We").data(), brush), GXResultSuccess);
        }
    }
}

TEST(Text, ATextIsTheSameOnEveryThread) {
    const auto face = Face("Liberation Sans", 0, 11.0F);
    const auto brush = Solid(0xFF102030);
    const auto draw = [&] {
        Canvas canvas(220, 60);
        for (int line = 0; line < 5; ++line) {
            Place(canvas, 3.3F, 10.0F + 11.4F * static_cast<float>(line));
            EXPECT_EQ(GXRenderTargetFillText(canvas.target, face, Utf16("The quick brown fox, 123").data(), brush),
                      GXResultSuccess);
        }
        return canvas.Pixels();
    };
    std::vector<std::vector<uint32_t>> pages(4);
    std::vector<std::thread> threads;
    for (auto& page : pages) {
        threads.emplace_back([&] {
            for (int i = 0; i < 10; ++i) {
                page = draw();
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    const auto alone = draw();
    EXPECT_NE(alone, std::vector<uint32_t>(alone.size(), 0));
    for (const auto& page : pages) {
        EXPECT_EQ(page, alone);
    }
}

} // namespace
