// SPDX-License-Identifier: MIT
// Font faces against FreeType read here once more, at a size and in its own fixed point; the glyphs that a font keeps;
// damaged files and refused memory. The fonts are those of Debian's fonts-liberation.
#include <freetype/ftoutln.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <thread>
#include <vector>

#include "../../ScratchFolder.h"
#include "Exception.h"
#include "ProcessHeap.h"
#include "Text/Font.h"
#include "Text/Portable/FreeTypeFont.h"

namespace Graphics {
namespace {

const std::string kFolder = "/usr/share/fonts/truetype/liberation/";

std::vector<uint16_t> Utf16(const char* ascii) {
    std::vector<uint16_t> out(ascii, ascii + std::char_traits<char>::length(ascii));
    out.push_back(0);
    return out;
}

std::shared_ptr<const FontBase> Make(const char* name, uint32_t flags, float size) {
    return FontBase::Create(Utf16(name).data(), flags, size);
}

std::shared_ptr<const FontBase> FromFile(const std::string& file, float size, const FontMatch& how = {}) {
    const std::lock_guard lock(FontLibrary::Lock());
    FontMatch match = how;
    match.file = file;
    return std::make_shared<FreeTypeFont>(FontLibrary::Get(), match, size);
}

uint16_t IndexOf(const FontBase& font, uint16_t unit) {
    uint16_t index = 0;
    font.LookUp({&unit, 1}, &index);
    return index;
}

/// FreeType by itself, scaled by FreeType.
class Reference {
public:
    Reference(const std::string& file, unsigned pixels) {
        EXPECT_EQ(FT_Init_FreeType(&m_library), 0);
        EXPECT_EQ(FT_New_Face(m_library, file.c_str(), 0, &m_face), 0) << file << " (Debian: fonts-liberation)";
        EXPECT_EQ(FT_Set_Pixel_Sizes(m_face, 0, pixels), 0);
    }
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;
    ~Reference() {
        FT_Done_Face(m_face);
        FT_Done_FreeType(m_library);
    }
    FT_GlyphSlot Load(FT_ULong unit) {
        EXPECT_EQ(FT_Load_Char(m_face, unit, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP), 0);
        return m_face->glyph;
    }

private:
    FT_Library m_library = nullptr;
    FT_Face m_face = nullptr;
};

void CompareWithFile(const FontBase& font, const std::string& file, unsigned pixels) {
    Reference reference(file, pixels);
    for (uint16_t unit = 33; unit < 0x17F; unit = static_cast<uint16_t>(unit + 7)) {
        Geometry shape;
        GlyphMetrics metrics;
        font.Outline(IndexOf(font, unit), shape, metrics);
        const FT_GlyphSlot slot = reference.Load(unit);
        FT_BBox box;
        FT_Outline_Get_CBox(&slot->outline, &box);
        SCOPED_TRACE(file + " " + std::to_string(pixels) + " code unit " + std::to_string(unit));
        // FreeType rounds coordinates to 1/64 pixel.
        const float near = 1.0F / 32;
        if (slot->outline.n_points != 0) {
            const Rect ours = shape.ControlBox();
            EXPECT_NEAR(ours.left, static_cast<float>(box.xMin) / 64, near);
            EXPECT_NEAR(ours.top, -static_cast<float>(box.yMax) / 64, near);
            EXPECT_NEAR(ours.right, static_cast<float>(box.xMax) / 64, near);
            EXPECT_NEAR(ours.bottom, -static_cast<float>(box.yMin) / 64, near);
            EXPECT_LE(metrics.originX, ours.left);
            EXPECT_LE(metrics.originY, ours.top);
            EXPECT_GE(metrics.originX + metrics.boxWidth, ours.right);
            EXPECT_GE(metrics.originY + metrics.boxHeight, ours.bottom);
            EXPECT_LT(metrics.boxWidth, ours.right - ours.left + 2);
            EXPECT_LT(metrics.boxHeight, ours.bottom - ours.top + 2);
        }
        EXPECT_EQ(metrics.advanceX, std::floor(static_cast<double>(slot->linearHoriAdvance) / 65536 + 0.5));
        EXPECT_EQ(metrics.advanceY, 0.0F);
    }
}

TEST(Font, NamesFlagsAndSizesGiveTheFilesOwnGlyphs) {
    const struct {
        const char* name;
        uint32_t flags;
        float size;
        const char* file;
        unsigned pixels;
    } rows[] = {
        {"Liberation Sans", 0, 12.0F, "LiberationSans-Regular.ttf", 16},
        {"Liberation Sans", GXFontBold, 7.5F, "LiberationSans-Bold.ttf", 10},
        {"Liberation Serif", GXFontItalic, 30.0F, "LiberationSerif-Italic.ttf", 40},
        {"liberation mono", GXFontBold | GXFontItalic, 13.3F, "LiberationMono-BoldItalic.ttf", 17}, // 17.73 truncated
        {"Liberation Serif", 0, 900.0F, "LiberationSerif-Regular.ttf", 1200},
    };
    for (const auto& row : rows) {
        const auto font = Make(row.name, row.flags, row.size);
        EXPECT_EQ(font->GetSize(), row.size);
        CompareWithFile(*font, kFolder + row.file, row.pixels);
    }
}

TEST(Font, HeightFollowsTheSize) {
    EXPECT_EQ(FontBase::PixelHeight(12.0F), -16);
    EXPECT_EQ(FontBase::PixelHeight(0.7F), 0);
    EXPECT_EQ(FontBase::PixelHeight(-12.0F), 16);
    EXPECT_EQ(FontBase::PixelHeight(NAN), 0);
    EXPECT_EQ(FontBase::PixelHeight(INFINITY), INT32_MIN);
    const auto top = [](float size) {
        Geometry shape;
        GlyphMetrics metrics;
        const auto font = Make("Liberation Sans", 0, size);
        font->Outline(IndexOf(*font, 'H'), shape, metrics);
        return -shape.ControlBox().top;
    };
    // The platform's own choice is 12 points.
    EXPECT_EQ(top(0.0F), top(12.0F));
    EXPECT_EQ(top(NAN), top(12.0F));
    // A line of 16 pixels holds a smaller em: Liberation's line is (1854 + 434) / 2048 of it.
    EXPECT_NEAR(top(-12.0F), top(12.0F) * 2048 / (1854 + 434), 1e-4);
    EXPECT_GT(top(1.0e30F), 1.0e8F);
}

TEST(Font, UnknownFacesFallBackToTheDefaultOne) {
    const auto width = [](const Font& font) { return font.TextWidth(Utf16("The quick brown fox.").data()); };
    const Font unknown(Make("No Such Face 7301", 0, 40.0F));
    const Font byDefault(Make("", 0, 40.0F));
    EXPECT_GT(width(unknown), 100.0F);
    EXPECT_EQ(width(unknown), width(byDefault));
    const uint16_t strange[] = {0xD800, 'a', 0xDC00, 0xD83D, 0xDE00, 0xFFFF, 0}; // not well-formed
    EXPECT_EQ(width(Font(FontBase::Create(strange, 0xFFFFFFFC, 40.0F))), width(byDefault));
}

TEST(Font, SlantAndWeightAreMadeWhereTheFileHasNone) {
    const std::string file = kFolder + "LiberationSans-Regular.ttf";
    const auto plain = FromFile(file, 72.0F);
    FontMatch how;
    how.matrix[1] = 0.2; // x + 0.2 y, y up
    const auto slanted = FromFile(file, 72.0F, how);
    FontMatch heavy;
    heavy.embolden = true;
    const auto bold = FromFile(file, 72.0F, heavy);
    const uint16_t index = IndexOf(*plain, 'I');
    Geometry upright;
    Geometry slant;
    Geometry fat;
    GlyphMetrics metrics;
    GlyphMetrics boldMetrics;
    plain->Outline(index, upright, metrics);
    slanted->Outline(index, slant, boldMetrics);
    EXPECT_EQ(boldMetrics.advanceX, metrics.advanceX);
    bold->Outline(index, fat, boldMetrics);
    const auto points = upright.Figures().front().Points();
    const auto moved = slant.Figures().front().Points();
    ASSERT_EQ(points.size(), moved.size());
    for (size_t i = 0; i < points.size(); ++i) {
        EXPECT_NEAR(moved[i].x, points[i].x - 0.2F * points[i].y, 1e-4);
        EXPECT_EQ(moved[i].y, points[i].y);
    }
    const auto width = [](const Shape& s) { return s.ControlBox().right - s.ControlBox().left; };
    EXPECT_NEAR(width(fat) - width(upright), 96.0F / 24, 0.1);
    EXPECT_NEAR(boldMetrics.advanceX - metrics.advanceX, 96.0F / 24, 1);
}

/// Which calls an outline is, with the end points' distance from the curve's last control point.
class CallList {
public:
    void BeginFigure(const Point& p) { Add('M', p); }
    void EndFigure() { calls += 'e'; }
    void EndFigureClose() { calls += 'Z'; }
    void LineTo(const Point& p) { Add('L', p); }
    void CubicTo(const Point&, const Point& c2, const Point& end) {
        Add(c2.x == end.x && c2.y == end.y ? 'q' : 'C', end);
    }
    std::string calls;
    std::vector<Point> ends;

private:
    void Add(char call, const Point& p) {
        calls += call;
        ends.push_back(p);
    }
};

TEST(Font, QuadraticPiecesAreCubicsWithTheEndTwice) {
    const auto font = FromFile(kFolder + "LiberationSans-Regular.ttf", 24.0F);
    Geometry outline;
    GlyphMetrics metrics;
    font->Outline(IndexOf(*font, 'o'), outline, metrics);
    CallList o;
    outline.ReplayFigures(o);
    ASSERT_FALSE(o.calls.empty());
    EXPECT_EQ(std::count(o.calls.begin(), o.calls.end(), 'Z'), 2); // two contours
    EXPECT_EQ(std::count(o.calls.begin(), o.calls.end(), 'C'), 0);
    EXPECT_GT(std::count(o.calls.begin(), o.calls.end(), 'q'), 8);
    // Every figure comes back to where it began.
    size_t first = 0;
    size_t at = 0;
    for (const char call : o.calls) {
        if (call == 'M') {
            first = at;
        }
        if (call == 'Z') {
            EXPECT_EQ(o.ends[at - 1].x, o.ends[first].x);
            EXPECT_EQ(o.ends[at - 1].y, o.ends[first].y);
            continue;
        }
        ++at;
    }
}

TEST(Font, EveryCodeUnitHasAGlyphAndSharesIt) {
    const Font font(Make("Liberation Sans", 0, 12.0F));
    const FontGlyph& missing = font.Glyph(0xE000);
    EXPECT_EQ(&font.Glyph(0xE001), &missing);
    for (const uint16_t surrogate : {0xD800, 0xDBFF, 0xDC00, 0xDFFF}) {
        EXPECT_EQ(&font.Glyph(surrogate), &missing);
    }
    EXPECT_FALSE(missing.shape.Empty()); // a box
    EXPECT_TRUE(font.Glyph(' ').shape.Empty());
    EXPECT_GT(font.Glyph(' ').metrics.advanceX, 0.0F);
    EXPECT_EQ(&font.Glyph('A'), &font.Glyph('A'));
    EXPECT_NE(&font.Glyph('A'), &font.Glyph('B'));
    EXPECT_EQ(font.TextWidth(Utf16("").data()), 0.0F);
    const uint16_t pair[] = {0xD83D, 0xDE00, 'A', 0};
    EXPECT_EQ(font.TextWidth(pair), 2 * missing.metrics.advanceX + font.Glyph('A').metrics.advanceX);
}

TEST(Font, ThreadsReadOneFontAtOnce) {
    const Font font(Make("Liberation Serif", 0, 12.0F));
    std::vector<std::vector<const FontGlyph*>> seen(4);
    std::vector<std::thread> threads;
    for (auto& glyphs : seen) {
        threads.emplace_back([&] {
            for (uint16_t unit = 1; unit < 700; ++unit) {
                glyphs.push_back(&font.Glyph(unit));
            }
            static_cast<void>(Make("Liberation Sans", 0, 12.0F)); // while others read
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (const auto& glyphs : seen) {
        EXPECT_EQ(glyphs, seen[0]);
    }
}

TEST(Font, DamagedFilesAreRefusedOrReadWithoutHarm) {
    std::ifstream in(kFolder + "LiberationSans-Regular.ttf", std::ios::binary);
    const std::string whole((std::istreambuf_iterator<char>(in)), {});
    ASSERT_GT(whole.size(), 1000U);
    const std::string file = (ScratchFolder() / "damaged.ttf").string();
    std::mt19937 random(11);
    for (int round = 0; round < 40; ++round) {
        std::string bytes = whole;
        if (round % 2 == 0) {
            bytes.resize(random() % bytes.size());
        } else {
            for (int i = 0; i < 400; ++i) {
                bytes[random() % (round % 4 == 1 ? 4000 : bytes.size())] = static_cast<char>(random());
            }
        }
        std::ofstream(file, std::ios::binary) << bytes;
        try {
            const Font font(FromFile(file, 12.0F));
            for (uint16_t unit = 32; unit < 300; ++unit) {
                EXPECT_TRUE(std::isfinite(font.Glyph(unit).metrics.advanceX));
            }
        } catch (const Exception& e) {
            EXPECT_STREQ(e.what(), "No font found");
        }
    }
    std::filesystem::remove(file);
    EXPECT_THROW(FromFile(file, 12.0F), Exception); // not there any more
}

/// Refuses each allocation of `work` in turn, until none is asked for any more.
template <class Work> void RefuseEach(Work&& work) {
    bool allGiven = false;
    for (int64_t n = 0; !allGiven && n < 5000; ++n) {
        const int64_t before = ProcessHeap::FailAfter(n);
        bool passed = false;
        try {
            work();
            passed = true;
        } catch (const Exception& e) {
            EXPECT_STREQ(e.what(), "Not enough memory") << "allocation " << n;
        }
        allGiven = ProcessHeap::FailAfter(-1) - before <= n;
        EXPECT_EQ(passed, allGiven) << "allocation " << n;
    }
    EXPECT_TRUE(allGiven);
}

TEST(Font, RefusedMemoryIsAnErrorAndLeavesNothingBehind) {
    RefuseEach([] { FontLibrary library; });
    const auto text = Utf16("Refused & given");
    const auto measure = [&] {
        const Font font(Make("Liberation Sans", 0, 12.0F));
        return font.TextWidth(text.data()) + static_cast<float>(font.Glyph('&').shape.Figures().size());
    };
    const float expected = measure();
    RefuseEach([&] { EXPECT_EQ(measure(), expected); });
    EXPECT_EQ(measure(), expected);
}

} // namespace
} // namespace Graphics
