// SPDX-License-Identifier: MIT
// The paint bracket, the graphics state, clips, layers and drawing through exported functions alone.
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "TargetSupport.h"

using namespace TargetSupport;

namespace {

constexpr uint32_t kRed = 0xFFFF0000;
constexpr uint32_t kGreen = 0xFF00FF00;
constexpr uint32_t kWhite = 0xFFFFFFFF;

void FillRect(Canvas& c, GXRect rect, uint32_t argb) {
    const Owned<GXBrush> brush = Solid(argb);
    EXPECT_EQ(GXRenderTargetFillRect(c.target, &rect, brush), GXResultSuccess);
}

TEST(RenderTarget, BracketErrorsHaveTheirTexts) {
    const LastMessage message;
    const Owned<GXBitmap> bitmap = MakeBitmap(4, 4, GXPixelFormatPBGRA32);
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetBitmap(bitmap, target.Out()), GXResultSuccess);
    const auto expect = [&](GXResult result, const char* text) {
        EXPECT_EQ(result, GXResultEngineError);
        EXPECT_EQ(message.Text(), text);
    };
    expect(GXRenderTargetEndPaint(target), "Painting has not begun");
    expect(GXRenderTargetPushState(target), "Painting has not begun");
    expect(GXRenderTargetClear(target, kRed), "Painting has not begun");
    const GXRect rect{0, 0, 1, 1};
    expect(GXRenderTargetClipRect(target, &rect), "Painting has not begun");
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    expect(GXRenderTargetBeginPaint(target), "Painting has already begun");
    expect(GXRenderTargetPopState(target), "State stack is empty");
    expect(GXRenderTargetEndLayer(target), "No layer is open");
    const GXLayerDesc layer{{0, 0, 0, 0}, 1.0F, 1, 0};
    ASSERT_EQ(GXRenderTargetPushState(target), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetBeginLayer(target, &layer), GXResultSuccess);
    expect(GXRenderTargetPopState(target), "State stack is empty");
    EXPECT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);

    const Owned<GXBitmap> grey = MakeBitmap(4, 4, GXPixelFormatGray8);
    Owned<GXRenderTarget> refused;
    ASSERT_EQ(GXCreateRenderTargetBitmap(grey, refused.Out()), GXResultSuccess);
    expect(GXRenderTargetBeginPaint(refused), "Unsuported pixel format");
}

TEST(RenderTarget, StateOutsideTheBracketReachesTheNextOneAndIsResetByItsEnd) {
    Canvas c(2, 1);
    ASSERT_EQ(GXRenderTargetEndPaint(c.target), GXResultSuccess);
    const GXMatrix move{1, 0, 0, 1, 1, 0};
    ASSERT_EQ(GXRenderTargetSetCTM(c.target, &move), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetBeginPaint(c.target), GXResultSuccess);
    FillRect(c, {0, 0, 1, 1}, kRed);
    EXPECT_EQ(c.Pixels(), (std::vector<uint32_t>{0, kRed}));
    ASSERT_EQ(GXRenderTargetEndPaint(c.target), GXResultSuccess);
    GXMatrix m{};
    ASSERT_EQ(GXRenderTargetGetCTM(c.target, &m), GXResultSuccess);
    EXPECT_EQ(m.m20, 0.0F);
}

TEST(RenderTarget, MatricesConcatenateBeforeTheCurrentOne) {
    Canvas c(1, 1);
    ASSERT_EQ(GXRenderTargetTranslateCTM(c.target, 10, 20), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetScaleCTM(c.target, 2, 3), GXResultSuccess);
    GXMatrix m{};
    ASSERT_EQ(GXRenderTargetGetCTM(c.target, &m), GXResultSuccess);
    EXPECT_EQ(std::vector<float>({m.m00, m.m11, m.m20, m.m21}), std::vector<float>({2, 3, 10, 20}));
    ASSERT_EQ(GXRenderTargetSetCTM(c.target, nullptr), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetRotateCTM(c.target, 6.2831855F), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetGetCTM(c.target, &m), GXResultSuccess);
    EXPECT_EQ(std::vector<float>({m.m00, m.m01, m.m10, m.m11}), std::vector<float>({1, 0, 0, 1}));
}

TEST(RenderTarget, ClipsIntersectAndArePopped) {
    Canvas c(4, 1);
    const GXRect left{0, 0, 3, 1};
    const GXRect right{1, 0, 4, 1};
    const GXRect degenerate{2, 0, 2, 1};
    ASSERT_EQ(GXRenderTargetPushState(c.target), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetClipRect(c.target, &left), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetClipRect(c.target, &right), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetClipRect(c.target, &degenerate), GXResultSuccess);
    FillRect(c, {0, 0, 4, 1}, kRed);
    EXPECT_EQ(c.Pixels(), (std::vector<uint32_t>{0, kRed, kRed, 0}));
    ASSERT_EQ(GXRenderTargetPopState(c.target), GXResultSuccess);
    FillRect(c, {0, 0, 4, 1}, kGreen);
    EXPECT_EQ(c.Pixels(), std::vector<uint32_t>(4, kGreen));
}

TEST(RenderTarget, AnEmptyClipGeometryHidesEverything) {
    Canvas c(2, 2);
    Owned<GXGeometry> empty;
    ASSERT_EQ(GXCreateGeometry(empty.Out()), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetClipGeometry(c.target, empty), GXResultSuccess);
    FillRect(c, {0, 0, 2, 2}, kRed);
    ASSERT_EQ(GXRenderTargetClear(c.target, kRed), GXResultSuccess);
    EXPECT_EQ(c.Pixels(), std::vector<uint32_t>(4, 0));
}

// A clip as a mask and the same shape as a fill see the same coverage.
TEST(RenderTarget, AClippedFillEqualsTheFillOfTheClipShape) {
    std::mt19937 random(5);
    std::uniform_real_distribution<float> at(-10, 42);
    for (int i = 0; i < 50; ++i) {
        Owned<GXGeometry> shape;
        ASSERT_EQ(GXCreateGeometry(shape.Out()), GXResultSuccess);
        GXPoint p{at(random), at(random)};
        GXGeometryBeginFigure(shape, &p);
        for (int k = 0; k < 6; ++k) {
            p = {at(random), at(random)};
            GXGeometryLineTo(shape, &p);
        }
        GXGeometryEndFigureClose(shape);
        GXGeometrySetFillRule(shape, static_cast<GXFillRule>(i & 1));
        Canvas filled(32, 32);
        Canvas clipped(32, 32);
        Canvas twice(32, 32);
        const Owned<GXBrush> brush = Solid(kRed);
        ASSERT_EQ(GXRenderTargetFillGeometry(filled.target, shape, brush), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetClipGeometry(clipped.target, shape), GXResultSuccess);
        FillRect(clipped, {0, 0, 32, 32}, kRed);
        ASSERT_EQ(filled.Pixels(), clipped.Pixels()) << "shape " << i;
        // A rectangle afterwards keeps the mask inside it and nothing else.
        const GXRect half{5, 3, 20, 30};
        ASSERT_EQ(GXRenderTargetClipGeometry(twice.target, shape), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetClipRect(twice.target, &half), GXResultSuccess);
        FillRect(twice, {0, 0, 32, 32}, kRed);
        std::vector<uint32_t> expected = filled.Pixels();
        for (uint32_t y = 0; y < 32; ++y) {
            for (uint32_t x = 0; x < 32; ++x) {
                if (x < 5 || x >= 20 || y < 3 || y >= 30) {
                    expected[y * 32 + x] = 0;
                }
            }
        }
        ASSERT_EQ(twice.Pixels(), expected) << "shape " << i;
    }
}

// Rectangles have a road of their own, on whole pixels a shorter one; a geometry of the same corners takes the general road.
TEST(RenderTarget, ARectangleFillsThePixelsOfItsGeometry) {
    std::mt19937 random(11);
    const Owned<GXBrush> brushes[] = {Solid(0x80FF0000), Solid(kRed)};
    for (int i = 0; i < 6000; ++i) {
        const bool whole = i % 3 == 0;
        const auto at = [&] {
            const float pixels = static_cast<float>(static_cast<int32_t>(random() % 50) - 10);
            const float eighths = static_cast<float>(static_cast<int32_t>(random() % 400) - 80) / 8.0F;
            const float any = random() % 3 == 0 ? eighths : eighths + static_cast<float>(random() % 1000) / 3000.0F;
            return whole ? pixels : any;
        };
        Canvas direct(32, 32);
        Canvas general(32, 32);
        GXRect r{at(), at(), whole || random() % 20 == 0 ? at() : at() * 0.2F, at()};
        if (random() % 20 == 0) { // a line, also on the target's left side
            r.right = r.left = random() % 2 == 0 ? 0.0F : r.left;
        }
        const GXMatrix m{
            random() % 2 == 0 ? 1.0F : whole ? -1.0F : -1.3F,        0, 0, random() % 2 == 0 || whole ? 1.0F : 0.6F,
            random() % 4 == 0 ? 0.0F : at() * (whole ? 1.0F : 0.5F), 3};
        const Owned<GXGeometry> geometry = RectangleGeometry(r.left, r.top, r.right, r.bottom);
        const uint8_t adjusts = random() % 2;
        for (const Canvas* c : {&direct, &general}) {
            ASSERT_EQ(GXRenderTargetSetCTM(c->target, &m), GXResultSuccess);
            ASSERT_EQ(GXRenderTargetSetStrokeAdjustment(c->target, adjusts), GXResultSuccess);
        }
        const Owned<GXBrush>& brush = brushes[random() % 2];
        ASSERT_EQ(GXRenderTargetFillRect(direct.target, &r, brush), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetFillGeometry(general.target, geometry, brush), GXResultSuccess);
        ASSERT_EQ(direct.Pixels(), general.Pixels())
            << r.left << ' ' << r.top << ' ' << r.right << ' ' << r.bottom << " scaled " << m.m00 << ' ' << m.m11
            << " moved " << m.m20 << (adjusts != 0 ? ", adjusted" : "");
    }
}

TEST(RenderTarget, MaskTypesAboveThreeAreRefusedWhenDrawing) {
    const LastMessage message;
    Canvas c(2, 1);
    const Owned<GXBrush> mask = Solid(0x80FFFFFF);
    const Owned<GXBrush> red = Solid(kRed);
    const GXRect rect{0, 0, 1, 1};
    ASSERT_EQ(GXRenderTargetSetOpacityMask(c.target, 4, mask), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetFillRect(c.target, &rect, red), GXResultEngineError);
    EXPECT_EQ(message.Text(), "Unsupported soft mask type.");
    ASSERT_EQ(GXRenderTargetSetOpacityMask(c.target, GXMaskTypeAlpha, mask), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetFillRect(c.target, &rect, red), GXResultSuccess);
    // 255 * (128 + 1) >> 8 in alpha and red.
    EXPECT_EQ(c.At(0, 0), 0x80800000U);
}

TEST(RenderTarget, BadDashPatternsAreRefusedWhereverTheStrokeIs) {
    Canvas c(8, 8);
    const LastMessage message;
    const Owned<GXBrush> brush = Solid(kRed);
    Owned<GXGeometry> empty;
    ASSERT_EQ(GXCreateGeometry(empty.Out()), GXResultSuccess);
    GXStrokeStyle style{};
    style.dashCount = 2;
    const GXPoint start{1, 1}, end{6, 6}, away{1e6F, 1e6F}, further{2e6F, 1e6F}, none{NAN, 1};
    for (const bool negative : {false, true}) {
        style.dashes[0] = negative ? 1.0F : 0.0F;
        style.dashes[1] = negative ? -1.0F : 0.0F;
        const auto expect = [&](GXResult result) {
            EXPECT_EQ(result, GXResultEngineError);
            EXPECT_EQ(message.Text(),
                      negative ? "Dash pattern has a negative element" : "Dash pattern has zero length");
        };
        expect(GXRenderTargetStrokeLine(c.target, &start, &end, brush, 2, &style));
        expect(GXRenderTargetStrokeLine(c.target, &away, &further, brush, 2, &style));
        expect(GXRenderTargetStrokeLine(c.target, &none, &end, brush, 2, &style));
        expect(GXRenderTargetStrokeGeometry(c.target, empty, brush, 2, &style));
    }
    EXPECT_EQ(c.Pixels(), std::vector<uint32_t>(64, 0));
}

TEST(RenderTarget, BitmapsAreCopiedMirroredAndClampedInsideTheirSource) {
    const Owned<GXBitmap> image = MakeBitmap(3, 1, GXPixelFormatBGRA32);
    const uint32_t colors[3] = {kRed, kGreen, kWhite};
    const GXBitmapData data{const_cast<uint32_t*>(colors), 12, 12};
    ASSERT_EQ(GXBitmapCopyFromMemory(image, nullptr, &data), GXResultSuccess);
    for (const uint32_t interpolation : {0U, 1U, 2U}) {
        Canvas c(6, 1);
        const GXPoint origin{1, 0};
        ASSERT_EQ(GXRenderTargetDrawBitmap(c.target, image, &origin, 1.0F, interpolation), GXResultSuccess);
        EXPECT_EQ(c.Pixels(), (std::vector<uint32_t>{0, kRed, kGreen, kWhite, 0, 0})) << interpolation;
        const GXRect mirrored{3, 0, 0, 1};
        ASSERT_EQ(GXRenderTargetStretchBitmap(c.target, image, &mirrored, nullptr, 1.0F, interpolation),
                  GXResultSuccess);
        EXPECT_EQ(c.Pixels(), (std::vector<uint32_t>{kWhite, kGreen, kRed, kWhite, 0, 0})) << interpolation;
        const GXRect unmirrored{3, 0, 6, 1};
        const GXIntRect backwards{3, 0, 0, 1};
        ASSERT_EQ(GXRenderTargetStretchBitmap(c.target, image, &unmirrored, &backwards, 1.0F, interpolation),
                  GXResultSuccess);
        EXPECT_EQ(c.Pixels(), (std::vector<uint32_t>{kWhite, kGreen, kRed, kWhite, kGreen, kRed})) << interpolation;
        // Only the middle pixel, over everything: its neighbours do not bleed in.
        const GXRect whole{0, 0, 6, 1};
        const GXIntRect middle{1, 0, 2, 1};
        ASSERT_EQ(GXRenderTargetStretchBitmap(c.target, image, &whole, &middle, 1.0F, interpolation), GXResultSuccess);
        EXPECT_EQ(c.Pixels(), std::vector<uint32_t>(6, kGreen)) << interpolation;
    }
}

TEST(RenderTarget, FillMaskPaintsThroughTheMasksValues) {
    const Owned<GXBitmap> mask = MakeBitmap(3, 1, GXPixelFormatAlpha8);
    uint8_t values[3] = {0, 127, 255};
    const GXBitmapData data{values, 3, 3};
    ASSERT_EQ(GXBitmapCopyFromMemory(mask, nullptr, &data), GXResultSuccess);
    Canvas c(3, 1);
    const Owned<GXBrush> red = Solid(kRed);
    ASSERT_EQ(GXRenderTargetFillMask(c.target, mask, red, nullptr, GXInterpolationNearest), GXResultSuccess);
    EXPECT_EQ(c.Pixels(), (std::vector<uint32_t>{0, 0x7F7F0000, kRed}));
}

// Whatever the pixels hold, colours above their alpha too.
TEST(RenderTarget, InvertingTwiceRestores) {
    std::mt19937 random(3);
    Canvas c(16, 16);
    std::vector<uint32_t> any(256);
    std::generate(any.begin(), any.end(), std::ref(random));
    const GXBitmapData data{any.data(), 64, 64};
    ASSERT_EQ(GXBitmapCopyFromMemory(c.bitmap, nullptr, &data), GXResultSuccess);
    const GXRect all{0, 0, 16, 16};
    ASSERT_EQ(GXRenderTargetInvertRect(c.target, &all), GXResultSuccess);
    const std::vector<uint32_t> inverted = c.Pixels();
    for (size_t i = 0; i < 256; ++i) {
        ASSERT_EQ(inverted[i], any[i] ^ 0x00FFFFFFU);
    }
    FillRect(c, {0, 0, 16, 9}, kRed);
    FillRect(c, {3, 3, 16, 16}, 0x80204060);
    const std::vector<uint32_t> before = c.Pixels();
    const GXRect rect{2.3F, 1.7F, 11.2F, 14.9F};
    const GXPoint from{-5, 2};
    const GXPoint to{40, 13.5F};
    GXRenderTargetRotateCTM(c.target, 0.2F);
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(GXRenderTargetInvertRect(c.target, &rect), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetInvertLine(c.target, &from, &to), GXResultSuccess);
        EXPECT_EQ(c.Pixels() == before, i == 1);
    }
    // What a group hands on is premultiplied.
    Canvas grouped(2, 1);
    const GXLayerDesc group{{0, 0, 0, 0}, 1.0F, 1, 0};
    ASSERT_EQ(GXRenderTargetBeginLayer(grouped.target, &group), GXResultSuccess);
    FillRect(grouped, {0, 0, 1, 1}, 0x80FF0000);
    ASSERT_EQ(GXRenderTargetInvertRect(grouped.target, &all), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetEndLayer(grouped.target), GXResultSuccess);
    EXPECT_EQ(grouped.Pixels(), (std::vector<uint32_t>{0x80008080U, 0}));
}

TEST(RenderTarget, ExternalBuffersAreCheckedAndNothingAroundThemIsTouched) {
    const LastMessage message;
    std::vector<uint8_t> memory(4096, 0xA5);
    Owned<GXRenderTarget> target;
    const auto make = [&](GXPixelFormat format, GXExtBufLayout layout) {
        return GXCreateRenderTargetExtBuf(memory.data(), format, &layout, target.Out());
    };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float bad : {0.0F, -3.0F, 2.5F, nan, 1e30F}) {
        EXPECT_EQ(make(GXPixelFormatPBGRA32, {bad, 4, 64, 96, 96}), GXResultEngineError);
        EXPECT_EQ(message.Text(), "Invalid bitmap dimensions");
    }
    for (const float bad : {0.0F, 27.0F, 28.5F, nan}) {
        EXPECT_EQ(make(GXPixelFormatPBGRA32, {7, 4, bad, 96, 96}), GXResultEngineError);
        EXPECT_EQ(message.Text(), "Invalid stride");
    }
    EXPECT_EQ(make(11, {7, 4, 64, 96, 96}), GXResultEngineError);
    EXPECT_EQ(message.Text(), "Unsupported pixel format.");
    // Odd start and odd stride.
    for (const uint32_t stride : {28U, 29U, 33U}) {
        std::fill(memory.begin(), memory.end(), uint8_t{0xA5});
        const GXExtBufLayout layout{7, 5, static_cast<float>(stride), 96, 96};
        Owned<GXRenderTarget> odd;
        ASSERT_EQ(GXCreateRenderTargetExtBuf(memory.data() + 101, GXPixelFormatPBGRA32, &layout, odd.Out()),
                  GXResultSuccess);
        ASSERT_EQ(GXRenderTargetBeginPaint(odd), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetClear(odd, kRed), GXResultSuccess);
        const Owned<GXBrush> green = Solid(kGreen);
        const GXRect huge{-1e9F, -1e9F, 1e9F, 2};
        ASSERT_EQ(GXRenderTargetFillRect(odd, &huge, green), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetEndPaint(odd), GXResultSuccess);
        for (size_t i = 0; i < memory.size(); ++i) {
            const size_t offset = i - 101;
            const bool inside = i >= 101 && offset / stride < 5 && offset % stride < 28;
            if (!inside) {
                ASSERT_EQ(memory[i], 0xA5) << "stride " << stride << " byte " << i;
            } else {
                const uint32_t color = offset / stride < 2 ? kGreen : kRed;
                ASSERT_EQ(memory[i], static_cast<uint8_t>(color >> (offset % stride % 4 * 8)));
            }
        }
    }
}

TEST(RenderTarget, NonFiniteAndHugeCoordinatesDrawNothingWrong) {
    Canvas c(8, 8);
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Owned<GXBrush> red = Solid(kRed);
    for (const float bad : {nan, inf, -inf}) {
        Owned<GXGeometry> geometry;
        ASSERT_EQ(GXCreateGeometry(geometry.Out()), GXResultSuccess);
        const GXPoint points[3] = {{0, 0}, {bad, 3}, {5, 5}};
        GXGeometryBeginFigure(geometry, &points[0]);
        GXGeometryLineTo(geometry, &points[1]);
        GXGeometryCubicCurveTo(geometry, &points[1], &points[2], &points[0]);
        GXGeometryEndFigureClose(geometry);
        const GXRect neighbour{6, 6, 7, 7};
        GXGeometryRectangle(geometry, &neighbour);
        ASSERT_EQ(GXRenderTargetClear(c.target, 0), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetFillGeometry(c.target, geometry, red), GXResultSuccess);
        std::vector<uint32_t> expected(64, 0);
        expected[6 * 8 + 6] = kRed;
        EXPECT_EQ(c.Pixels(), expected) << bad;
        EXPECT_EQ(GXRenderTargetStrokeGeometry(c.target, geometry, red, 1, nullptr), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetStrokeGeometry(c.target, geometry, red, nan, nullptr), GXResultInvalidArgument);
    }
    const GXRect rect{-1e30F, -1e30F, 1e30F, 1e30F};
    ASSERT_EQ(GXRenderTargetFillRect(c.target, &rect, red), GXResultSuccess);
    EXPECT_EQ(c.Pixels(), std::vector<uint32_t>(64, kRed));
}

// Bounds are rounded outwards, also where one more than them is not a float.
TEST(RenderTarget, ATurnedBitmapUnderAClipIsTheUnclippedOneWhereTheClipIsFull) {
    // A smooth picture, so that spans that begin elsewhere change next to nothing: what is compared is that every
    // stretch of a clipped row takes its colours from its own place.
    const Owned<GXBitmap> picture = MakeBitmap(64, 64, GXPixelFormatPBGRA32);
    std::vector<uint32_t> pixels(64 * 64);
    for (uint32_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = 0xFF000000U | (i % 64) * 4 << 16 | (i / 64) * 4 << 8 | 128;
    }
    const GXBitmapData data{pixels.data(), 64 * 4, 64 * 4};
    ASSERT_EQ(GXBitmapCopyFromMemory(picture, nullptr, &data), GXResultSuccess);
    const GXMatrix turned{0.8F, 0.6F, -0.6F, 0.8F, 30, -20};
    const GXBitmapBrushOptions options{GXInterpolationLinear, GXExtendClamp, GXExtendClamp};
    Owned<GXBrush> brush;
    ASSERT_EQ(GXCreateBrushBitmap(picture, 1, &options, &turned, brush.Out()), GXResultSuccess);
    const GXRect shape{2.3F, 1.7F, 61.2F, 60.4F};
    const auto draw = [&](bool clipped, bool white) {
        const Canvas c(64, 64);
        const GXRect outer{5, 4, 59, 62}, inner{20, 15, 40, 50};
        if (clipped) { // a ring: two stretches of full coverage in a row
            Owned<GXGeometry> ring;
            EXPECT_EQ(GXCreateGeometry(ring.Out()), GXResultSuccess);
            EXPECT_EQ(GXGeometrySetFillRule(ring, GXFillRuleEvenOdd), GXResultSuccess);
            EXPECT_EQ(GXGeometryEllipse(ring, &outer), GXResultSuccess);
            EXPECT_EQ(GXGeometryEllipse(ring, &inner), GXResultSuccess);
            EXPECT_EQ(GXRenderTargetClipGeometry(c.target, ring), GXResultSuccess);
        }
        const Owned<GXBrush> plain = Solid(kWhite);
        EXPECT_EQ(GXRenderTargetFillEllipse(c.target, &shape, white ? GXBrush(plain) : GXBrush(brush)),
                  GXResultSuccess);
        return c.Pixels();
    };
    const std::vector<uint32_t> whole = draw(false, false), clipped = draw(true, false), cover = draw(true, true);
    size_t compared = 0;
    for (size_t i = 0; i < whole.size(); ++i) {
        if (cover[i] != kWhite) {
            continue;
        }
        ++compared;
        for (int shift = 0; shift < 32; shift += 8) {
            ASSERT_NEAR(static_cast<int>(clipped[i] >> shift & 255), static_cast<int>(whole[i] >> shift & 255), 3)
                << i % 64 << ", " << i / 64;
        }
    }
    EXPECT_GT(compared, 1000U);
}

TEST(RenderTarget, StrokesReachAsFarAsCapsAndMitersDo) {
    // The path lies below the target: a hairpin whose miter of 36 units above the corner passes through it. What is
    // left out as invisible has to count with that.
    const Owned<GXBrush> red = Solid(kRed);
    const GXPoint hairpin[3] = {{18, 60}, {20, 24}, {22, 60}};
    Owned<GXGeometry> path;
    ASSERT_EQ(GXCreateGeometry(path.Out()), GXResultSuccess);
    ASSERT_EQ(GXGeometryBeginFigure(path, &hairpin[0]), GXResultSuccess);
    ASSERT_EQ(GXGeometryLineTo(path, &hairpin[1]), GXResultSuccess);
    ASSERT_EQ(GXGeometryLineTo(path, &hairpin[2]), GXResultSuccess);
    ASSERT_EQ(GXGeometryEndFigure(path), GXResultSuccess);
    for (const uint8_t group : {uint8_t{0}, uint8_t{1}}) {
        for (const float limit : {100.0F, 10.0F}) { // 18.03 is its ratio
            const Canvas c(40, 20);
            const GXLayerDesc layer{{0, 0, 0, 0}, 1.0F, 1, 0};
            if (group != 0) {
                ASSERT_EQ(GXRenderTargetBeginLayer(c.target, &layer), GXResultSuccess);
            }
            GXStrokeStyle style{};
            style.miterLimit = limit;
            ASSERT_EQ(GXRenderTargetStrokeGeometry(c.target, path, red, 4, &style), GXResultSuccess);
            ASSERT_EQ(GXRenderTargetEndPaint(c.target), GXResultSuccess);
            EXPECT_EQ(c.At(20, 12), limit > 18 ? kRed : 0U) << "the miter was left out, or should have been a bevel";
            EXPECT_EQ(c.At(8, 12), 0U);
        }
    }
    // A square cap reaches half the width past the end, a slanted one by 1.41 of that; a flat one does not.
    for (const GXLineCap cap : {GXLineCapFlat, GXLineCapRound, GXLineCapSquare}) {
        const Canvas c(40, 20);
        GXStrokeStyle style{};
        style.miterLimit = 1;
        style.cap = cap;
        const GXPoint from{50, 40}, to{30, 20};
        ASSERT_EQ(GXRenderTargetStrokeLine(c.target, &from, &to, red, 16, &style), GXResultSuccess);
        EXPECT_EQ(c.At(29, 10) == kRed, cap == GXLineCapSquare) << "the corner of a square cap, cap " << cap;
        EXPECT_EQ(c.At(26, 16) == kRed, cap != GXLineCapFlat) << "cap " << cap;
    }
}

TEST(RenderTarget, AdjustmentIsOnAtFirstAndAgainAfterEveryBracket) {
    // A rectangle, a clip and a bitmap of 2.25 pixels from 0.5 on: three whole ones with adjustment, the left end
    // covers as much of its pixel as the right one does of none. Without it, parts of pixels.
    Canvas c(4, 1);
    const GXRect part{0.5F, 0, 2.75F, 1};
    const Owned<GXBrush> red = Solid(kRed);
    const Owned<GXBitmap> image = MakeBitmap(9, 4, GXPixelFormatPBGRA32);
    ASSERT_EQ(GXBitmapColorFill(image, nullptr, kRed), GXResultSuccess);
    const GXRect all{0, 0, 4, 1};
    const auto draw = [&](int kind) {
        EXPECT_EQ(GXRenderTargetClear(c.target, 0), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetPushState(c.target), GXResultSuccess);
        if (kind == 0) {
            EXPECT_EQ(GXRenderTargetFillRect(c.target, &part, red), GXResultSuccess);
        } else if (kind == 1) {
            EXPECT_EQ(GXRenderTargetFillGeometry(c.target, RectangleGeometry(0.5F, 0, 2.75F, 1), red), GXResultSuccess);
        } else if (kind == 2) {
            EXPECT_EQ(GXRenderTargetClipRect(c.target, &part), GXResultSuccess);
            EXPECT_EQ(GXRenderTargetFillRect(c.target, &all, red), GXResultSuccess);
        } else {
            EXPECT_EQ(GXRenderTargetStretchBitmap(c.target, image, &part, nullptr, 1, GXInterpolationNearest),
                      GXResultSuccess);
        }
        EXPECT_EQ(GXRenderTargetPopState(c.target), GXResultSuccess);
        return c.Pixels();
    };
    for (int bracket = 0; bracket < 2; ++bracket) {
        for (int kind = 0; kind < 4; ++kind) {
            SCOPED_TRACE(testing::Message() << "bracket " << bracket << " kind " << kind);
            EXPECT_EQ(draw(kind), (std::vector<uint32_t>{kRed, kRed, kRed, 0}));
        }
        ASSERT_EQ(GXRenderTargetSetStrokeAdjustment(c.target, 0), GXResultSuccess);
        for (int kind = 0; kind < 4; ++kind) {
            SCOPED_TRACE(testing::Message() << "not adjusted, kind " << kind);
            const std::vector<uint32_t> pixels = draw(kind);
            EXPECT_NEAR(static_cast<int>(pixels[0] >> 24), 128, 1);
            EXPECT_EQ(pixels[1], kRed);
            EXPECT_NEAR(static_cast<int>(pixels[2] >> 24), 191, 1);
        }
        ASSERT_EQ(GXRenderTargetEndPaint(c.target), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetBeginPaint(c.target), GXResultSuccess);
    }
    // Two pixels and an eighth more at either end: the end that covers less loses its pixel, of equal ones the right
    // one.
    const std::pair<float, int> starts[] = {{0.5F, 0}, {0.75F, 1}, {0.875F, 1}, {0.25F, 0}};
    for (const auto& [start, first] : starts) {
        ASSERT_EQ(GXRenderTargetClear(c.target, 0), GXResultSuccess);
        FillRect(c, {start, 0, start + 2, 1}, kRed);
        std::vector<uint32_t> expected(4);
        expected[static_cast<size_t>(first)] = expected[static_cast<size_t>(first) + 1] = kRed;
        EXPECT_EQ(c.Pixels(), expected) << "from " << start;
    }
}

TEST(RenderTarget, UnknownCapsJoinsAndModesActAsTheirComments) {
    const auto stroke = [](GXLineCap cap, GXLineJoin join) {
        Canvas c(40, 40);
        GXStrokeStyle style{};
        style.cap = cap;
        style.join = join;
        style.miterLimit = 10;
        const GXPoint points[3] = {{10, 30}, {20, 10}, {30, 30}};
        Owned<GXGeometry> path;
        EXPECT_EQ(GXCreateGeometry(path.Out()), GXResultSuccess);
        EXPECT_EQ(GXGeometryBeginFigure(path, &points[0]), GXResultSuccess);
        EXPECT_EQ(GXGeometryLineTo(path, &points[1]), GXResultSuccess);
        EXPECT_EQ(GXGeometryLineTo(path, &points[2]), GXResultSuccess);
        EXPECT_EQ(GXGeometryEndFigure(path), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetStrokeGeometry(c.target, path, Solid(kRed), 6, &style), GXResultSuccess);
        return c.Pixels();
    };
    for (const uint32_t unknown : {3U, 77U, 0xFFFFFFFFU}) {
        EXPECT_EQ(stroke(unknown, GXLineJoinMiter), stroke(GXLineCapFlat, GXLineJoinMiter)) << unknown;
        EXPECT_EQ(stroke(GXLineCapFlat, unknown), stroke(GXLineCapFlat, GXLineJoinBevel)) << unknown;
    }
    EXPECT_NE(stroke(GXLineCapFlat, GXLineJoinMiter), stroke(GXLineCapSquare, GXLineJoinMiter));
}

TEST(RenderTarget, LayerBoundsHoldEveryPixelThatTheyTouch) {
    Canvas c(4, 1);
    const GXLayerDesc layer{{0.99999994F, 0, 2.0000002F, 1}, 1.0F, 1, 0};
    ASSERT_EQ(GXRenderTargetBeginLayer(c.target, &layer), GXResultSuccess);
    FillRect(c, {0, 0, 4, 1}, kRed);
    ASSERT_EQ(GXRenderTargetEndLayer(c.target), GXResultSuccess);
    EXPECT_EQ(c.Pixels(), (std::vector<uint32_t>{kRed, kRed, kRed, 0}));
}

TEST(RenderTarget, ATargetReleasedInTheBracketLeavesWhatWasDrawn) {
    // A copy derived from the bitmap is not taken for its new pixels.
    const Owned<GXBitmap> bitmap = MakeBitmap(64, 64, GXPixelFormatPBGRA32);
    ASSERT_EQ(GXBitmapColorFill(bitmap, nullptr, kRed), GXResultSuccess);
    const GXRect reduced{0, 0, 4, 4};
    Canvas c(4, 4);
    ASSERT_EQ(GXRenderTargetStretchBitmap(c.target, bitmap, &reduced, nullptr, 1, GXInterpolationAverage),
              GXResultSuccess);
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetBitmap(bitmap, target.Out()), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetClear(target, kWhite), GXResultSuccess);
    target = Owned<GXRenderTarget>();
    ASSERT_EQ(GXRenderTargetStretchBitmap(c.target, bitmap, &reduced, nullptr, 1, GXInterpolationAverage),
              GXResultSuccess);
    EXPECT_EQ(c.Pixels(), std::vector<uint32_t>(16, kWhite));

    // At an odd address the target draws aside; the buffer gets it all the same.
    std::vector<uint8_t> memory(4 * 4 * 4 + 1, 0);
    const GXExtBufLayout layout{4, 4, 16, 96, 96};
    ASSERT_EQ(GXCreateRenderTargetExtBuf(memory.data() + 1, GXPixelFormatPBGRA32, &layout, target.Out()),
              GXResultSuccess);
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetClear(target, kWhite), GXResultSuccess);
    target = Owned<GXRenderTarget>();
    EXPECT_EQ(std::count(memory.begin(), memory.end(), 255), 64);
}

} // namespace
