// SPDX-License-Identifier: MIT
// Image files and the bitmap cache through the C interface, as every platform has them.
#include <gtest/gtest.h>

#include <filesystem>

#include "../ScratchFolder.h"
#include "TargetSupport.h"

using namespace TargetSupport;

namespace {

TEST(BitmapFiles, MessagesFramesAndOutputs) {
    const LastMessage message;
    const std::filesystem::path& folder = ScratchFolder();
    const std::wstring path = (folder / "gx_interface.BMP").wstring();
    const Owned<GXBitmap> bitmap = MakeBitmap(5, 3, GXPixelFormatBGR24);
    GXBitmapColorFill(bitmap, nullptr, 0xFF336699);
    ASSERT_EQ(GXBitmapSaveToFile(bitmap, path.c_str()), GXResultSuccess);

    Owned<GXBitmap> loaded;
    uint32_t count = 0;
    ASSERT_EQ(GXCreateBitmapFromFileFrame(path.c_str(), 0, &count, loaded.Out()), GXResultSuccess);
    EXPECT_EQ(count, 1U);
    uint8_t pixels[45];
    const GXBitmapData data{pixels, 15, 15};
    ASSERT_EQ(GXBitmapCopyToMemory(loaded, nullptr, &data), GXResultSuccess);
    EXPECT_EQ(pixels[42] | pixels[43] << 8 | pixels[44] << 16, 0x336699);

    GXBitmap none = nullptr;
    count = 7;
    EXPECT_EQ(GXCreateBitmapFromFileFrame(path.c_str(), 1, &count, &none), GXResultEngineError);
    EXPECT_EQ(message.Text(), "Failed to load. Frame index is out of range.");
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(GXCreateBitmapFromFileFrame(path.c_str(), 1, nullptr, &none), GXResultEngineError);
    EXPECT_EQ(GXCreateBitmapFromFile((folder / "gx_missing.bmp").wstring().c_str(), &none), GXResultEngineError);
    EXPECT_EQ(message.Text(), "Failed to load");
    EXPECT_EQ(GXCreateBitmapFromFile(folder.wstring().c_str(), &none), GXResultEngineError);
    EXPECT_EQ(GXCreateBitmapFromMemory(pixels, 0, &none), GXResultEngineError);
    EXPECT_EQ(GXCreateBitmapFromMemory(pixels, sizeof pixels, &none), GXResultEngineError);
    EXPECT_EQ(message.Text(), "Failed to load");
    EXPECT_EQ(none, nullptr);
    for (const wchar_t* wrong : {L"picture.xyz", L"picture", L"x.bmp/picture"}) {
        EXPECT_EQ(GXBitmapSaveToFile(bitmap, wrong), GXResultEngineError);
        EXPECT_EQ(message.Text(), "Failed to save bitmap: Unknown file format");
    }
    std::filesystem::remove(path);
}

TEST(BitmapCache, DropsTheOldestAndKeepsBareHandles) {
    uint64_t quota = 0, inUse = 1;
    ASSERT_EQ(GXBitmapCacheGetMemoryQuota(&quota), GXResultSuccess);
    ASSERT_EQ(GXBitmapCacheGetMemoryInUse(&inUse), GXResultSuccess);
    EXPECT_EQ(quota, 41943040U);
    EXPECT_EQ(inUse, 0U);

    uint32_t tickets[3] = {};
    GXBitmap got = nullptr;
    {
        const Owned<GXBitmap> bitmaps[3] = {MakeBitmap(2048, 2048, GXPixelFormatPBGRA32),
                                            MakeBitmap(2048, 2048, GXPixelFormatPBGRA32),
                                            MakeBitmap(2048, 2048, GXPixelFormatPBGRA32)};
        for (size_t i = 0; i < 3; ++i) {
            ASSERT_EQ(GXBitmapCachePut(bitmaps[i], &tickets[i]), GXResultSuccess);
            EXPECT_EQ(tickets[i], tickets[0] + i);
        }
        EXPECT_EQ(tickets[0], 1U);
        for (size_t i = 0; i < 3; ++i) {
            got = bitmaps[0];
            EXPECT_EQ(GXBitmapCacheGet(tickets[i], &got), GXResultSuccess);
            EXPECT_EQ(got, i == 0 ? nullptr : static_cast<GXBitmap>(bitmaps[i]));
        }
        GXBitmapCacheGetMemoryInUse(&inUse);
        EXPECT_EQ(inUse, 2U * 2048 * 2048 * 4);
    } // the host releases too early: the cache never looks
    EXPECT_EQ(GXBitmapCacheRemove(77777), GXResultSuccess);
    EXPECT_EQ(GXBitmapCacheRemove(tickets[1]), GXResultSuccess);
    EXPECT_EQ(GXBitmapCacheSetMemoryQuota(0), GXResultSuccess);
    GXBitmapCacheGetMemoryInUse(&inUse);
    EXPECT_EQ(inUse, 0U);

    const Owned<GXBitmap> small = MakeBitmap(3, 1, GXPixelFormatBGR24);
    uint32_t ticket = 0;
    EXPECT_EQ(GXBitmapCachePut(small, &ticket), GXResultSuccess);
    EXPECT_EQ(GXBitmapCacheGet(ticket, &got), GXResultSuccess);
    EXPECT_EQ(got, small);
    GXBitmapCacheGetMemoryInUse(&inUse);
    EXPECT_EQ(inUse, 9U); // over the quota, but alone
    EXPECT_EQ(GXBitmapCacheRemove(ticket), GXResultSuccess);
    EXPECT_EQ(GXBitmapCacheSetMemoryQuota(quota), GXResultSuccess);
}

} // namespace
