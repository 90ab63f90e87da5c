// SPDX-License-Identifier: MIT
// Bitmaps, palettes and handle lifetime through the C interface.
#include <cstring>

#include "TargetSupport.h"

namespace {

using namespace TargetSupport;

std::vector<uint8_t> Read(GXBitmap bitmap) {
    GXBitmapData data{};
    GXSize size{};
    GXBitmapGetSize(bitmap, &size);
    GXBitmapLock(bitmap, nullptr, GXLockRead, &data);
    std::vector<uint8_t> bytes;
    for (uint32_t y = 0; y < size.height; ++y) {
        const auto* row = static_cast<const uint8_t*>(data.data) + static_cast<size_t>(y) * data.stride;
        bytes.insert(bytes.end(), row, row + data.rowLength);
    }
    GXBitmapUnlock(bitmap);
    return bytes;
}

TEST(Bitmaps, HandlesCountAndPalettesAreShared) {
    uint32_t colors[3] = {0xFF112233U, 0x80445566U, 0};
    GXPalette palette = nullptr;
    ASSERT_EQ(GXCreatePalette(colors, 3, &palette), GXResultSuccess);
    colors[0] = 7; // the palette has its own copy
    EXPECT_EQ(GXObjectAcquire(palette), GXResultSuccess);
    EXPECT_EQ(GXObjectAcquire(palette), GXResultSuccess);
    EXPECT_EQ(GXObjectRelease(palette), GXResultSuccess);
    EXPECT_EQ(GXObjectRelease(palette), GXResultSuccess);
    uint64_t count = 0;
    EXPECT_EQ(GXPaletteGetNumColors(palette, &count), GXResultSuccess);
    EXPECT_EQ(count, 3U);

    const Owned<GXBitmap> bitmap = MakeBitmap(4, 4, GXPixelFormatIndexed8);
    GXPalette shared = palette;
    EXPECT_EQ(GXBitmapGetPalette(bitmap, &shared), GXResultSuccess);
    EXPECT_EQ(shared, nullptr);
    EXPECT_EQ(GXBitmapSetPalette(bitmap, palette), GXResultSuccess);
    const uint32_t* array = nullptr;
    EXPECT_EQ(GXPaletteGetColors(palette, &array), GXResultSuccess);
    EXPECT_EQ(GXObjectRelease(palette), GXResultSuccess); // the bitmap keeps it
    EXPECT_EQ(GXBitmapGetPalette(bitmap, &shared), GXResultSuccess);
    ASSERT_NE(shared, nullptr);
    const uint32_t* sharedArray = nullptr;
    EXPECT_EQ(GXPaletteGetColors(shared, &sharedArray), GXResultSuccess);
    EXPECT_EQ(sharedArray, array);
    uint32_t color = 1;
    EXPECT_EQ(GXPaletteGetColor(shared, 0, &color), GXResultSuccess);
    EXPECT_EQ(color, 0xFF112233U);
    EXPECT_EQ(GXBitmapSetPalette(bitmap, nullptr), GXResultSuccess);
    GXPalette none = shared;
    EXPECT_EQ(GXBitmapGetPalette(bitmap, &none), GXResultSuccess);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(GXObjectRelease(shared), GXResultSuccess);
    GXPalette untouched = nullptr;
    EXPECT_EQ(GXCreatePalette(colors, UINT64_MAX / 2, &untouched), GXResultUnexpectedError);
    EXPECT_EQ(untouched, nullptr);
}

TEST(Bitmaps, RefusedSizesAndFormatsSayWhy) {
    const struct {
        uint32_t width, height;
        GXPixelFormat format;
        const char* message;
    } cases[] = {{0, 5, GXPixelFormatBGRA32, "Invalid bitmap dimensions"},
                 {5, 0, GXPixelFormatAlpha1, "Invalid bitmap dimensions"},
                 {0x80000000U, 1, GXPixelFormatAlpha1, "Bitmap is too big"},
                 {30000, 30000, GXPixelFormatBGRA32, "Bitmap is too big"},
                 {4, 4, GXPixelFormatUnknown, "Unsupported pixel format."},
                 {4, 4, 11, "Unsupported pixel format."},
                 {4, 4, 0xFFFFFFFFU, "Unsupported pixel format."}};
    const LastMessage message;
    for (const auto& c : cases) {
        const GXBitmapDesc desc{c.width, c.height, c.format, 96, 96};
        GXBitmap out = nullptr;
        EXPECT_EQ(GXCreateBitmap(&desc, &out), GXResultEngineError) << c.message;
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(message.Text(), c.message);
        EXPECT_EQ(message.Whole().rfind("Exception in Graphics::", 0), 0U) << message.Whole();
    }
    const GXBitmapDesc turned{static_cast<uint32_t>(-4), 3, GXPixelFormatBGR24, 96, 72};
    Owned<GXBitmap> negative;
    ASSERT_EQ(GXCreateBitmap(&turned, negative.Out()), GXResultSuccess);
    GXSize size{};
    EXPECT_EQ(GXBitmapGetSize(negative, &size), GXResultSuccess);
    EXPECT_EQ(size.width, 4U);
    EXPECT_EQ(size.height, 3U);
    float dpiX = 0, dpiY = 0;
    GXPixelFormat format = 0;
    GXBitmapGetDpiX(negative, &dpiX);
    GXBitmapGetDpiY(negative, &dpiY);
    GXBitmapGetPixelFormat(negative, &format);
    EXPECT_EQ(dpiX, 96.0F);
    EXPECT_EQ(dpiY, 72.0F);
    EXPECT_EQ(format, static_cast<GXPixelFormat>(GXPixelFormatBGR24));
}

TEST(Bitmaps, LocksAreClippedAndStartAtWholeBytes) {
    const Owned<GXBitmap> bits = MakeBitmap(129, 4, GXPixelFormatIndexed1);
    GXBitmapData whole{};
    EXPECT_EQ(GXBitmapLock(bits, nullptr, GXLockRead, &whole), GXResultSuccess);
    EXPECT_EQ(whole.rowLength, 17U);
    EXPECT_EQ(whole.stride, 32U);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(whole.data) % 16, 0U);
    const auto* base = static_cast<const uint8_t*>(whole.data);
    const struct {
        GXIntRect rect;
        ptrdiff_t offset;
        uint32_t rowLength;
    } cases[] = {{{13, 2, 22, 4}, 2 * 32 + 1, 2},
                 {{-7, -1, 9, 2}, 0, 2},
                 {{128, 3, 5000, INT32_MAX}, 3 * 32 + 16, 1},
                 {{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, 0, 17}};
    for (const auto& c : cases) {
        GXBitmapData data{};
        EXPECT_EQ(GXBitmapLock(bits, &c.rect, GXLockWrite, &data), GXResultSuccess);
        EXPECT_EQ(static_cast<const uint8_t*>(data.data) - base, c.offset);
        EXPECT_EQ(data.rowLength, c.rowLength);
        EXPECT_EQ(data.stride, 32U);
    }
    for (const GXIntRect empty : {GXIntRect{5, 1, 5, 3}, GXIntRect{9, 1, 5, 3}, GXIntRect{129, 0, 200, 4}}) {
        GXBitmapData data{&whole, 1, 1};
        EXPECT_EQ(GXBitmapLock(bits, &empty, GXLockRead, &data), GXResultSuccess);
        EXPECT_EQ(data.data, nullptr);
        EXPECT_EQ(data.rowLength, 0U);
        EXPECT_EQ(data.stride, 0U);
    }
    EXPECT_EQ(GXBitmapUnlock(bits), GXResultSuccess);
}

TEST(Bitmaps, MemoryIsThatOfTheClippedRectangle) {
    const Owned<GXBitmap> bitmap = MakeBitmap(4, 3, GXPixelFormatGray8);
    uint8_t memory[] = {1, 2, 3, 4, 5, 6, 7, 8};
    const GXBitmapData block{memory, 2, 4};
    const GXIntRect rect{-2, 1, 3, 9}; // leaves 3 by 2 pixels, of which the block has 2 a row
    EXPECT_EQ(GXBitmapCopyFromMemory(bitmap, &rect, &block), GXResultSuccess);
    EXPECT_EQ(Read(bitmap), (std::vector<uint8_t>{0, 0, 0, 0, 1, 2, 0, 0, 5, 6, 0, 0}));

    uint8_t out[8];
    std::memset(out, 9, sizeof out);
    const GXBitmapData wide{out, 100, 4}; // a row length beyond the rectangle's is cut to it
    EXPECT_EQ(GXBitmapCopyToMemory(bitmap, &rect, &wide), GXResultSuccess);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 8), (std::vector<uint8_t>{1, 2, 0, 9, 5, 6, 0, 9}));
    const GXIntRect outside{4, 0, 9, 3};
    EXPECT_EQ(GXBitmapCopyToMemory(bitmap, &outside, &wide), GXResultSuccess);
    EXPECT_EQ(out[0], 1);
}

TEST(Bitmaps, CopiesKeepPixelPartnersAndOverlap) {
    const Owned<GXBitmap> source = MakeBitmap(4, 2, GXPixelFormatGray8);
    uint8_t levels[] = {1, 2, 3, 4, 5, 6, 7, 8};
    const GXBitmapData block{levels, 4, 4};
    GXBitmapCopyFromMemory(source, nullptr, &block);
    const Owned<GXBitmap> dest = MakeBitmap(4, 2, GXPixelFormatGray8);
    const struct {
        GXIntPoint origin;
        GXIntRect rect;
        std::vector<uint8_t> expected;
    } cases[] = {{{0, 0}, {0, 0, 4, 2}, {1, 2, 3, 4, 5, 6, 7, 8}},
                 {{-1, -1}, {0, 0, 4, 2}, {6, 7, 8, 0, 0, 0, 0, 0}},
                 {{0, 0}, {-2, -1, 2, 2}, {0, 0, 0, 0, 0, 0, 1, 2}},
                 {{3, 1}, {1, 0, 4, 2}, {0, 0, 0, 0, 0, 0, 0, 2}},
                 {{INT32_MAX, INT32_MIN}, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, {0, 0, 0, 0, 0, 0, 0, 0}},
                 {{INT32_MIN, INT32_MIN}, {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, {1, 2, 3, 4, 5, 6, 7, 8}}};
    for (const auto& c : cases) {
        GXBitmapColorFill(dest, nullptr, 0);
        EXPECT_EQ(GXBitmapCopyFromBitmap(dest, &c.origin, source, &c.rect), GXResultSuccess);
        EXPECT_EQ(Read(dest), c.expected) << c.origin.x << ", " << c.origin.y << " from " << c.rect.left;
    }
    const GXIntPoint right{1, 0};
    EXPECT_EQ(GXBitmapCopyFromBitmap(source, &right, source, nullptr), GXResultSuccess);
    EXPECT_EQ(Read(source), (std::vector<uint8_t>{1, 1, 2, 3, 5, 5, 6, 7}));

    const Owned<GXBitmap> color = MakeBitmap(4, 2, GXPixelFormatBGR24);
    const LastMessage message;
    EXPECT_EQ(GXBitmapCopyFromBitmap(color, nullptr, source, nullptr), GXResultEngineError);
    EXPECT_EQ(message.Text(), "Bad format conversion");
    const GXIntRect empty{2, 2, 2, 2};
    EXPECT_EQ(GXBitmapCopyFromBitmap(color, nullptr, source, &empty), GXResultSuccess);
}

TEST(Bitmaps, IndexedSourcesAreReadThroughTheirPalette) {
    const uint32_t colors[] = {0xFF0000FFU, 0x80FF0000U};
    Owned<GXPalette> palette;
    ASSERT_EQ(GXCreatePalette(colors, 2, palette.Out()), GXResultSuccess);
    const Owned<GXBitmap> indexed = MakeBitmap(3, 1, GXPixelFormatIndexed8);
    GXBitmapSetPalette(indexed, palette);
    uint8_t indices[] = {1, 0, 2};
    const GXBitmapData block{indices, 3, 3};
    GXBitmapCopyFromMemory(indexed, nullptr, &block);
    const Owned<GXBitmap> straight = MakeBitmap(3, 1, GXPixelFormatBGRA32);
    EXPECT_EQ(GXBitmapCopyFromBitmap(straight, nullptr, indexed, nullptr), GXResultSuccess);
    EXPECT_EQ(Read(straight), (std::vector<uint8_t>{0, 0, 255, 128, 255, 0, 0, 255, 0, 0, 0, 255}));
    const Owned<GXBitmap> same = MakeBitmap(3, 1, GXPixelFormatIndexed8);
    GXBitmapSetPalette(same, palette);
    EXPECT_EQ(GXBitmapCopyFromBitmap(same, nullptr, indexed, nullptr), GXResultSuccess);
    EXPECT_EQ(Read(same), (std::vector<uint8_t>{1, 0, 2})) << "equal palettes copy the indices";
}

TEST(Bitmaps, ColorFillWritesEveryFormat) {
    const struct {
        GXPixelFormat format;
        std::vector<uint8_t> pixel;
    } cases[] = {{GXPixelFormatBGR24, {50, 100, 200}},
                 {GXPixelFormatPBGRA32, {25, 50, 100, 128}},
                 {GXPixelFormatBGRA32, {50, 100, 200, 128}},
                 {GXPixelFormatBGRX32, {50, 100, 200, 255}},
                 {GXPixelFormatAlpha8, {128}},
                 {GXPixelFormatIndexed8, {62}},
                 {GXPixelFormatGray8, {124}}};
    for (const auto& c : cases) {
        const Owned<GXBitmap> bitmap = MakeBitmap(300, 3, c.format);
        const std::vector<uint8_t> before = Read(bitmap);
        const GXIntRect rect{1, 1, 299, 2};
        EXPECT_EQ(GXBitmapColorFill(bitmap, &rect, 0x80C86432U), GXResultSuccess);
        const std::vector<uint8_t> after = Read(bitmap);
        for (size_t i = 0; i < after.size(); ++i) {
            const size_t x = i / c.pixel.size() % 300;
            const size_t y = i / c.pixel.size() / 300;
            const bool inside = x >= 1 && x < 299 && y == 1;
            ASSERT_EQ(after[i], inside ? c.pixel[i % c.pixel.size()] : before[i])
                << "format " << c.format << " byte " << i;
        }
    }
    for (const GXPixelFormat format : {GXPixelFormatAlpha1, GXPixelFormatIndexed1, GXPixelFormatBlackWhite1}) {
        const Owned<GXBitmap> bitmap = MakeBitmap(24, 1, format);
        const GXIntRect rect{3, 0, 18, 1};
        EXPECT_EQ(GXBitmapColorFill(bitmap, &rect, 0xFFFFFFFFU), GXResultSuccess);
        EXPECT_EQ(Read(bitmap), (std::vector<uint8_t>{0x1F, 0xFF, 0xC0})) << "format " << format;
        const GXIntRect hole{5, 0, 7, 1};
        EXPECT_EQ(GXBitmapColorFill(bitmap, &hole, 0), GXResultSuccess);
        EXPECT_EQ(Read(bitmap), (std::vector<uint8_t>{0x19, 0xFF, 0xC0})) << "format " << format;
    }
}

TEST(Bitmaps, LogSinksGoInKeyOrderAndCanBeReplaced) {
    std::string order;
    const auto append = [](void* context, const char*) { *static_cast<std::string*>(context) += "a"; };
    const auto other = [](void* context, const char*) { *static_cast<std::string*>(context) += "b"; };
    const GXBitmapDesc bad{0, 0, GXPixelFormatBGRA32, 96, 96};
    GXBitmap out = nullptr;
    EXPECT_EQ(GXLogSetSink(5, other, &order), GXResultSuccess);
    EXPECT_EQ(GXLogSetSink(-5, append, &order), GXResultSuccess);
    GXCreateBitmap(&bad, &out);
    EXPECT_EQ(order, "ab");
    EXPECT_EQ(GXLogSetSink(-5, other, &order), GXResultSuccess);
    EXPECT_EQ(GXLogSetSink(5, nullptr, nullptr), GXResultSuccess);
    EXPECT_EQ(GXLogSetSink(6, nullptr, nullptr), GXResultSuccess);
    GXCreateBitmap(&bad, &out);
    EXPECT_EQ(order, "abb");
    GXLogSetSink(-5, nullptr, nullptr);
    GXCreateBitmap(&bad, &out);
    EXPECT_EQ(order, "abb");
}

} // namespace
