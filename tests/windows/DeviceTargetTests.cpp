// SPDX-License-Identifier: MIT
// Targets on device contexts: only the area is drawn, in device pixels, over what the device shows.
#include "WindowsSupport.h"

namespace {

using namespace TargetSupport;
using namespace WindowsSupport;

/// The scene of the area's size over `ground`, inside a picture of `ground`.
std::vector<uint32_t> Expected(int width, int height, const GXIntRect& area, uint32_t ground) {
    const int areaWidth = area.right - area.left;
    const std::vector<uint32_t> scene =
        SceneColors(static_cast<uint32_t>(areaWidth), static_cast<uint32_t>(area.bottom - area.top), ground);
    std::vector<uint32_t> all(static_cast<size_t>(width) * static_cast<size_t>(height), ground);
    for (int y = std::max(area.top, 0); y < std::min(area.bottom, height); ++y) {
        for (int x = std::max(area.left, 0); x < std::min(area.right, width); ++x) {
            all[static_cast<size_t>(y * width + x)] =
                scene[static_cast<size_t>((y - area.top) * areaWidth + x - area.left)];
        }
    }
    return all;
}

TEST(DeviceTarget, DrawsItsAreaInDevicePixelsWhateverTheHostHasSet) {
    struct Setting {
        const char* name;
        void (*apply)(HDC);
    };
    const Setting settings[] = {
        {"plain", [](HDC) {}},
        {"metric", [](HDC dc) { SetMapMode(dc, MM_LOMETRIC); }},
        {"origins",
         [](HDC dc) {
             SetViewportOrgEx(dc, 7, -3, nullptr);
             SetWindowOrgEx(dc, -2, 9, nullptr);
         }},
        {"turned",
         [](HDC dc) {
             SetGraphicsMode(dc, GM_ADVANCED);
             const XFORM turn{0.0F, 2.0F, -2.0F, 0.0F, 11.0F, 3.0F};
             SetWorldTransform(dc, &turn);
         }},
    };
    for (const Setting& setting : settings) {
        for (const GXIntRect& area : {GXIntRect{9, 4, 49, 34}, GXIntRect{-6, -5, 30, 20}, GXIntRect{50, 30, 90, 60}}) {
            GdiPicture picture(64, 48);
            picture.Fill(0x8090A0);
            setting.apply(picture.Context());
            Owned<GXRenderTarget> target;
            ASSERT_EQ(GXCreateRenderTargetHDC(picture.Context(), &area, target.Out()), GXResultSuccess);
            GXSize size{};
            ASSERT_EQ(GXRenderTargetGetSize(target, &size), GXResultSuccess);
            EXPECT_EQ(size.width, static_cast<uint32_t>(area.right - area.left));
            EXPECT_EQ(size.height, static_cast<uint32_t>(area.bottom - area.top));
            const HDC dc = picture.Context();
            const int mapMode = GetMapMode(dc);
            ASSERT_EQ(DrawScene(target, static_cast<float>(size.width), static_cast<float>(size.height)),
                      GXResultSuccess);
            EXPECT_EQ(GetMapMode(dc), mapMode) << "the host's state is given back";
            // Beyond the device the ground is white and unseen.
            EXPECT_EQ(picture.Colors(), Expected(64, 48, area, 0x8090A0)) << setting.name << " " << area.left;
        }
    }
}

TEST(DeviceTarget, TheHostsClipHoldsAndTheNextFrameSeesTheDevice) {
    GdiPicture picture(40, 40);
    picture.Fill(0x102030);
    const HRGN clip = CreateRectRgn(10, 10, 20, 20);
    SelectClipRgn(picture.Context(), clip);
    DeleteObject(clip);
    const GXIntRect area{5, 5, 35, 35};
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetHDC(picture.Context(), &area, target.Out()), GXResultSuccess);
    const Owned<GXBrush> white = Solid(0xFFFFFFFFU);
    const GXRect all{0, 0, 30, 30};
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetFillRect(target, &all, white), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
    for (size_t y = 0; y < 40; ++y) {
        for (size_t x = 0; x < 40; ++x) {
            const bool inside = x >= 10 && x < 20 && y >= 10 && y < 20;
            ASSERT_EQ(picture.Colors()[y * 40 + x], inside ? 0xFFFFFFU : 0x102030U) << x << ", " << y;
        }
    }
    // The host draws, then an inversion meets what the host drew.
    picture.Fill(0x0000FF);
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetInvertRect(target, &all), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
    EXPECT_EQ(picture.Colors()[15 * 40 + 15], 0xFFFF00U);
    EXPECT_EQ(picture.Colors()[0], 0x0000FFU);
}

TEST(DeviceTarget, AnEmptyAreaIsTheWholeDevice) {
    const GdiPicture picture(16, 16);
    const GXIntRect empty{7, 3, 7, 50};
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetHDC(picture.Context(), &empty, target.Out()), GXResultSuccess);
    GXSize size{};
    ASSERT_EQ(GXRenderTargetGetSize(target, &size), GXResultSuccess);
    EXPECT_EQ(size.width, static_cast<uint32_t>(GetDeviceCaps(picture.Context(), HORZRES)));
    EXPECT_EQ(size.height, static_cast<uint32_t>(GetDeviceCaps(picture.Context(), VERTRES)));
}

TEST(DeviceTarget, ADeviceOfFewColoursGetsPixelsOfItsOwnKind) {
    // The display's other depths are not at hand: the device says 16 bits, and the picture of 16 bits is read back.
    GdiPicture picture(24, 24, 16);
    GdiPicture copy(24, 24);
    g_system.getDeviceCaps = [](HDC dc, int index) { return index == BITSPIXEL ? 16 : ::GetDeviceCaps(dc, index); };
    const GXIntRect area{0, 0, 24, 24};
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetHDC(picture.Context(), &area, target.Out()), GXResultSuccess);
    ASSERT_EQ(DrawScene(target, 24, 24), GXResultSuccess);
    g_system = SystemCalls();
    ASSERT_TRUE(BitBlt(copy.Context(), 0, 0, 24, 24, picture.Context(), 0, 0, SRCCOPY));
    const std::vector<uint32_t> shown = copy.Colors();
    const std::vector<uint32_t> scene = SceneColors(24, 24, 0);
    for (size_t i = 0; i < scene.size(); ++i) {
        for (int shift : {0, 8, 16}) {
            // Five bits a channel, rounded or cut off.
            ASSERT_NEAR(static_cast<int>(shown[i] >> shift & 255), static_cast<int>(scene[i] >> shift & 255), 8) << i;
        }
    }
}

TEST(DeviceTarget, AMetafileRecordsThePictureOnWhite) {
    const HDC recorder = CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(recorder, nullptr);
    const GXIntRect area{0, 0, 30, 20};
    {
        Owned<GXRenderTarget> target;
        ASSERT_EQ(GXCreateRenderTargetHDC(recorder, &area, target.Out()), GXResultSuccess);
        ASSERT_EQ(DrawScene(target, 30, 20), GXResultSuccess);
    }
    const HENHMETAFILE metafile = CloseEnhMetaFile(recorder);
    int pictures = 0;
    EnumEnhMetaFile(
        nullptr, metafile,
        [](HDC, HANDLETABLE*, const ENHMETARECORD* record, int, LPARAM count) -> int {
            *reinterpret_cast<int*>(count) += record->iType == EMR_BITBLT || record->iType == EMR_STRETCHDIBITS;
            return 1;
        },
        &pictures, nullptr);
    DeleteEnhMetaFile(metafile);
    EXPECT_EQ(pictures, 1);
}

TEST(DeviceTarget, RefusedContextsAndSizesSayWhy) {
    const LastMessage message;
    GXRenderTarget none = nullptr;
    const GXIntRect area{0, 0, 8, 8};
    EXPECT_EQ(GXCreateRenderTargetHDC(reinterpret_cast<HDC>(0x7ABCDE01), &area, &none), GXResultEngineError);
    EXPECT_EQ(message.Text(), "CreateCompatibleDC is failed.");
    const HDC dc = CreateCompatibleDC(nullptr);
    for (const GXIntRect& huge : {GXIntRect{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, GXIntRect{0, 0, INT32_MAX, 1},
                                  GXIntRect{-5, 0, 30000, 30000}}) {
        EXPECT_EQ(GXCreateRenderTargetHDC(dc, &huge, &none), GXResultEngineError);
        EXPECT_EQ(message.Text(), "Bitmap is too big");
    }
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetHDC(dc, &area, target.Out()), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    DeleteDC(dc);
    EXPECT_EQ(GXRenderTargetEndPaint(target), GXResultEngineError);
    EXPECT_EQ(message.Text(), "The DC does not exist");
    EXPECT_EQ(GXRenderTargetBeginPaint(target), GXResultEngineError);
    EXPECT_EQ(message.Text(), "The DC does not exist");
    EXPECT_EQ(none, nullptr);
}

} // namespace
