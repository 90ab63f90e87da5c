// SPDX-License-Identifier: MIT
// What GDI is asked for a font and its glyphs, what comes of its refusals, and that all is given back.
#include "WindowsSupport.h"

#include "ProcessHeap.h"

#include <cmath>

namespace {

using namespace TargetSupport;
using namespace WindowsSupport;

const uint16_t* Utf16(const wchar_t* text) { return reinterpret_cast<const uint16_t*>(text); }

struct Asked {
    int height = 0, width = -1, escapement = -1, orientation = -1, weight = 0;
    DWORD italic = 9, others = 9;
    std::wstring name;
    UINT format = 0;
    MAT2 matrix{};
    int mode = 0;
};
Asked g_asked;

HFONT WINAPI NoteFont(int height, int width, int escapement, int orientation, int weight, DWORD italic, DWORD underline,
                      DWORD strikeOut, DWORD charSet, DWORD outPrecision, DWORD clipPrecision, DWORD quality,
                      DWORD pitch, LPCWSTR name) {
    g_asked = {height, width, escapement, orientation, weight, italic, 0, name, 0, {}, 0};
    g_asked.others = underline | strikeOut | charSet | outPrecision | clipPrecision | quality | pitch;
    return ::CreateFontW(height, width, escapement, orientation, weight, italic, underline, strikeOut, charSet,
                         outPrecision, clipPrecision, quality, pitch, name);
}

DWORD WINAPI RefuseOutline(HDC, UINT, UINT, GLYPHMETRICS*, DWORD, void*, const MAT2*) { return GDI_ERROR; }

class Fonts : public ::testing::Test {
public:
    void TearDown() override { g_system = SystemCalls(); }

    /// Makes a face, measures and draws; 0 for success.
    GXResult Draw(const wchar_t* name = L"Liberation Sans", uint32_t flags = 0, float size = 12.0F) {
        width = -1.0F;
        Owned<GXFontFace> face;
        if (const GXResult made = GXCreateFontFace(Utf16(name), flags, size, face.Out()); made != GXResultSuccess) {
            return made;
        }
        float bound[2];
        if (const GXResult known = GXFontFaceCalculateTextBound(face, Utf16(L"Ao "), bound); known != GXResultSuccess) {
            return known;
        }
        width = bound[0];
        EXPECT_EQ(GXBitmapColorFill(canvas.bitmap, nullptr, 0), GXResultSuccess);
        const GXMatrix at{1, 0, 0, 1, 5, 30};
        EXPECT_EQ(GXRenderTargetSetCTM(canvas.target, &at), GXResultSuccess);
        const GXResult drawn = GXRenderTargetFillText(canvas.target, face, Utf16(L"Ao "), brush);
        inked = 0;
        for (const uint32_t pixel : canvas.Pixels()) {
            inked += pixel != 0;
        }
        return drawn;
    }

    const Owned<GXBrush> brush = Solid(0xFF000000U);
    const Canvas canvas{60, 40};
    float width = -1.0F; // of the text
    size_t inked = 0;    // pixels
};

TEST_F(Fonts, TheSystemIsAskedForWhatTheFaceSays) {
    g_system.createFont = NoteFont;
    ASSERT_EQ(Draw(L"Liberation Serif", GXFontItalic, 12.0F), GXResultSuccess);
    EXPECT_EQ(g_asked.height, -16);
    EXPECT_EQ(g_asked.width | g_asked.escapement | g_asked.orientation, 0);
    EXPECT_EQ(g_asked.weight, 400);
    EXPECT_EQ(g_asked.italic, 1U);
    EXPECT_EQ(g_asked.others, 0U);
    EXPECT_EQ(g_asked.name, L"Liberation Serif");
    ASSERT_EQ(Draw(L"", GXFontBold | 0xF0U, 10.9F), GXResultSuccess);
    EXPECT_EQ(g_asked.height, -14); // of 14.53
    EXPECT_EQ(g_asked.weight, 700);
    EXPECT_EQ(g_asked.italic, 0U);

    g_system.getGlyphOutline = [](HDC dc, UINT glyph, UINT format, GLYPHMETRICS* metrics, DWORD size, void* buffer,
                                  const MAT2* matrix) -> DWORD {
        g_asked.format = format;
        g_asked.matrix = *matrix;
        g_asked.mode = GetGraphicsMode(dc);
        return ::GetGlyphOutlineW(dc, glyph, format, metrics, size, buffer, matrix);
    };
    ASSERT_EQ(Draw(), GXResultSuccess);
    EXPECT_EQ(g_asked.format, 130U);
    EXPECT_EQ(g_asked.mode, GM_ADVANCED);
    const MAT2 down = {{0, 1}, {0, 0}, {0, 0}, {0, -1}};
    EXPECT_EQ(std::memcmp(&g_asked.matrix, &down, sizeof down), 0);
}

TEST_F(Fonts, UnknownNamesHaveAFontToo) {
    ASSERT_EQ(Draw(), GXResultSuccess);
    EXPECT_GT(width, 0.0F);
    EXPECT_GT(inked, 0U);
    for (const wchar_t* name : {L"No Such Face", L"", L"A name with far more than the 32 characters that GDI keeps"}) {
        ASSERT_EQ(Draw(name), GXResultSuccess);
        EXPECT_GT(width, 0.0F);
        EXPECT_GT(inked, 0U);
    }
}

TEST_F(Fonts, RefusalsLeaveAFaceAndTheNextTextIsWhole) {
    ASSERT_EQ(Draw(), GXResultSuccess);
    const float whole = width;
    const size_t ink = inked;
    const size_t objects = GdiObjects();
    const auto again = [&] {
        g_system = SystemCalls();
        ASSERT_EQ(Draw(), GXResultSuccess);
        EXPECT_EQ(width, whole);
        EXPECT_EQ(inked, ink);
        EXPECT_EQ(GdiObjects(), objects);
    };

    g_system.createFont = [](int, int, int, int, int, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD,
                             LPCWSTR) -> HFONT { return nullptr; };
    EXPECT_EQ(Draw(), GXResultSuccess); // with the context's own font
    EXPECT_GE(width, 0.0F);
    again();
    g_system.getGlyphOutline = RefuseOutline;
    EXPECT_EQ(Draw(), GXResultSuccess);
    EXPECT_EQ(inked, 0U);
    EXPECT_NEAR(width, whole, 1.0F) << "advances without outlines";
    again();
    g_system.getCharWidthI = [](HDC, UINT, UINT, WORD*, int*) -> BOOL { return 0; };
    g_system.getGlyphOutline = RefuseOutline;
    EXPECT_EQ(Draw(), GXResultSuccess);
    EXPECT_EQ(width, 0.0F);
    again();
    g_system.getGlyphOutline = [](HDC dc, UINT glyph, UINT format, GLYPHMETRICS* metrics, DWORD size, void* buffer,
                                  const MAT2* matrix) -> DWORD { // only the second call
        return buffer != nullptr ? GDI_ERROR : ::GetGlyphOutlineW(dc, glyph, format, metrics, size, buffer, matrix);
    };
    EXPECT_EQ(Draw(), GXResultSuccess);
    EXPECT_EQ(inked, 0U);
    EXPECT_EQ(width, whole);
    again();
    g_system.getGlyphIndices = [](HDC, LPCWSTR, int, WORD*, DWORD) -> DWORD { return GDI_ERROR; };
    EXPECT_EQ(Draw(), GXResultSuccess);
    EXPECT_GT(inked, 0U) << "the glyph of missing characters";
    again();
    int failures = 0;
    for (int64_t n = 0;; ++n) {
        Graphics::ProcessHeap::FailAfter(n);
        const GXResult result = Draw();
        Graphics::ProcessHeap::FailAfter(-1);
        EXPECT_EQ(GdiObjects(), objects);
        if (result == GXResultSuccess) {
            break;
        }
        ++failures;
        ASSERT_LT(n, 200);
    }
    EXPECT_GT(failures, 0);
    again();
}

TEST_F(Fonts, ManyFacesKeepTheNumberOfObjects) {
    ASSERT_EQ(Draw(), GXResultSuccess); // the context is made once and kept
    const size_t objects = GdiObjects();
    {
        Owned<GXFontFace> face;
        ASSERT_EQ(GXCreateFontFace(Utf16(L"Arial"), 0, 9.0F, face.Out()), GXResultSuccess);
        EXPECT_EQ(GdiObjects(), objects + 1) << "a face is one object";
    }
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(Draw(i % 2 != 0 ? L"Liberation Sans" : L"No Such Face", static_cast<uint32_t>(i % 4),
                       static_cast<float>(i % 40)),
                  GXResultSuccess);
    }
    EXPECT_EQ(GdiObjects(), objects);
}

} // namespace
