// SPDX-License-Identifier: MIT
// Four threads, each with a target of its own, that share one of every kind of object: all draw the same page, and a
// checker of threads has nothing to say (preset tsan).
#include <atomic>
#include <thread>

#include "TargetSupport.h"

using namespace TargetSupport;

namespace {

constexpr uint32_t kSize = 96;

/// One of everything that threads may share; nobody changes any of it while they draw.
struct Shared {
    Owned<GXGeometry> geometry = RectangleGeometry(5.5F, 6.25F, 80, 70);
    Owned<GXBitmap> image = MakeBitmap(300, 200, GXPixelFormatBGRA32);
    Owned<GXBitmap> indexed = MakeBitmap(64, 64, GXPixelFormatIndexed8);
    Owned<GXPalette> palette;
    Owned<GXBrush> solid = Solid(0x80FF4020U);
    Owned<GXBrush> averaged, gradientBrush, mask;
    Owned<GXGradient> linear, radial, mesh;
    Owned<GXFontFace> face;
    Owned<GXRegion> region;
    uint32_t ticket = 0;

    Shared() {
        const GXRect ellipse{10, 10, 90, 60};
        EXPECT_EQ(GXGeometryEllipse(geometry, &ellipse), GXResultSuccess);
        const GXIntRect part{40, 30, 200, 150};
        EXPECT_EQ(GXBitmapColorFill(image, nullptr, 0xFF3060A0U), GXResultSuccess);
        EXPECT_EQ(GXBitmapColorFill(image, &part, 0x60F0C010U), GXResultSuccess);
        const uint32_t colors[3] = {0xFF102030U, 0x80FFFFFFU, 0xFF00FF00U};
        EXPECT_EQ(GXCreatePalette(colors, 3, palette.Out()), GXResultSuccess);
        EXPECT_EQ(GXBitmapSetPalette(indexed, palette), GXResultSuccess);
        const GXBitmapBrushOptions average{GXInterpolationAverage, GXExtendRepeat, GXExtendMirror};
        const GXMatrix small{0.1F, 0.02F, -0.02F, 0.1F, 3, 4};
        EXPECT_EQ(GXCreateBrushBitmap(image, 0.9F, &average, &small, averaged.Out()), GXResultSuccess);
        const GXGradientStop stops[2] = {{0, 0xFFFF0000U}, {1, 0x400000FFU}};
        const GXLinearGradientDesc line{stops, 2, {0, 0}, {90, 50}, 1, 0, 0};
        EXPECT_EQ(GXCreateGradientLinear(&line, linear.Out()), GXResultSuccess);
        const GXRadialGradientDesc circles{stops, 2, {40, 40}, 3, {50, 45}, 40, 0, 1, 0};
        EXPECT_EQ(GXCreateGradientRadial(&circles, radial.Out()), GXResultSuccess);
        const GXTriMeshVertex corners[3] = {{0, 0, 0xFFFF0000U}, {90, 10, 0xC000FF00U}, {20, 90, 0xFF0000FFU}};
        EXPECT_EQ(GXCreateGradientTriMesh(corners, 3, 0, mesh.Out()), GXResultSuccess);
        EXPECT_EQ(GXCreateBrushGradient(radial, 0.8F, nullptr, gradientBrush.Out()), GXResultSuccess);
        EXPECT_EQ(GXCreateBrushGradient(linear, 1.0F, nullptr, mask.Out()), GXResultSuccess);
        EXPECT_EQ(GXCreateFontFace(reinterpret_cast<const uint16_t*>(u"Liberation Sans"), 0, 14.0F, face.Out()),
                  GXResultSuccess);
        EXPECT_EQ(GXCreateRegionFromRect(&part, region.Out()), GXResultSuccess);
        EXPECT_EQ(GXBitmapCachePut(image, &ticket), GXResultSuccess);
    }
    ~Shared() { EXPECT_EQ(GXBitmapCacheRemove(ticket), GXResultSuccess); }
};

/// Every call's result must be 0.
bool DrawPage(const Shared& s, GXRenderTarget t) {
    bool good = true;
    const auto check = [&](GXResult result) { good = good && result == GXResultSuccess; };
    const auto* text = reinterpret_cast<const uint16_t*>(u"Threads & text");
    const GXLayerDesc group{{0, 0, 0, 0}, 0.8F, 0, 1};
    const GXRect place{4, 50, 70, 92};
    const GXIntRect all{0, 0, 300, 200};
    check(GXRenderTargetBeginPaint(t));
    check(GXRenderTargetClear(t, 0xFFFFFFFFU));
    check(GXRenderTargetFillGeometry(t, s.geometry, s.averaged));
    check(GXRenderTargetStrokeGeometry(t, s.geometry, s.solid, 2.5F, nullptr));
    check(GXRenderTargetDrawGradient(t, s.mesh, 0.3F, nullptr));
    check(GXRenderTargetPushState(t));
    check(GXRenderTargetClipGeometry(t, s.geometry));
    check(GXRenderTargetSetOpacityMask(t, GXMaskTypeLuminosity, s.mask));
    check(GXRenderTargetBeginLayer(t, &group));
    check(GXRenderTargetStretchBitmap(t, s.image, &place, &all, 0.7F, GXInterpolationAverage));
    check(GXRenderTargetDrawBitmap(t, s.indexed, nullptr, 0.5F, GXInterpolationLinear));
    check(GXRenderTargetFillGeometry(t, s.geometry, s.gradientBrush));
    check(GXRenderTargetEndLayer(t));
    check(GXRenderTargetPopState(t));
    check(GXRenderTargetTranslateCTM(t, 3, 40));
    check(GXRenderTargetFillText(t, s.face, text, s.solid));
    float size[2];
    check(GXFontFaceCalculateTextBound(s.face, text, size));
    check(GXRenderTargetEndPaint(t));
    // What only reads the shared objects, and what makes new ones from them.
    Owned<GXGeometry> wide, both, moved;
    const GXMatrix turn{0.8F, 0.6F, -0.6F, 0.8F, 5, 5};
    const GXPoint point{30, 30};
    uint8_t inside = 0;
    check(GXGeometryWiden(s.geometry, 3.0F, nullptr, wide.Out()));
    check(GXGeometryTransform(s.geometry, &turn, moved.Out()));
    check(GXGeometryCombine(s.geometry, moved, GXCombineUnion, 0.25F, both.Out()));
    check(GXGeometryHitTest(s.geometry, &point, nullptr, 1.0F, &inside));
    Owned<GXRegion> region;
    const GXIntRect more{100, 0, 400, 90};
    check(GXRegionCombineRect(s.region, &more, GXCombineUnion, region.Out()));
    GXBitmap cached = nullptr;
    check(GXBitmapCacheGet(s.ticket, &cached));
    GXBitmapData data{};
    check(GXBitmapLock(s.image, nullptr, GXLockRead, &data));
    check(GXBitmapUnlock(s.image));
    check(GXObjectAcquire(s.image));
    check(GXObjectRelease(s.image));
    return good;
}

TEST(Threads, FourShareEveryKindOfObject) {
    constexpr int kThreads = 4;
    constexpr int kPages = 6;
    const Shared alone;
    Canvas expected(kSize, kSize);
    ASSERT_EQ(GXRenderTargetEndPaint(expected.target), GXResultSuccess);
    ASSERT_TRUE(DrawPage(alone, expected.target));
    const Shared shared; // what is derived from it is not there yet
    std::vector<std::vector<uint32_t>> pixels(kThreads);
    std::atomic<int> ready{0};
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            Canvas canvas(kSize, kSize);
            GXRenderTargetEndPaint(canvas.target);
            ++ready;
            while (ready.load() < kThreads) {
                std::this_thread::yield();
            }
            for (int page = 0; page < kPages; ++page) {
                failures += DrawPage(shared, canvas.target) ? 0 : 1;
            }
            pixels[static_cast<size_t>(i)] = canvas.Pixels();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures, 0);
    for (const auto& drawn : pixels) {
        EXPECT_EQ(drawn, expected.Pixels());
    }
}

} // namespace
