// SPDX-License-Identifier: MIT
// Calls that fail leave everything as it was; what is empty draws nothing and fails under nothing; painting always
// ends.
#include "TargetSupport.h"

using namespace TargetSupport;

namespace {

constexpr uint32_t kRed = 0xFFFF0000U;
constexpr uint32_t kGreen = 0xFF00FF00U;
constexpr uint32_t kUnknownMask = 9;
constexpr GXLayerDesc kLayer{{0, 0, 0, 0}, 1.0F, 1, 0};

void FillRect(const Canvas& c, const GXRect& r, uint32_t argb) {
    const Owned<GXBrush> brush = Solid(argb);
    EXPECT_EQ(GXRenderTargetFillRect(c.target, &r, brush), GXResultSuccess);
}

/// Sets an unknown mask of one of the two kinds.
void SetUnknownMask(const Canvas& c, bool opacity) {
    const Owned<GXBrush> mask = Solid(0xFFFFFFFFU);
    EXPECT_EQ(opacity ? GXRenderTargetSetOpacityMask(c.target, kUnknownMask, mask)
                      : GXRenderTargetSetShapeMask(c.target, kUnknownMask, mask),
              GXResultSuccess);
}

TEST(FailingLayer, StaysOpenWithWhatIsInIt) {
    for (const bool opacity : {false, true}) {
        SCOPED_TRACE(opacity);
        Canvas c(3, 1);
        const LastMessage message;
        SetUnknownMask(c, opacity);
        ASSERT_EQ(GXRenderTargetBeginLayer(c.target, &kLayer), GXResultSuccess);
        FillRect(c, {0, 0, 1, 1}, kRed);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(GXRenderTargetEndLayer(c.target), GXResultEngineError);
            EXPECT_EQ(message.Text(), "Unsupported soft mask type.");
        }
        // It can still be drawn into, by itself and by groups of its own.
        FillRect(c, {1, 0, 2, 1}, kGreen);
        ASSERT_EQ(GXRenderTargetBeginLayer(c.target, &kLayer), GXResultSuccess);
        FillRect(c, {2, 0, 3, 1}, kRed);
        EXPECT_EQ(GXRenderTargetEndLayer(c.target), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetEndLayer(c.target), GXResultEngineError);
        EXPECT_EQ(c.Pixels(), std::vector<uint32_t>(3, 0));
        EXPECT_EQ(GXRenderTargetEndPaint(c.target), GXResultSuccess);
        EXPECT_EQ(c.Pixels(), std::vector<uint32_t>(3, 0));
    }
}

TEST(FailingLayer, IsLostAtTheEndOfPaintingAndThoseAroundItAreDrawn) {
    Canvas c(2, 1);
    const LastMessage message;
    ASSERT_EQ(GXRenderTargetBeginLayer(c.target, &kLayer), GXResultSuccess);
    FillRect(c, {0, 0, 1, 1}, kRed);
    SetUnknownMask(c, false);
    ASSERT_EQ(GXRenderTargetBeginLayer(c.target, &kLayer), GXResultSuccess);
    FillRect(c, {0, 0, 2, 1}, kGreen);
    ASSERT_EQ(GXRenderTargetPushState(c.target), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetEndPaint(c.target), GXResultSuccess);
    EXPECT_EQ(message.Text(), "Unsupported soft mask type.") << "the log has the reason";
    EXPECT_EQ(c.Pixels(), (std::vector<uint32_t>{kRed, 0}));
    EXPECT_EQ(GXRenderTargetEndPaint(c.target), GXResultEngineError) << "the bracket has ended";
    EXPECT_EQ(GXRenderTargetBeginPaint(c.target), GXResultSuccess);
    FillRect(c, {1, 0, 2, 1}, kGreen);
    EXPECT_EQ(c.Pixels(), (std::vector<uint32_t>{kRed, kGreen}));
}

TEST(FailingMask, IsNoMatterForWhatIsEmpty) {
    for (const bool opacity : {false, true}) {
        SCOPED_TRACE(opacity);
        Canvas c(8, 8);
        SetUnknownMask(c, opacity);
        Owned<GXGeometry> empty;
        ASSERT_EQ(GXCreateGeometry(empty.Out()), GXResultSuccess);
        const Owned<GXBrush> brush = Solid(kRed);
        EXPECT_EQ(GXRenderTargetFillGeometry(c.target, empty, brush), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetFillTextGeometry(c.target, empty, brush), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetStrokeGeometry(c.target, empty, brush, 1.0F, nullptr), GXResultSuccess);
        // A group with nothing in it, with nothing inside its bounds, and with empty groups.
        ASSERT_EQ(GXRenderTargetBeginLayer(c.target, &kLayer), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetEndLayer(c.target), GXResultSuccess);
        const GXLayerDesc small{{0, 0, 2, 2}, 1.0F, 0, 0};
        ASSERT_EQ(GXRenderTargetBeginLayer(c.target, &small), GXResultSuccess);
        FillRect(c, {4, 4, 8, 8}, kRed);
        ASSERT_EQ(GXRenderTargetBeginLayer(c.target, &kLayer), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetEndLayer(c.target), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetEndLayer(c.target), GXResultSuccess);
        // Something outside the target is something.
        const Owned<GXGeometry> outside = RectangleGeometry(20, 20, 30, 30);
        EXPECT_EQ(GXRenderTargetFillGeometry(c.target, outside, brush), GXResultEngineError);
        EXPECT_EQ(GXRenderTargetFillTextGeometry(c.target, outside, brush), GXResultEngineError);
        EXPECT_EQ(GXRenderTargetStrokeGeometry(c.target, outside, brush, 1.0F, nullptr), GXResultEngineError);
        EXPECT_EQ(c.Pixels(), std::vector<uint32_t>(64, 0));
    }
}

// A pixel of 0 alpha may have colours: of a source that a mask leaves no alpha, none of it may get there, whichever way
// coverage, mask and source come together.
TEST(OpacityMask, LeavesPixelsAloneWhereItLeavesNoAlpha) {
    constexpr GXRect kAll{0, 0, 256, 1};
    const Owned<GXBitmap> ramp = MakeBitmap(256, 1, GXPixelFormatAlpha8);
    std::vector<uint8_t> values(256);
    for (size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<uint8_t>(i);
    }
    const GXBitmapData data{values.data(), 256, 256};
    ASSERT_EQ(GXBitmapCopyFromMemory(ramp, nullptr, &data), GXResultSuccess);
    Owned<GXBrush> mask;
    ASSERT_EQ(GXCreateBrushBitmap(ramp, 1.0F, nullptr, nullptr, mask.Out()), GXResultSuccess);
    for (const uint32_t alpha : {0U, 1U, 2U, 3U, 63U, 100U, 127U, 128U, 200U, 255U}) {
        const uint32_t color = alpha << 24 | 0x00FFFFFFU;
        const Owned<GXBitmap> pixel = MakeBitmap(1, 1, GXPixelFormatBGRA32);
        const GXBitmapData one{const_cast<uint32_t*>(&color), 4, 4};
        ASSERT_EQ(GXBitmapCopyFromMemory(pixel, nullptr, &one), GXResultSuccess);
        const GXBitmapBrushOptions repeat{GXInterpolationNearest, GXExtendRepeat, GXExtendRepeat};
        Owned<GXBrush> tile;
        ASSERT_EQ(GXCreateBrushBitmap(pixel, 1.0F, &repeat, nullptr, tile.Out()), GXResultSuccess);
        const Owned<GXBrush> solid = Solid(color);
        const Owned<GXGeometry> geometry = RectangleGeometry(0, 0, 256, 1);
        for (const bool inverted : {false, true}) {
            for (int way = 0; way < 6; ++way) {
                Canvas c(256, 1);
                if (inverted) {
                    ASSERT_EQ(GXRenderTargetInvertRect(c.target, &kAll), GXResultSuccess);
                }
                ASSERT_EQ(GXRenderTargetSetOpacityMask(c.target, GXMaskTypeAlpha, mask), GXResultSuccess);
                ASSERT_EQ(GXRenderTargetSetStrokeAdjustment(c.target, way % 2 == 0), GXResultSuccess);
                ASSERT_EQ(way < 2   ? GXRenderTargetFillRect(c.target, &kAll, solid)
                          : way < 4 ? GXRenderTargetFillGeometry(c.target, geometry, solid)
                                    : GXRenderTargetFillRect(c.target, &kAll, tile),
                          GXResultSuccess);
                const std::vector<uint32_t> pixels = c.Pixels();
                for (uint32_t m = 0; m < 256; ++m) {
                    // White under an alpha is that alpha in every channel.
                    const uint32_t left = alpha * (m + 1) >> 8;
                    const uint32_t below = inverted ? 0x00FFFFFFU : 0U;
                    ASSERT_EQ(pixels[m], left == 0 ? below : left * 0x01010101U)
                        << "alpha " << alpha << " mask " << m << " way " << way << " inverted " << inverted;
                }
            }
        }
    }
}

// --- Destinations without alpha: the fourth byte is the host's until something is drawn there ---

struct OpaqueCanvas : Canvas {
    static constexpr uint32_t kSize = 32;
    OpaqueCanvas() : Canvas(kSize, kSize, GXPixelFormatBGRX32) {
        EXPECT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
        for (size_t i = 0; i < before.size(); ++i) {
            before[i] = static_cast<uint32_t>(i) * 2654435761U;
        }
        Reset();
    }
    void Reset() {
        const GXBitmapData data{before.data(), kSize * 4, kSize * 4};
        EXPECT_EQ(GXBitmapCopyFromMemory(bitmap, nullptr, &data), GXResultSuccess);
    }
    std::vector<uint32_t> before = std::vector<uint32_t>(size_t{kSize} * kSize);
};

TEST(OpaqueTarget, AnEmptyBracketChangesNothing) {
    OpaqueCanvas c;
    ASSERT_EQ(GXRenderTargetBeginPaint(c.target), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetBeginLayer(c.target, &kLayer), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetEndLayer(c.target), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetEndPaint(c.target), GXResultSuccess);
    EXPECT_EQ(c.Pixels(), c.before);
}

// Each draw, over any fourth bytes, gives what it gives over 255, and leaves the pixels that it does not reach.
TEST(OpaqueTarget, DrawnPixelsCountAsOpaqueAndBecomeSo) {
    const Owned<GXBrush> half = Solid(0x80FF8040U);
    const Owned<GXBrush> full = Solid(0xFF204060U);
    const Owned<GXBitmap> image = MakeBitmap(8, 8, GXPixelFormatBGRA32);
    ASSERT_EQ(GXBitmapColorFill(image, nullptr, 0x90A0B0C0U), GXResultSuccess);
    Owned<GXGeometry> slanted;
    ASSERT_EQ(GXCreateGeometry(slanted.Out()), GXResultSuccess);
    const GXPoint corners[3] = {{6, 5}, {27, 9}, {11, 26}};
    ASSERT_EQ(GXGeometryBeginFigure(slanted, &corners[0]), GXResultSuccess);
    ASSERT_EQ(GXGeometryLineTo(slanted, &corners[1]), GXResultSuccess);
    ASSERT_EQ(GXGeometryLineTo(slanted, &corners[2]), GXResultSuccess);
    ASSERT_EQ(GXGeometryEndFigureClose(slanted), GXResultSuccess);
    constexpr GXRect kRect{5, 5, 28, 28};
    constexpr int kWays = 14;
    for (int way = 0; way < kWays; ++way) {
        SCOPED_TRACE(way);
        const auto draw = [&](GXRenderTarget t) {
            const GXLayerDesc group{
                {0, 0, 0, 0}, 0.8F, static_cast<uint8_t>(way % 2), static_cast<uint8_t>(way / 2 % 2)};
            const GXPoint at{9, 9};
            switch (way) {
            case 0:
                return GXRenderTargetFillRect(t, &kRect, half);
            case 1:
                return GXRenderTargetFillGeometry(t, slanted, half);
            case 2:
                return GXRenderTargetFillGeometry(t, slanted, full);
            case 3:
                return GXRenderTargetFillTextGeometry(t, slanted, full);
            case 4:
                GXRenderTargetSetBlendMode(t, GXBlendModeColorBurn);
                return GXRenderTargetFillGeometry(t, slanted, half);
            case 5:
                return GXRenderTargetDrawBitmap(t, image, &at, 1.0F, GXInterpolationNearest);
            case 6:
                GXRenderTargetClipGeometry(t, slanted);
                return GXRenderTargetClear(t, 0x40FFFFFFU);
            case 7:
                return GXRenderTargetInvertRect(t, &kRect);
            case 8:
                return GXRenderTargetInvertLine(t, &corners[0], &corners[1]);
            case 9:
                GXRenderTargetSetOpacityMask(t, GXMaskTypeAlpha, half);
                return GXRenderTargetFillRect(t, &kRect, half);
            default: // groups of all kinds
                GXRenderTargetBeginLayer(t, &group);
                GXRenderTargetSetBlendMode(t, GXBlendModeMultiply);
                GXRenderTargetFillGeometry(t, slanted, half);
                return GXRenderTargetEndLayer(t);
            }
        };
        OpaqueCanvas any;
        OpaqueCanvas opaque;
        for (uint32_t& pixel : opaque.before) {
            pixel |= 0xFF000000U;
        }
        opaque.Reset();
        for (OpaqueCanvas* c : {&any, &opaque}) {
            ASSERT_EQ(GXRenderTargetBeginPaint(c->target), GXResultSuccess);
            ASSERT_EQ(draw(c->target), GXResultSuccess);
            ASSERT_EQ(GXRenderTargetEndPaint(c->target), GXResultSuccess);
        }
        const std::vector<uint32_t> got = any.Pixels();
        const std::vector<uint32_t> wanted = opaque.Pixels();
        size_t changed = 0;
        for (uint32_t y = 0; y < OpaqueCanvas::kSize; ++y) {
            for (uint32_t x = 0; x < OpaqueCanvas::kSize; ++x) {
                const size_t i = y * OpaqueCanvas::kSize + x;
                // A group that shows what is below it reads a box around its shapes.
                const uint32_t reach = way >= 10 ? 2 : 0;
                const bool outside = x + reach < 5 || y + reach < 5 || x >= 28 + reach || y >= 28 + reach;
                ASSERT_EQ(got[i] & 0x00FFFFFFU, wanted[i] & 0x00FFFFFFU) << x << ", " << y;
                if (wanted[i] != opaque.before[i]) {
                    ASSERT_EQ(got[i] >> 24, 255U) << x << ", " << y;
                    ++changed;
                } else if (outside) {
                    ASSERT_EQ(got[i], any.before[i]) << x << ", " << y;
                }
            }
        }
        EXPECT_GT(changed, 10U);
    }
}

// --- A bitmap that is drawn while it is painted into ---

TEST(PaintedBitmap, ShowsItsPresentPixelsWhenItIsAveraged) {
    Canvas painted(64, 64);
    Owned<GXBrush> brush;
    const GXBitmapBrushOptions average{GXInterpolationAverage, GXExtendClamp, GXExtendClamp};
    const GXMatrix small{0.125F, 0, 0, 0.125F, 0, 0};
    ASSERT_EQ(GXCreateBrushBitmap(painted.bitmap, 1.0F, &average, &small, brush.Out()), GXResultSuccess);
    constexpr GXRect kPlace{0, 0, 8, 8};
    for (int i = 0; i < 6; ++i) {
        const uint32_t color = i % 2 == 0 ? kRed : kGreen;
        if (i == 4) { // in a later bracket too
            ASSERT_EQ(GXRenderTargetEndPaint(painted.target), GXResultSuccess);
            ASSERT_EQ(GXRenderTargetBeginPaint(painted.target), GXResultSuccess);
        }
        FillRect(painted, {0, 0, 64, 64}, color);
        Canvas stretched(8, 8);
        ASSERT_EQ(GXRenderTargetStretchBitmap(stretched.target, painted.bitmap, &kPlace, nullptr, 1.0F,
                                              GXInterpolationAverage),
                  GXResultSuccess);
        EXPECT_EQ(stretched.Pixels(), std::vector<uint32_t>(64, color)) << i;
        Canvas filled(8, 8);
        ASSERT_EQ(GXRenderTargetFillRect(filled.target, &kPlace, brush), GXResultSuccess);
        EXPECT_EQ(filled.Pixels(), std::vector<uint32_t>(64, color)) << i;
    }
}

} // namespace
