// SPDX-License-Identifier: MIT
// The bitmap classes from inside: derived objects, views, conversion on reading, copies between all pairs of formats.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "Bitmaps/Bitmap.h"
#include "Bitmaps/BitmapBaseView.h"
#include "Bitmaps/PixelFormatConverter.h"
#include "Bitmaps/PixelTransfer.h"
#include "Exception.h"
#include "Pixels/PixelConversion.h"
#include "ProcessHeap.h"

using namespace Graphics;

namespace {

void Randomise(const PixelView& view, uint32_t seed) {
    std::mt19937 random(seed);
    for (ptrdiff_t i = 0; i < view.strideBytes * view.height; ++i) {
        view.data[i] = static_cast<uint8_t>((random() & 3) == 0 ? 255 * (random() & 1) : random());
    }
}

TEST(Bitmap, ChangesDropWhatWasDerived) {
    const auto bitmap = Bitmap::Create({4, 4, GXPixelFormatBGRA32, 96, 96});
    uint32_t pixels[16] = {};
    const GXBitmapData memory{pixels, 16, 16};
    const auto keeps = [&](auto&& action) {
        bitmap->Derived().Put(5, std::make_shared<int>(1));
        action();
        return bitmap->Derived().Get(5) != nullptr;
    };
    EXPECT_TRUE(keeps([&] {
        (void)bitmap->Lock(nullptr, GXLockRead);
        bitmap->Unlock();
    }));
    EXPECT_FALSE(keeps([&] {
        (void)bitmap->Lock(nullptr, GXLockWrite);
        bitmap->Unlock();
    }));
    EXPECT_TRUE(keeps([&] {
        (void)bitmap->Lock(nullptr, GXLockWrite);
        (void)bitmap->Lock(nullptr, GXLockRead);
        bitmap->Unlock();
    })) << "the later lock's mode counts";
    EXPECT_FALSE(keeps([&] {
        (void)bitmap->Lock(nullptr, GXLockWrite);
        bitmap->CopyToMemory(nullptr, memory);
        bitmap->Unlock();
    })) << "reading in between is not a lock of the host";
    EXPECT_TRUE(keeps([&] { bitmap->CopyToMemory(nullptr, memory); }));
    EXPECT_FALSE(keeps([&] { bitmap->CopyFromMemory(nullptr, memory); }));
    EXPECT_FALSE(keeps([&] { bitmap->CopyFromBitmap(nullptr, *bitmap, nullptr); }));
    EXPECT_FALSE(keeps([&] { bitmap->ColorFill(nullptr, {1, 1, 1, 1}); }));
    EXPECT_FALSE(keeps([&] { bitmap->SetPalette(nullptr); }));
    EXPECT_FALSE(keeps([&] { bitmap->NotifyChanged(); }));

    const auto first = std::make_shared<int>(1);
    bitmap->Derived().Put(1, first);
    bitmap->Derived().Put(1, std::make_shared<int>(2));
    EXPECT_EQ(first.use_count(), 1) << "a replaced object is let go";
    EXPECT_EQ(bitmap->Derived().Get(2), nullptr);
}

TEST(Bitmap, AFailedCreationLeavesNothing) {
    ProcessHeap::FailAfter(0);
    EXPECT_THROW((void)Bitmap::Create({4, 4, GXPixelFormatBGRA32, 96, 96}), Exception);
    ProcessHeap::FailAfter(-1);
}

TEST(PixelTransfer, EveryPairConvertsRowByRowOrRaisesUntouched) {
    const uint32_t colors[] = {0xFF102030U, 0x80FF8000U, 0x00123456U};
    const auto palette = std::make_shared<const Palette>(colors, 3);
    for (GXPixelFormat from = 1; from <= 10; ++from) {
        for (GXPixelFormat to = 1; to <= 10; ++to) {
            SysMemBitmap src(300, 3, from);
            SysMemBitmap dst(300, 3, to);
            Randomise(src.View(), from);
            Randomise(dst.View(), 100 + to);
            if (IsIndexedFormat(from)) {
                src.SetPalette(palette);
            }
            const std::vector<uint8_t> before(dst.Data(), dst.Data() + dst.StrideBytes() * 3);
            const std::string name = std::to_string(from) + " to " + std::to_string(to);
            if (from != to && !IsIndexedFormat(from) && !PixelConversion::Converts(from, to)) {
                EXPECT_THROW(PixelTransfer::Copy(dst.View(), src.View()), Exception) << name;
                EXPECT_EQ(std::memcmp(before.data(), dst.Data(), before.size()), 0) << name;
                continue;
            }
            PixelTransfer::Copy(dst.View(), src.View());
            for (int32_t y = 0; y < 3; ++y) {
                std::vector<uint8_t> row(before.begin() + y * dst.StrideBytes(),
                                         before.begin() + (y + 1) * dst.StrideBytes());
                const uint8_t* in = src.Data() + y * static_cast<int32_t>(src.StrideBytes());
                if (IsIndexedFormat(from)) {
                    std::vector<uint32_t> straight;
                    for (size_t x = 0; x < 300; ++x) {
                        const size_t index = from == GXPixelFormatIndexed8 ? in[x] : in[x / 8] >> (7 - x % 8) & 1U;
                        straight.push_back(index < 3 ? colors[index] : 0xFF000000U);
                    }
                    auto* bytes = reinterpret_cast<uint8_t*>(straight.data());
                    const bool direct = PixelConversion::Converts(3, to);
                    if (!direct) {
                        PixelConversion::Find(3, 2)(bytes, 0, bytes, 0, 300);
                    }
                    PixelConversion::Find(direct ? 3 : 2, to)(row.data(), 0, bytes, 0, 300);
                } else if (from == to) {
                    std::memcpy(row.data(), in, RowBytes(to, 300));
                    if (BitsPerPixel(to) == 1) { // the last byte has four bits of the row
                        row[37] = static_cast<uint8_t>((in[37] & 0xF0) | (before[y * dst.StrideBytes() + 37] & 0x0F));
                    }
                } else {
                    PixelConversion::Find(from, to)(row.data(), 0, in, 0, 300);
                }
                ASSERT_EQ(std::memcmp(row.data(), dst.Data() + y * static_cast<int32_t>(dst.StrideBytes()), row.size()),
                          0)
                    << name << " row " << y;
            }
        }
    }
}

TEST(PixelTransfer, IndexedWithoutAPaletteIsGreyOrBlackAndWhite) {
    SysMemBitmap grey(3, 1, GXPixelFormatIndexed8);
    std::memcpy(grey.Data(), "\x00\x7F\xFF", 3);
    uint32_t colors[8];
    PixelTransfer::LookUp(colors, grey.Data(), 0, 3, grey.View());
    EXPECT_EQ(colors[0], 0xFF000000U);
    EXPECT_EQ(colors[1], 0xFF7F7F7FU);
    EXPECT_EQ(colors[2], 0xFFFFFFFFU);
    SysMemBitmap bits(8, 1, GXPixelFormatIndexed1);
    bits.Data()[0] = 0x48;
    PixelTransfer::LookUp(colors, bits.Data(), 1, 4, bits.View());
    EXPECT_EQ(colors[0], 0xFFFFFFFFU);
    EXPECT_EQ(colors[1], 0xFF000000U);
    EXPECT_EQ(colors[3], 0xFFFFFFFFU);
}

// Random copies within one image, long enough for several pieces, against a copy by way of a second image.
TEST(PixelTransfer, OverlappingCopiesWithinOneImage) {
    std::mt19937 random(11);
    for (const GXPixelFormat format : {GXPixelFormatBlackWhite1, GXPixelFormatGray8, GXPixelFormatBGR24}) {
        const int32_t bits = BitsPerPixel(format);
        for (int round = 0; round < 300; ++round) {
            constexpr int32_t kWidth = 700;
            constexpr int32_t kHeight = 5;
            SysMemBitmap image(kWidth, kHeight, format);
            Randomise(image.View(), static_cast<uint32_t>(round));
            const std::vector<uint8_t> before(image.Data(), image.Data() + image.StrideBytes() * kHeight);
            std::vector<uint8_t> expected = before;
            const auto pick = [&](int32_t n) { return static_cast<int32_t>(random() % static_cast<uint64_t>(n)); };
            const IntRect rect{pick(40) - 5, pick(4) - 1, 300 + pick(500), 1 + pick(6)};
            const IntPoint origin{pick(60) - 20, pick(6) - 2};
            const auto bitAt = [&](int32_t x, int32_t y, int32_t k) {
                return static_cast<size_t>(y) * image.StrideBytes() * 8 + static_cast<size_t>(x * bits + k);
            };
            for (int32_t y = rect.top; y < rect.bottom; ++y) {
                for (int32_t x = rect.left; x < rect.right; ++x) {
                    const int32_t u = x - rect.left + origin.x;
                    const int32_t v = y - rect.top + origin.y;
                    if (x < 0 || y < 0 || x >= kWidth || y >= kHeight || u < 0 || v < 0 || u >= kWidth ||
                        v >= kHeight) {
                        continue;
                    }
                    for (int32_t k = 0; k < bits; ++k) {
                        const size_t from = bitAt(x, y, k);
                        const size_t to = bitAt(u, v, k);
                        const auto mask = static_cast<uint8_t>(0x80U >> to % 8);
                        const bool set = (before[from / 8] >> (7 - from % 8) & 1) != 0;
                        expected[to / 8] =
                            static_cast<uint8_t>(set ? expected[to / 8] | mask : expected[to / 8] & ~mask);
                    }
                }
            }
            image.CopyFromBitmap(origin, image, &rect);
            ASSERT_EQ(std::memcmp(expected.data(), image.Data(), expected.size()), 0)
                << "format " << format << " round " << round;
        }
    }
}

TEST(BitmapBaseView, ShowsAndWritesItsRectangleOnly) {
    const auto image = std::make_shared<SysMemBitmap>(40, 6, GXPixelFormatAlpha1);
    image->Zero();
    BitmapBaseView view(image, {5, 2, 22, 4});
    EXPECT_EQ(view.GetSize().width, 17U);
    view.ColorFill(nullptr, {0, 0, 0, 1});
    for (int32_t y = 0; y < 6; ++y) {
        for (int32_t x = 0; x < 40; ++x) {
            const int bit = image->Data()[y * 16 + x / 8] >> (7 - x % 8) & 1;
            ASSERT_EQ(bit, x >= 5 && x < 22 && y >= 2 && y < 4 ? 1 : 0) << x << ", " << y;
        }
    }
    EXPECT_TRUE(image->View().ownsGaps);
    EXPECT_FALSE(view.View().ownsGaps); // between its rows lie pixels of the image
    const BitmapBaseView clipped(image, {-5, -5, 1000, 1});
    EXPECT_EQ(clipped.GetSize().width, 40U);
    EXPECT_EQ(clipped.GetSize().height, 1U);
    EXPECT_THROW(BitmapBaseView(image, {40, 0, 50, 6}), Exception);
}

TEST(PixelFormatConverter, ConvertsTheRectangleIntoShortRows) {
    const auto image = std::make_shared<SysMemBitmap>(8, 4, GXPixelFormatBGRA32);
    Randomise(image->View(), 5);
    const PixelFormatConverter converter(image, GXPixelFormatPBGRA32);
    const IntRect rect{-3, 1, 5, 9};
    uint8_t out[3 * 24];
    std::memset(out, 0xAB, sizeof out);
    converter.CopyToMemory(&rect, {out, 14, 24});
    for (int32_t y = 0; y < 3; ++y) {
        uint8_t row[20];
        PixelConversion::Find(3, 2)(row, 0, image->Data() + (y + 1) * 32, 0, 5);
        EXPECT_EQ(std::memcmp(out + y * 24, row, 14), 0);
        EXPECT_EQ(out[y * 24 + 14], 0xAB);
    }
    EXPECT_THROW(PixelFormatConverter(image, 11), Exception);
    const PixelFormatConverter bad(image, GXPixelFormatIndexed8);
    EXPECT_THROW(bad.CopyToMemory(nullptr, {out, 8, 8}), Exception);
}

} // namespace
