// SPDX-License-Identifier: MIT
// Where there is no GDI, everything of GDI's says so and writes nothing.
#include "TargetSupport.h"

namespace {

using namespace TargetSupport;

TEST(NoPlatform, NativeObjectsAreRefusedByName) {
    const LastMessage message;
    const Owned<GXBitmap> bitmap = MakeBitmap(2, 2, GXPixelFormatBGRA32);
    int something = 0;
    const GXIntRect area{0, 0, 2, 2};
    GXBitmap loaded = nullptr;
    GXNativeBitmap native = nullptr;
    GXRenderTarget target = nullptr;
    for (int call = 0; call < 5; ++call) {
        const GXResult result = call == 0   ? GXCreateBitmapFromHBITMAP(&something, &loaded)
                                : call == 1 ? GXBitmapSaveToHBITMAP(bitmap, &native)
                                : call == 2 ? GXCreateRenderTargetHWND(&something, 0, &target)
                                : call == 3 ? GXCreateRenderTargetHDC(&something, &area, &target)
                                            : GXCreateRenderTargetPrintDC(&something, &target);
        EXPECT_EQ(result, GXResultEngineError) << call;
        EXPECT_EQ(message.Text(), "Not supported on this platform") << call;
        GXCreateBitmap(nullptr, nullptr); // leaves no message
    }
    EXPECT_EQ(loaded, nullptr);
    EXPECT_EQ(native, nullptr);
    EXPECT_EQ(target, nullptr);
    EXPECT_EQ(GXEnableHWAccelerationForThread(), GXResultSuccess);
}

} // namespace
