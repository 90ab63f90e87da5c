// SPDX-License-Identifier: MIT
// Image files and the bitmap cache through the C interface, as every platform has them.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>

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

/// Random pixels; a palette with room to spare for the indexed formats.
Owned<GXBitmap> RandomBitmap(uint32_t width, uint32_t height, GXPixelFormat format, uint32_t seed) {
    Owned<GXBitmap> bitmap;
    const GXBitmapDesc desc{width, height, format, 144.0F, 72.0F};
    EXPECT_EQ(GXCreateBitmap(&desc, bitmap.Out()), GXResultSuccess);
    std::mt19937 random(seed);
    if (format == GXPixelFormatIndexed8 || format == GXPixelFormatIndexed1) {
        std::vector<uint32_t> colors(format == GXPixelFormatIndexed8 ? 256 : 2);
        for (uint32_t& c : colors) {
            c = 0xFF000000U | (random() & 0xFFFFFFU);
        }
        Owned<GXPalette> palette;
        EXPECT_EQ(GXCreatePalette(colors.data(), colors.size(), palette.Out()), GXResultSuccess);
        EXPECT_EQ(GXBitmapSetPalette(bitmap, palette), GXResultSuccess);
    }
    std::vector<uint8_t> bytes(static_cast<size_t>(width) * height * 4);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<uint8_t>(random() % 4 == 0 ? 255 : random()); });
    if (format == GXPixelFormatPBGRA32) {
        for (size_t i = 0; i < bytes.size(); ++i) { // no colour above its alpha
            bytes[i] = std::min(bytes[i], bytes[i | 3]);
        }
    }
    const GXBitmapData data{bytes.data(), width * 4, width * 4};
    EXPECT_EQ(GXBitmapCopyFromMemory(bitmap, nullptr, &data), GXResultSuccess);
    return bitmap;
}

/// Straight colours, whatever the format is.
std::vector<uint32_t> Colors(GXBitmap bitmap) {
    GXSize size{};
    EXPECT_EQ(GXBitmapGetSize(bitmap, &size), GXResultSuccess);
    const Owned<GXBitmap> straight = MakeBitmap(size.width, size.height, GXPixelFormatBGRA32);
    EXPECT_EQ(GXBitmapCopyFromBitmap(straight, nullptr, bitmap, nullptr), GXResultSuccess);
    std::vector<uint32_t> colors(static_cast<size_t>(size.width) * size.height);
    const GXBitmapData data{colors.data(), size.width * 4, size.width * 4};
    EXPECT_EQ(GXBitmapCopyToMemory(straight, nullptr, &data), GXResultSuccess);
    return colors;
}

std::vector<char> BytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// GDI+ does not read the alpha of Windows bitmaps; the portable codec does.
#ifdef _WIN32
constexpr bool kBmpHasAlpha = false;
#else
constexpr bool kBmpHasAlpha = true;
#endif

TEST(BitmapFiles, LosslessFilesGiveBackColorsAndResolutionOnEveryPlatform) {
    const std::filesystem::path& folder = ScratchFolder();
    for (const std::string ending : {"png", "TIF", "tiff", "bmp"}) {
        for (GXPixelFormat format = GXPixelFormatBGR24; format <= GXPixelFormatIndexed1; ++format) {
            const Owned<GXBitmap> bitmap = RandomBitmap(13, 7, format, format);
            const std::filesystem::path path = folder / ("gx_lossless." + ending);
            std::vector<uint32_t> expected = Colors(bitmap);
            for (uint32_t& c : expected) {
                c |= ending == "bmp" && !kBmpHasAlpha ? 0xFF000000U : 0U;
            }
            ASSERT_EQ(GXBitmapSaveToFile(bitmap, path.wstring().c_str()), GXResultSuccess) << ending << " " << format;
            Owned<GXBitmap> loaded, fromMemory;
            ASSERT_EQ(GXCreateBitmapFromFile(path.wstring().c_str(), loaded.Out()), GXResultSuccess);
            const std::vector<char> bytes = BytesOf(path);
            ASSERT_EQ(GXCreateBitmapFromMemory(bytes.data(), bytes.size(), fromMemory.Out()), GXResultSuccess);
            EXPECT_EQ(Colors(loaded), expected) << ending << " " << format;
            EXPECT_EQ(Colors(fromMemory), expected) << ending << " " << format;
            float dpi[2] = {};
            EXPECT_EQ(GXBitmapGetDpiX(loaded, &dpi[0]), GXResultSuccess);
            EXPECT_EQ(GXBitmapGetDpiY(loaded, &dpi[1]), GXResultSuccess);
            EXPECT_NEAR(dpi[0], 144.0F, 0.1F) << ending << " " << format;
            EXPECT_NEAR(dpi[1], 72.0F, 0.1F) << ending << " " << format;
            std::filesystem::remove(path);
        }
    }
}

TEST(BitmapFiles, ResolutionsThatCannotBeMeantAreSavedAsOthersAre) {
    const std::filesystem::path& folder = ScratchFolder();
    for (const char* ending : {"png", "jpg", "tif", "bmp"}) {
        for (const float dpi : {0.0F, -5.0F, 1e30F, NAN, INFINITY}) {
            const GXBitmapDesc desc{3, 2, GXPixelFormatBGR24, dpi, dpi};
            Owned<GXBitmap> bitmap, loaded;
            ASSERT_EQ(GXCreateBitmap(&desc, bitmap.Out()), GXResultSuccess);
            ASSERT_EQ(GXBitmapColorFill(bitmap, nullptr, 0xFF102030), GXResultSuccess);
            const std::filesystem::path path = folder / (std::string("gx_dpi.") + ending);
            EXPECT_EQ(GXBitmapSaveToFile(bitmap, path.wstring().c_str()), GXResultSuccess) << ending << " " << dpi;
            ASSERT_EQ(GXCreateBitmapFromFile(path.wstring().c_str(), loaded.Out()), GXResultSuccess) << ending;
            std::filesystem::remove(path);
        }
    }
}

TEST(BitmapFiles, TheEndingChoosesTheEncoder) {
    const std::filesystem::path& folder = ScratchFolder();
    const Owned<GXBitmap> bitmap = RandomBitmap(9, 9, GXPixelFormatBGR24, 3);
    const struct {
        const char* ending;
        std::string start;
    } kinds[] = {{"JPG", "\xFF\xD8\xFF"}, {"jpeg", "\xFF\xD8\xFF"}, {"tif", "II*"},
                 {"TIFF", "II*"},         {"Png", "\x89PNG"},       {"bmp", "BM"}};
    for (const auto& kind : kinds) {
        const std::filesystem::path path = folder / (std::string("gx_kind.x.") + kind.ending);
        ASSERT_EQ(GXBitmapSaveToFile(bitmap, path.wstring().c_str()), GXResultSuccess) << kind.ending;
        const std::vector<char> bytes = BytesOf(path);
        ASSERT_GT(bytes.size(), 16U);
        EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(kind.start.size())), kind.start)
            << kind.ending;
        Owned<GXBitmap> loaded;
        EXPECT_EQ(GXCreateBitmapFromFile(path.wstring().c_str(), loaded.Out()), GXResultSuccess) << kind.ending;
        std::filesystem::remove(path);
    }
}

TEST(BitmapCache, CountsBytesDropsTheOldestAndKeepsBareHandles) {
    uint64_t quota = 0, inUse = 1;
    ASSERT_EQ(GXBitmapCacheGetMemoryQuota(&quota), GXResultSuccess);
    ASSERT_EQ(GXBitmapCacheGetMemoryInUse(&inUse), GXResultSuccess);
    EXPECT_EQ(quota, 41943040U);
    EXPECT_EQ(inUse, 0U);
    uint32_t tickets[2] = {};
    GXBitmap got = nullptr;
    {
        const Owned<GXBitmap> bitmaps[2] = {MakeBitmap(3, 1, GXPixelFormatBGR24), MakeBitmap(3, 1, GXPixelFormatBGR24)};
        EXPECT_EQ(GXBitmapCacheSetMemoryQuota(9), GXResultSuccess);
        for (size_t i = 0; i < 2; ++i) {
            ASSERT_EQ(GXBitmapCachePut(bitmaps[i], &tickets[i]), GXResultSuccess);
            EXPECT_EQ(GXBitmapCacheGet(tickets[i], &got), GXResultSuccess);
            EXPECT_EQ(got, static_cast<GXBitmap>(bitmaps[i]));
        }
        EXPECT_EQ(GXBitmapCacheGet(tickets[0], &got), GXResultSuccess);
        EXPECT_EQ(got, nullptr);
    } // the host releases too early: the cache never looks
    EXPECT_EQ(GXBitmapCacheGetMemoryInUse(&inUse), GXResultSuccess);
    EXPECT_EQ(inUse, 9U);
    EXPECT_EQ(GXBitmapCacheRemove(tickets[1]), GXResultSuccess);
    EXPECT_EQ(GXBitmapCacheGetMemoryInUse(&inUse), GXResultSuccess);
    EXPECT_EQ(inUse, 0U);
    EXPECT_EQ(GXBitmapCacheSetMemoryQuota(quota), GXResultSuccess);
}

} // namespace
