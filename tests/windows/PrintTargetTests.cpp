// SPDX-License-Identifier: MIT
// The printer target on a picture in memory that answers as a printer does: what GDI+ is told, what the software
// renderer draws instead, and that whatever fails has its message and leaves no object behind.
#include "PrintSupport.h"

#include <random>

#include "Gdiplus/GdipBitmapColorSource.h"
#include "Gdiplus/GdipRenderTarget.h"
#include "Windows/GdiplusScope.h"

namespace {

using namespace TargetSupport;
using namespace WindowsSupport;
using namespace PrintSupport;
using Graphics::g_gdip;
using Graphics::GdipCalls;

class PrintTarget : public ::testing::Test {
public:
    void TearDown() override {
        g_gdip = GdipCalls();
        g_system = SystemCalls();
    }
    LastMessage message;
};

// The first printer target of a process brings GDI+ up; the test runs in a process of its own.
TEST_F(PrintTarget, StartsGdiplusOnceAndTriesAgainAfterAFailure) {
    static int starts;
    starts = 0;
    const bool fresh = !Graphics::GdiplusScope::IsUp();
    g_gdip.startup = [](ULONG_PTR*, const Gdiplus::GdiplusStartupInput*,
                        Gdiplus::GdiplusStartupOutput*) -> Gdiplus::Status { return Gdiplus::GdiplusNotInitialized; };
    EXPECT_THROW(const Graphics::GdiplusScope scope("Failed to gdi+ startup"), Graphics::Exception);
    EXPECT_EQ(message.Text(), "Failed to gdi+ startup");
    const Printer printer(40, 30, false);
    Owned<GXRenderTarget> target;
    if (fresh) {
        EXPECT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), target.Out()), GXResultEngineError);
        EXPECT_EQ(static_cast<GXRenderTarget>(target), nullptr);
    }
    g_gdip.startup = [](ULONG_PTR* token, const Gdiplus::GdiplusStartupInput* in,
                        Gdiplus::GdiplusStartupOutput* out) -> Gdiplus::Status {
        ++starts;
        return Gdiplus::GdiplusStartup(token, in, out);
    };
    for (int i = 0; i < 3; ++i) {
        Owned<GXRenderTarget> another;
        EXPECT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), another.Out()), GXResultSuccess);
    }
    EXPECT_EQ(starts, fresh ? 1 : 0);
}

// What the calls were told, in their order.
std::vector<std::string> g_told;
template <class Value> Gdiplus::GpStatus Tell(const char* name, Value value) {
    g_told.push_back(name + std::string(" ") + std::to_string(static_cast<int>(value)));
    return Gdiplus::Ok;
}

void ListenToState() {
    g_told.clear();
    g_gdip.saveGraphics = [](Gdiplus::GpGraphics*, Gdiplus::GraphicsState*) { return Tell("save", 0); };
    g_gdip.restoreGraphics = [](Gdiplus::GpGraphics*, Gdiplus::GraphicsState) { return Tell("restore", 0); };
    g_gdip.setCompositingMode = [](Gdiplus::GpGraphics*, Gdiplus::CompositingMode m) { return Tell("mode", m); };
    g_gdip.setCompositingQuality = [](Gdiplus::GpGraphics*, Gdiplus::CompositingQuality q) {
        return Tell("quality", q);
    };
    g_gdip.setInterpolationMode = [](Gdiplus::GpGraphics*, Gdiplus::InterpolationMode m) {
        return Tell("interpolation", m);
    };
    g_gdip.setPixelOffsetMode = [](Gdiplus::GpGraphics*, Gdiplus::PixelOffsetMode m) { return Tell("offset", m); };
    g_gdip.setSmoothingMode = [](Gdiplus::GpGraphics*, Gdiplus::SmoothingMode m) { return Tell("smoothing", m); };
    g_gdip.setPageUnit = [](Gdiplus::GpGraphics*, Gdiplus::GpUnit u) { return Tell("unit", u); };
    g_gdip.resetWorldTransform = [](Gdiplus::GpGraphics*) { return Tell("reset", 0); };
    g_gdip.fillPath = [](Gdiplus::GpGraphics*, Gdiplus::GpBrush*, Gdiplus::GpPath*) { return Tell("fill", 0); };
}

TEST_F(PrintTarget, EveryDrawHasItsState) {
    const Printer printer(40, 30, false);
    const Owned<GXBitmap> image = MakeBitmap(4, 4, GXPixelFormatBGRX32);
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), target.Out()), GXResultSuccess);
    const GXIntRect all{0, 0, 4, 4};
    const GXRect to{2, 2, 30, 28};
    const char* const modes[] = {"interpolation 5", "interpolation 4", "interpolation 7", "interpolation 5"};
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    for (uint32_t interpolation = 0; interpolation < 4; ++interpolation) {
        ListenToState();
        ASSERT_EQ(GXRenderTargetStretchBitmap(target, image, &to, &all, 1.0F, interpolation), GXResultSuccess);
        EXPECT_EQ(g_told, (std::vector<std::string>{"save 0", "mode 0", "quality 2", modes[interpolation], "offset 2",
                                                    "smoothing 2", "unit 3", "fill 0", "restore 0", "reset 0"}));
    }
    // A refusal in the middle is told, and the sequence goes on.
    const std::vector<std::string> whole = g_told;
    ListenToState();
    g_gdip.setPixelOffsetMode = [](Gdiplus::GpGraphics*, Gdiplus::PixelOffsetMode m) {
        Tell("offset", m);
        return Gdiplus::ValueOverflow;
    };
    g_gdip.setPageUnit = [](Gdiplus::GpGraphics*, Gdiplus::GpUnit u) {
        Tell("unit", u);
        return Gdiplus::WrongState;
    };
    EXPECT_EQ(GXRenderTargetStretchBitmap(target, image, &to, &all, 1.0F, 3), GXResultEngineError);
    EXPECT_EQ(message.Text(), "Gdiplus call failed - status: {11}");
    EXPECT_EQ(g_told, whole);
    g_gdip = GdipCalls();
    EXPECT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
}

TEST_F(PrintTarget, TexturesHaveTheWrapModesAndOpacitiesOfTheirBrushes) {
    using Source = Graphics::GdipBitmapColorSource;
    const int modes[4][4] = {{4, 0, 0, 0}, {0, 0, 2, 0}, {0, 1, 3, 0}, {0, 0, 0, 0}};
    for (uint32_t x = 0; x < 4; ++x) {
        for (uint32_t y = 0; y < 4; ++y) {
            EXPECT_EQ(static_cast<int>(Source::WrapModeOf(x, y)), modes[x][y]) << x << ", " << y;
        }
    }
    Graphics::GdiplusScope::BringUp();
    static int plain, scaled;
    static float alpha;
    static Gdiplus::ColorMatrixFlags flags;
    g_gdip.createTexture = [](Gdiplus::GpImage* i, Gdiplus::GpWrapMode m, Gdiplus::GpTexture** t) {
        plain += m == Gdiplus::WrapModeTile;
        return Graphics::GdipFlat::GdipCreateTexture(i, m, t);
    };
    g_gdip.createTextureIA = [](Gdiplus::GpImage* i, const Gdiplus::GpImageAttributes* a, float x, float y, float w,
                                float h, Gdiplus::GpTexture** t) {
        scaled += x == 0.0F && y == 0.0F && w == 2.0F && h == 2.0F;
        return Graphics::GdipFlat::GdipCreateTextureIA(i, a, x, y, w, h, t);
    };
    g_gdip.setImageAttributesColorMatrix = [](Gdiplus::GpImageAttributes* a, Gdiplus::ColorAdjustType type, BOOL on,
                                              const Gdiplus::ColorMatrix* m, const Gdiplus::ColorMatrix* grey,
                                              Gdiplus::ColorMatrixFlags f) {
        alpha = m->m[3][3];
        flags = f;
        EXPECT_TRUE(type == Gdiplus::ColorAdjustTypeBitmap && on && grey == nullptr && m->m[0][0] == 1.0F);
        return Graphics::GdipFlat::GdipSetImageAttributesColorMatrix(a, type, on, m, grey, f);
    };
    const auto bitmap = Graphics::Bitmap::Create({2, 2, GXPixelFormatBGRX32, 96.0F, 96.0F});
    bitmap->ColorFill(nullptr, {0, 1, 0, 1});
    for (const float opacity : {0.5F, 0.98F, 0.99F, 1.0F, 1.01F, 1.02F}) {
        plain = scaled = 0;
        Source source(Graphics::ImageInk(*bitmap, {0, 0, 2, 2}, opacity, 0), Graphics::kIdentity);
        source.Check();
        const bool isPlain = opacity >= 0.99F && opacity <= 1.01F;
        EXPECT_EQ(plain, isPlain ? 1 : 0) << opacity;
        EXPECT_EQ(scaled, isPlain ? 0 : 1) << opacity;
        EXPECT_TRUE(isPlain || (alpha == opacity && flags == Gdiplus::ColorMatrixFlagsDefault)) << opacity;
    }
}

// Every pixel under alpha, groups and inversion is the screen's where the printer cannot composite.
TEST_F(PrintTarget, WhatGdiplusCannotCompositeIsThatOfABitmap) {
    const Printer printer(93, 61, false);
    SetMapMode(printer.Context(), MM_LOMETRIC); // a host may leave its context in any state
    SetViewportOrgEx(printer.Context(), 17, 5, nullptr);
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), target.Out()), GXResultSuccess);
    GXSize size{};
    ASSERT_EQ(GXRenderTargetGetSize(target, &size), GXResultSuccess);
    EXPECT_TRUE(size.width == 93 && size.height == 61);
    for (int page = 0; page < 2; ++page) {
        printer.Picture().Fill(0x123456);
        ASSERT_EQ(DrawScene(target, 93, 61), GXResultSuccess);
        EXPECT_EQ(printer.Picture().Colors(), SceneColors(93, 61, 0xFFFFFF));
    }
}

// Pixels that only opaque paint and groups without effect reach are GDI+'s; those of a blend are the screen's, with all
// that lies below and above them, and nothing beyond.
TEST_F(PrintTarget, OnlyThePixelsOfAnEffectAreLeftToTheSoftwareRenderer) {
    static std::vector<GXIntRect> placed;
    placed.clear();
    const Printer printer(64, 48, false);
    g_system.stretchDIBits = [](HDC dc, int x, int y, int w, int h, int sx, int sy, int sw, int sh, const void* bits,
                                const BITMAPINFO* info, UINT use, DWORD how) -> int {
        placed.push_back({x, y, x + w, y + h});
        return ::StretchDIBits(dc, x, y, w, h, sx, sy, sw, sh, bits, info, use, how);
    };
    const auto draw = [](GXRenderTarget t, bool effect) {
        const Owned<GXBrush> red = Solid(0xFFD04020U), blue = Solid(0xFF3050C0U), light = Solid(0xFFE0E0A0U);
        const GXRect left{4, 4, 30, 40}, right{20, 10, 56, 30}, on{24, 12, 40, 24}, late{28, 14, 60, 18};
        const GXLayerDesc group{{0, 0, 0, 0}, 1.0F, 1, 0};
        EXPECT_EQ(GXRenderTargetBeginPaint(t), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetClear(t, 0xFFFFFFFFU), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetBeginLayer(t, &group), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetPushState(t), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetClipRect(t, &right), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetFillRect(t, &left, red), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetPopState(t), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetEndLayer(t), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetFillRect(t, &right, blue), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetFillRect(t, &left, red), GXResultSuccess);
        if (effect) {
            EXPECT_EQ(GXRenderTargetSetBlendMode(t, GXBlendModeDifference), GXResultSuccess);
            EXPECT_EQ(GXRenderTargetFillRect(t, &on, light), GXResultSuccess);
            EXPECT_EQ(GXRenderTargetSetBlendMode(t, GXBlendModeNormal), GXResultSuccess);
        }
        EXPECT_EQ(GXRenderTargetFillRect(t, &late, light), GXResultSuccess);
        return GXRenderTargetEndPaint(t);
    };
    for (const bool effect : {false, true}) {
        const Owned<GXBitmap> bitmap = MakeBitmap(64, 48, GXPixelFormatBGRX32);
        Owned<GXRenderTarget> plain, target;
        ASSERT_EQ(GXCreateRenderTargetBitmap(bitmap, plain.Out()), GXResultSuccess);
        ASSERT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), target.Out()), GXResultSuccess);
        ASSERT_EQ(draw(plain, effect), GXResultSuccess);
        ASSERT_EQ(draw(target, effect), GXResultSuccess);
        EXPECT_EQ(printer.Picture().Colors(), ColorsOf(bitmap, 64, 48)) << effect;
    }
    ASSERT_EQ(placed.size(), 1U);
    const GXIntRect r = placed[0];
    EXPECT_TRUE(r.left >= 23 && r.top >= 11 && r.right <= 41 && r.bottom <= 25);

    // What is cleared away leaves nothing to do, unless a clip keeps some of it.
    for (const bool clip : {false, true}) {
        placed.clear();
        Owned<GXRenderTarget> target;
        const Owned<GXBrush> half = Solid(0x80D04020U);
        const GXRect all{0, 0, 64, 48};
        ASSERT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), target.Out()), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetFillRect(target, &all, half), GXResultSuccess);
        if (clip) {
            ASSERT_EQ(GXRenderTargetClipEllipse(target, &all), GXResultSuccess);
        }
        ASSERT_EQ(GXRenderTargetClear(target, 0xFF00FF00U), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
        EXPECT_EQ(placed.empty(), !clip);
        EXPECT_EQ(printer.Picture().Colors()[24 * 64 + 32], 0x00FF00U);
        EXPECT_EQ(printer.Picture().Colors()[0] == 0x00FF00U, !clip);
    }
}

TEST_F(PrintTarget, BitmapsArePrintedAsTheyWereWhenTheyWereDrawn) {
    const Printer printer(32, 16, false);
    const Owned<GXBitmap> image = MakeBitmap(8, 8, GXPixelFormatBGRA32); // with alpha: drawn at the page's end
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), target.Out()), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    const GXIntRect all{0, 0, 8, 8};
    for (int i = 0; i < 3; ++i) {
        const uint32_t color = i == 0 ? 0x80FF0000U : i == 1 ? 0xFF00FF00U : 0x000000FFU;
        const GXRect to{static_cast<float>(i) * 10, 2, static_cast<float>(i) * 10 + 8, 10};
        ASSERT_EQ(GXBitmapColorFill(image, nullptr, color), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetStretchBitmap(target, image, &to, &all, 1.0F, 0), GXResultSuccess);
    }
    ASSERT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess) << message.Text();
    const std::vector<uint32_t> colors = printer.Picture().Colors();
    EXPECT_NEAR(static_cast<int>(colors[5 * 32 + 4] & 0xFF), 127, 1); // half red on white
    EXPECT_EQ(colors[5 * 32 + 4] >> 16, 0xFFU);
    EXPECT_EQ(colors[5 * 32 + 14], 0x00FF00U);
    EXPECT_EQ(colors[5 * 32 + 24], 0xFFFFFFU);
}

// Wine's GDI+ samples a texture at the corners of pixels instead of their centres and fills whole pixels: edges may be
// elsewhere by a pixel, colours by what half a pixel changes them.
TEST_F(PrintTarget, GradientsAndImagesOfGdiplusHaveTheColoursOfABitmap) {
    const Printer printer(120, 90, true);
    const auto draw = [](GXRenderTarget t) {
        const GXGradientStop stops[] = {{0.0F, 0xFF203A8CU}, {0.6F, 0xFFE86A5CU}, {1.0F, 0xFFFFE08AU}};
        const GXLinearGradientDesc linear{stops, 3, {10, 20}, {50, 35}, 1, 1, 0};
        const GXRadialGradientDesc radial{stops, 3, {86, 26}, 4, {90, 30}, 30, 1, 1, 0};
        Owned<GXGradient> along, around;
        EXPECT_EQ(GXCreateGradientLinear(&linear, along.Out()), GXResultSuccess);
        EXPECT_EQ(GXCreateGradientRadial(&radial, around.Out()), GXResultSuccess);
        Owned<GXBrush> a, b;
        EXPECT_EQ(GXCreateBrushGradient(along, 1.0F, nullptr, a.Out()), GXResultSuccess);
        EXPECT_EQ(GXCreateBrushGradient(around, 1.0F, nullptr, b.Out()), GXResultSuccess);
        const GXRect left{0, 0, 60, 90}, right{60, 0, 120, 60}, image{64, 62, 118, 88};
        const GXMatrix skew{1, 0.2F, -0.1F, 1, 0, 0};
        const Owned<GXBitmap> picture = Checks();
        const GXIntRect part{1, 0, 4, 3};
        EXPECT_EQ(GXRenderTargetBeginPaint(t), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetClear(t, 0xFFFFFFFFU), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetPushState(t), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetConcatCTM(t, &skew), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetFillRect(t, &left, a), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetPopState(t), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetFillRect(t, &right, b), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetStretchBitmap(t, picture, &image, &part, 1.0F, 0), GXResultSuccess);
        return GXRenderTargetEndPaint(t);
    };
    static int placed;
    placed = 0;
    g_system.stretchDIBits = [](HDC, int, int, int, int, int, int, int, int, const void*, const BITMAPINFO*, UINT,
                                DWORD) -> int { return ++placed; };
    const Owned<GXBitmap> bitmap = MakeBitmap(120, 90, GXPixelFormatBGRX32);
    Owned<GXRenderTarget> plain, target;
    ASSERT_EQ(GXCreateRenderTargetBitmap(bitmap, plain.Out()), GXResultSuccess);
    ASSERT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), target.Out()), GXResultSuccess);
    ASSERT_EQ(draw(plain), GXResultSuccess);
    ASSERT_EQ(draw(target), GXResultSuccess) << message.Text();
    EXPECT_EQ(placed, 0) << "all of it is GDI+'s";
    const Difference difference = Compare(ColorsOf(bitmap, 120, 90), printer.Picture().Colors(), 120, 90, 10);
    EXPECT_LT(difference.mean, 4.0);
    EXPECT_LT(difference.worst, 30.0);
}

// One call of a page whose edges all lie on whole pixels, so that GDI+ has nothing to round.
struct PageCall {
    uint32_t kind, color, modes, low, high;
    GXRect rect;
};

GXResult Make(const PageCall& call, GXRenderTarget target, GXBitmap picture) {
    const Owned<GXBrush> solid = Solid(call.color);
    Owned<GXBrush> texture;
    const GXBitmapBrushOptions options{GXInterpolationNearest, call.modes % 3, call.modes / 3 % 3};
    const GXMatrix place{1, 0, 0, 1, static_cast<float>(call.low), static_cast<float>(call.high)};
    EXPECT_EQ(GXCreateBrushBitmap(picture, 1.0F, &options, &place, texture.Out()), GXResultSuccess);
    const GXMatrix matrix{call.modes % 2 == 0 ? 1.0F : 2.0F, 0, 0, 1, static_cast<float>(call.low) - 20.0F, 3};
    const GXLayerDesc layer{call.low < 25 ? GXRect{0, 0, 0, 0} : call.rect, call.high < 30 ? 1.0F : 0.5F,
                            static_cast<uint8_t>(call.modes % 2), static_cast<uint8_t>(call.modes / 2 % 3 == 0)};
    const GXPoint at{static_cast<float>(call.high), static_cast<float>(call.low)};
    GXBrush const mask = call.low < 25 ? nullptr : static_cast<GXBrush>(call.high < 25 ? solid : texture);
    switch (call.kind) {
    case 0:
        return GXRenderTargetClipRect(target, &call.rect);
    case 1:
        return GXRenderTargetPushState(target);
    case 2:
    case 3:
        return GXRenderTargetPopState(target);
    case 4:
        return GXRenderTargetSetCTM(target, call.low < 30 ? nullptr : &matrix);
    case 5:
        return GXRenderTargetSetBlendMode(target, call.low < 30 ? 0 : call.modes % 16);
    case 6:
        return GXRenderTargetSetShapeMask(target, call.modes % 4, mask);
    case 7:
        return GXRenderTargetSetOpacityMask(target, call.modes % 4, mask);
    case 8:
        return GXRenderTargetBeginLayer(target, &layer);
    case 9:
    case 10:
        return GXRenderTargetEndLayer(target);
    case 11:
        return call.low < 20 ? GXRenderTargetClear(target, call.color) : GXRenderTargetInvertRect(target, &call.rect);
    case 12: {
        const GXIntRect beyond{-3, 1, 9, 35}; // the picture's edges go on
        const GXRect to{at.x, at.y, at.x + 12.0F, at.y + 34.0F};
        return call.modes % 2 == 0
                   ? GXRenderTargetDrawBitmap(target, picture, &at, 1.0F, GXInterpolationNearest)
                   : GXRenderTargetStretchBitmap(target, picture, &to, &beyond, 1.0F, GXInterpolationNearest);
    }
    case 13:
        return GXRenderTargetFillRect(target, &call.rect, texture);
    default:
        return GXRenderTargetFillRect(target, &call.rect, solid);
    }
}

// Whatever of a page is GDI+'s and whatever the software renderer's, all of it is what a bitmap shows.
TEST_F(PrintTarget, PagesOnWholePixelsAreThoseOfABitmap) {
    constexpr int kWidth = 80, kHeight = 60;
    std::mt19937 random(23);
    const auto below = [&](uint32_t n) { return static_cast<uint32_t>(random() % n); };
    for (int page = 0; page < 150; ++page) {
        const Printer printer(kWidth, kHeight, false);
        const Owned<GXBitmap> bitmap = MakeBitmap(kWidth, kHeight, GXPixelFormatBGRX32);
        EXPECT_EQ(GXBitmapColorFill(bitmap, nullptr, 0xFFFFFFFFU), GXResultSuccess);
        const Owned<GXBitmap> picture =
            MakeBitmap(below(2) == 0 ? 5 : 40, 31, below(2) == 0 ? GXPixelFormatBGRX32 : GXPixelFormatPBGRA32);
        for (int32_t i = 0; i < 31; ++i) {
            const GXIntRect row{i % 4, i, i % 4 + 30, i + 1};
            const uint32_t alpha = page % 2 == 0 ? 255 : below(256);
            EXPECT_EQ(GXBitmapColorFill(picture, &row, alpha << 24 | below(alpha + 1) << 8), GXResultSuccess);
        }
        Owned<GXRenderTarget> targets[2];
        ASSERT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), targets[0].Out()), GXResultSuccess);
        ASSERT_EQ(GXCreateRenderTargetBitmap(bitmap, targets[1].Out()), GXResultSuccess);
        for (const Owned<GXRenderTarget>& target : targets) {
            ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
        }
        for (int i = 0; i < 40; ++i) {
            const auto x = static_cast<float>(below(80)) - 5.0F, y = static_cast<float>(below(60)) - 5.0F;
            const PageCall call{
                below(20),  (below(3) == 0 ? below(256) : 255) << 24 | below(1U << 24),
                below(144), below(50),
                below(50),  {x, y, x + 1.0F + static_cast<float>(below(50)), y + 1.0F + static_cast<float>(below(40))}};
            ASSERT_EQ(Make(call, targets[0], picture), Make(call, targets[1], picture))
                << "page " << page << ", call " << i;
        }
        for (const Owned<GXRenderTarget>& target : targets) {
            ASSERT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
        }
        ASSERT_EQ(printer.Picture().Colors(), ColorsOf(bitmap, kWidth, kHeight)) << "page " << page;
    }
}

// What the software renderer draws at the page's end is what the host had drawn, not what became of it.
TEST_F(PrintTarget, GeometriesArePrintedAsTheyWereWhenTheyWereDrawn) {
    const Printer printer(60, 20, false);
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), target.Out()), GXResultSuccess);
    const Owned<GXGeometry> geometry = RectangleGeometry(0, 0, 20, 20);
    const Owned<GXBrush> red = Solid(0x80FF0000U), blue = Solid(0x800000FFU);
    const GXRect second{20, 0, 40, 20}, again{0, 0, 20, 20};
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetFillGeometry(target, geometry, red), GXResultSuccess);
    ASSERT_EQ(GXGeometryRectangle(geometry, &second), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetFillGeometry(target, geometry, blue), GXResultSuccess);
    ASSERT_EQ(GXGeometryRectangle(geometry, &again), GXResultSuccess);
    ASSERT_EQ(GXGeometrySetFillRule(geometry, GXFillRuleEvenOdd), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
    const std::vector<uint32_t> colors = printer.Picture().Colors();
    EXPECT_EQ(colors[10], 0x7F3FBFU);
    EXPECT_EQ(colors[30], 0x7F7FFFU);
    EXPECT_EQ(colors[50], 0xFFFFFFU);
}

// The host's clip stays in force, also where it leaves nothing of what the software renderer draws.
TEST_F(PrintTarget, PixelsOutsideTheHostsClipAreNoFailure) {
    const Printer printer(60, 20, false);
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), target.Out()), GXResultSuccess);
    IntersectClipRect(printer.Context(), 0, 0, 20, 20);
    g_system.stretchDIBits = [](HDC dc, int x, int y, int w, int h, int fromX, int fromY, int fromW, int fromH,
                                const void* bits, const BITMAPINFO* info, UINT use, DWORD how) -> int {
        const RECT to{x, y, x + w, y + h};
        const int lines = ::StretchDIBits(dc, x, y, w, h, fromX, fromY, fromW, fromH, bits, info, use, how);
        return RectVisible(dc, &to) != 0 ? lines : 0; // what a driver may answer where no line is copied
    };
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    const Owned<GXBrush> half = Solid(0x80FF0000U);
    for (const GXRect& rect : {GXRect{10, 0, 14, 20}, GXRect{30, 0, 40, 20}}) {
        ASSERT_EQ(GXRenderTargetFillRect(target, &rect, half), GXResultSuccess);
    }
    EXPECT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess) << message.Text();
    const std::vector<uint32_t> colors = printer.Picture().Colors();
    EXPECT_EQ(colors[12], 0xFF7F7FU);
    EXPECT_EQ(colors[35], 0xFFFFFFU);
}

// A host may turn the paper between two pages of a job.
TEST_F(PrintTarget, EachPageHasThePaperOfItsTime) {
    const Printer printer(30, 20, false);
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), target.Out()), GXResultSuccess);
    const Printer turned(20, 30, false);
    g_gdip.createFromHDC = [](HDC, Gdiplus::GpGraphics**) { return Gdiplus::OutOfMemory; };
    EXPECT_EQ(GXRenderTargetBeginPaint(target), GXResultEngineError);
    g_gdip = GdipCalls();
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    GXSize size{};
    ASSERT_EQ(GXRenderTargetGetSize(target, &size), GXResultSuccess);
    EXPECT_TRUE(size.width == 20 && size.height == 30);
    EXPECT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
}

// Paper on a roll is longer than the software renderer draws from a picture's corner.
TEST_F(PrintTarget, LongPagesArePrintedToTheirEnd) {
    for (const bool wide : {true, false}) {
        const int width = wide ? 40000 : 4, height = wide ? 4 : 40000;
        const Printer printer(width, height, false);
        Owned<GXRenderTarget> target;
        ASSERT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), target.Out()), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
        const auto along = [&](float from, float to) { return wide ? GXRect{from, 0, to, 4} : GXRect{0, from, 4, to}; };
        const GXRect ink = along(10, 39000), shade = along(5, 39900);
        ASSERT_EQ(GXRenderTargetFillRect(target, &ink, Solid(0xFF204060U)), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
        const auto at = [&](size_t i) { return printer.Picture().Colors()[wide ? i : i * 4]; };
        EXPECT_EQ(at(38999), 0x204060U);
        EXPECT_EQ(at(39000), 0xFFFFFFU);
        ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetFillRect(target, &shade, Solid(0x80000000U)), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
        EXPECT_EQ(at(4), 0xFFFFFFU);
        EXPECT_EQ(at(5), 0x7F7F7FU);
        EXPECT_EQ(at(39899), 0x7F7F7FU);
        EXPECT_EQ(at(39900), 0xFFFFFFU);
    }
}

TEST_F(PrintTarget, BandsAreOnePicture) {
    Graphics::GdipPageList page;
    const auto kept = std::make_shared<Graphics::SolidBrush>(Graphics::Color{0.2F, 0.5F, 0.9F, 0.6F});
    const Graphics::BasicFigure disc(Graphics::BasicFigure::Kind::Ellipse, {3, 2, 47, 39});
    const Graphics::GdipKeptPath path(disc);
    using Graphics::GraphicsState;
    using Graphics::RenderTargetBase;
    page.AddScope({}, [](RenderTargetBase& t, const GraphicsState& s) { t.BeginLayer(s, {{0, 0, 0, 0}, 0.7F, 0, 0}); });
    page.Add({}, {2, 1, 48, 40}, [&](RenderTargetBase& t, const GraphicsState& s) {
        t.Paint(s, path.Get(), Graphics::InkOf(*kept), nullptr);
    });
    page.AddScope({}, [](RenderTargetBase& t, const GraphicsState& s) { t.EndLayer(s); });
    using Graphics::Region;
    const Region region = Region::Combine(Region({1, 0, 30, 41}), Region({20, 10, 49, 35}), Graphics::RegionOp::Union);
    const auto run = [&](int64_t pixels, int& bands) {
        std::vector<uint32_t> all(50 * 42, 0x55);
        bands = 0;
        Graphics::GdipFlattener(page, SoftwareTarget)
            .Run(
                region,
                [&](const Graphics::PixelView& band, const Graphics::IntPoint& at,
                    const std::vector<Graphics::IntRect>& rects) {
                    ++bands;
                    EXPECT_LE(static_cast<int64_t>(band.width) * band.height, pixels);
                    for (const Graphics::IntRect& r : rects) {
                        for (int y = r.top; y < r.bottom; ++y) {
                            for (int x = r.left; x < r.right; ++x) {
                                uint32_t& pixel = all[static_cast<size_t>(y * 50 + x)];
                                EXPECT_EQ(pixel, 0x55U) << "placed twice";
                                std::memcpy(&pixel, band.data + (y - at.y) * band.strideBytes + (x - at.x) * 4, 4);
                            }
                        }
                    }
                },
                pixels);
        return all;
    };
    int one = 0, many = 0;
    const std::vector<uint32_t> whole = run(100000, one);
    // A curve that is moved by whole pixels may lose or gain a sample.
    const std::vector<uint32_t> pieces = run(50 * 4, many);
    EXPECT_LE(Compare(pieces, whole, 50, 42, 1).worst, 8.0);
    EXPECT_LT(Compare(pieces, whole, 50, 42, 1).mean, 0.1);
    EXPECT_EQ(one, 1);
    EXPECT_EQ(many, 11);
    EXPECT_EQ(whole[0], 0x55U);
    EXPECT_EQ(whole[41 * 50 - 48], 0xFFFFFFFFU);
    EXPECT_NE(whole[20 * 50 + 25], 0xFFFFFFFFU);
}

class GreyTarget final : public Graphics::GdipRenderTarget {
public:
    GreyTarget() : GdipRenderTarget({{0, 0, 8, 8}, 96, 96, GXPixelFormatGray8, false}, SoftwareTarget) {}

protected:
    std::unique_ptr<Graphics::GdipGraphics> Open() override { return nullptr; }
    void Place(Graphics::GdipGraphics&, const Graphics::PixelView&, const Graphics::IntPoint&,
               const std::vector<Graphics::IntRect>&) override {}
    void Close() noexcept override {}
};

TEST_F(PrintTarget, ErrorsAreThoseOfOtherTargets) {
    GreyTarget grey;
    EXPECT_THROW(grey.BeginPaint(), Graphics::Exception);
    EXPECT_EQ(message.Text(), "Unsuported pixel format");

    Owned<GXRenderTarget> target, none;
    const HDC gone = CreateCompatibleDC(nullptr);
    DeleteDC(gone);
    EXPECT_EQ(GXCreateRenderTargetPrintDC(gone, none.Out()), GXResultEngineError);
    EXPECT_EQ(message.Text(), "The DC does not exist");
    EXPECT_EQ(GXCreateRenderTargetPrintDC(nullptr, none.Out()), GXResultInvalidArgument);

    const Printer printer(20, 20, false);
    ASSERT_EQ(GXCreateRenderTargetPrintDC(printer.Context(), target.Out()), GXResultSuccess);
    GXPixelFormat format = 0;
    EXPECT_EQ(GXRenderTargetGetPixelFormat(target, &format), GXResultSuccess);
    EXPECT_EQ(format, GXPixelFormat{GXPixelFormatBGRX32});
    EXPECT_EQ(GXRenderTargetEndPaint(target), GXResultEngineError);
    EXPECT_EQ(message.Text(), "Painting has not begun");
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetPopState(target), GXResultEngineError);
    EXPECT_EQ(message.Text(), "State stack is empty");
    EXPECT_EQ(GXRenderTargetEndLayer(target), GXResultEngineError);
    EXPECT_EQ(message.Text(), "No layer is open");
    const Owned<GXBrush> brush = Solid(0xFF000000U);
    const GXRect all{0, 0, 20, 20};
    ASSERT_EQ(GXRenderTargetSetShapeMask(target, 9, brush), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetFillRect(target, &all, brush), GXResultEngineError);
    EXPECT_EQ(message.Text(), "Unsupported soft mask type.");
    EXPECT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
    // Numbers that are none, and shapes far beyond the page.
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    const float huge = 1e30F, nan = std::nanf("");
    for (const GXRect& rect : {GXRect{-huge, -huge, huge, huge}, GXRect{nan, 0, 5, 5}, GXRect{0, 0, huge, 1},
                               GXRect{3, 3, 3, 9}, GXRect{1e9F, 0, 2e9F, 9}}) {
        EXPECT_EQ(GXRenderTargetFillRect(target, &rect, brush), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetFillEllipse(target, &rect, brush), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetStrokeRect(target, &rect, brush, 0.0F, nullptr), GXResultSuccess);
    }
    EXPECT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
}

} // namespace
