// SPDX-License-Identifier: MIT
// Parts of a page, drawn one after the other as a view moves over it: together they are the page drawn at once.
#include "BandedPlayer.h"
#include "RecordedPages.h"
#include "Scenario.h"

#include <random>

#define OK(call) EXPECT_EQ(call, GXResult{GXResultSuccess})

namespace {

using namespace RecordingTests;
using Gxr::BandedPlayer;

constexpr int32_t kWidth = 500, kHeight = 420;
constexpr GXExtBufLayout kLayout{kWidth, kHeight, kWidth * 4, 96, 96};

struct Place {
    float scale;
    GXMatrix matrix;
};

std::vector<uint32_t> Blank() { return std::vector<uint32_t>(size_t{kWidth} * kHeight, 0xFFFFFFFFu); }

// Columns of the page, each drawn at once.
std::vector<uint32_t> Whole(const Gxr::Recording& recording, const Place& place, const std::vector<int32_t>& borders) {
    std::vector<uint32_t> pixels = Blank();
    BandedPlayer player(recording, 1);
    for (size_t i = 0; i + 1 < borders.size(); ++i) {
        const BandedPlayer::Part part{place.matrix, {borders[i], 0, borders[i + 1], kHeight}, nullptr};
        player.Play(pixels.data(), GXPixelFormatPBGRA32, kLayout, place.scale, &part);
    }
    return pixels;
}

std::vector<uint32_t> Undivided(const Gxr::Recording& recording, const Place& place) {
    std::vector<uint32_t> pixels = Blank();
    Handle<GXRenderTarget> target;
    OK(GXCreateRenderTargetExtBuf(pixels.data(), GXPixelFormatPBGRA32, &kLayout, target.Out()));
    OK(GXRenderTargetSetCTM(target.Get(), &place.matrix));
    Gxr::Player(recording).Play(target.Get(), place.scale);
    return pixels;
}

void ExpectPartsMakeThePage(const Gxr::Recording& recording, const Place& place, uint32_t seed) {
    std::mt19937 random(seed);
    for (const std::vector<int32_t>& borders : {std::vector<int32_t>{0, kWidth}, {0, 128, 256, 384, kWidth}}) {
        const std::vector<uint32_t> whole = Whole(recording, place, borders);
        if (borders.size() == 2) {
            EXPECT_TRUE(whole == Undivided(recording, place));
        }
        for (const unsigned threads : {3U}) {
            BandedPlayer player(recording, threads);
            std::vector<GXIntRect> parts;
            for (size_t i = 0; i + 1 < borders.size(); ++i)
                for (int32_t top = 0, bottom = 0; top < kHeight; top = bottom) {
                    bottom = std::min(kHeight, top + 1 + static_cast<int32_t>(random() % 170));
                    parts.push_back({borders[i], top, borders[i + 1], bottom});
                }
            std::shuffle(parts.begin(), parts.end(), random);
            std::vector<uint32_t> pixels = Blank();
            for (const GXIntRect& rect : parts) {
                const BandedPlayer::Part part{place.matrix, rect, nullptr};
                const std::vector<uint32_t> before = pixels;
                player.Play(pixels.data(), GXPixelFormatPBGRA32, kLayout, place.scale, &part);
                size_t outside = 0;
                for (int32_t y = 0; y < kHeight; ++y)
                    for (int32_t x = 0; x < kWidth; ++x)
                        if (x < rect.left || x >= rect.right || y < rect.top || y >= rect.bottom)
                            outside += before[static_cast<size_t>(y * kWidth + x)] !=
                                       pixels[static_cast<size_t>(y * kWidth + x)];
                ASSERT_EQ(outside, 0U) << "drawn beside the part";
            }
            size_t different = 0;
            for (size_t i = 0; i < pixels.size(); ++i)
                different += pixels[i] != whole[i];
            EXPECT_EQ(different, 0U) << threads << " threads, " << parts.size() << " parts";
        }
    }
}

class PagePartsTest : public testing::TestWithParam<RecordedPage> {};

TEST_P(PagePartsTest, MakeThePage) {
    const Gxr::Recording recording = Gxr::Recording::FromFile(GetParam().Path());
    ExpectPartsMakeThePage(recording, {1.0f, {0.7f, 0, 0, 0.7f, -31, -57}}, 1);
    ExpectPartsMakeThePage(recording, {1.0f, {2.3f, 0, 0, 2.3f, -701, -900}}, 2);
}

INSTANTIATE_TEST_SUITE_P(Pages, PagePartsTest, testing::ValuesIn(RecordedPages()), TestName);

TEST(PageParts, OfEveryKindOfCallMakeThePage) {
    const Gxr::Recording recording(RecordScenario());
    uint32_t seed = 0;
    for (const float scale : {1.0f, 1.37f})
        ExpectPartsMakeThePage(recording, {scale, {1.1f, 0, 0, 1.1f, -3, 9}}, ++seed);
}

TEST(PageParts, NothingIsDrawnOfAnEmptyPartAndDrawingStopsWhenTold) {
    const Gxr::Recording recording(RecordScenario());
    for (const unsigned threads : {1U, 3U}) {
        BandedPlayer player(recording, threads);
        std::vector<uint32_t> pixels = Blank();
        for (const GXIntRect& rect :
             {GXIntRect{10, 10, 10, 20}, GXIntRect{-50, 0, 0, 400}, GXIntRect{0, 420, 9, 999}}) {
            const BandedPlayer::Part part{{1, 0, 0, 1, 0, 0}, rect, nullptr};
            player.Play(pixels.data(), GXPixelFormatPBGRA32, kLayout, 1.0f, &part);
        }
        EXPECT_TRUE(pixels == Blank());
        const Gxr::StopFlag stop{true};
        const BandedPlayer::Part stopped{{1, 0, 0, 1, 0, 0}, {0, 0, kWidth, kHeight}, &stop};
        EXPECT_THROW(player.Play(pixels.data(), GXPixelFormatPBGRA32, kLayout, 1.0f, &stopped), Gxr::Stopped);
        EXPECT_TRUE(pixels == Blank());
    }
}

} // namespace
