// SPDX-License-Identifier: MIT
// Pages drawn in bands by several threads: the bytes are those of one thread, for every recorded page, every kind of
// call and every way of showing a surface of the page's own. For the preset tsan, too, in which a checker watches.
#include "BandedPlayer.h"
#include "Container.h"
#include "RecordedPages.h"
#include "Scenario.h"

#include <numeric>
#include <random>

#define OK(call) EXPECT_EQ(call, GXResult{GXResultSuccess})

namespace {

using namespace RecordingTests;
using Gxr::BandedPlayer;

constexpr unsigned kThreads[] = {1, 2, 3, 7};

std::vector<uint8_t> Whole(const Gxr::Recording& recording, float scale) {
    const Handle<GXBitmap> bitmap = Gxr::NewPageBitmap(recording.Page(), scale);
    Handle<GXRenderTarget> target;
    OK(GXCreateRenderTargetBitmap(bitmap.Get(), target.Out()));
    Gxr::Player(recording).Play(target.Get(), scale);
    return Pixels(bitmap.Get());
}

void ExpectBandsCover(const std::vector<BandedPlayer::Drawn>& bands, int32_t height) {
    int32_t row = 0;
    for (const BandedPlayer::Drawn& band : bands) {
        EXPECT_EQ(band.rows.top, row);
        EXPECT_LT(band.rows.top, band.rows.bottom);
        row = band.rows.bottom;
    }
    EXPECT_EQ(row, height);
}

void ExpectSameInBands(const Gxr::Recording& recording, float scale) {
    SCOPED_TRACE(scale);
    const std::vector<uint8_t> whole = Whole(recording, scale);
    for (const unsigned threads : kThreads) {
        SCOPED_TRACE(threads);
        for (const auto cut : {BandedPlayer::Cut::Cost, BandedPlayer::Cut::Height}) {
            BandedPlayer player(recording, threads, cut);
            const Handle<GXBitmap> bitmap = Gxr::NewPageBitmap(recording.Page(), scale);
            player.Play(bitmap.Get(), scale);
            EXPECT_TRUE(Pixels(bitmap.Get()) == whole);
        }
    }
}

class BandedPageTest : public testing::TestWithParam<RecordedPage> {};

TEST_P(BandedPageTest, HasItsChecksumOnAnyNumberOfThreads) {
    const Gxr::Recording recording = Gxr::Recording::FromFile(GetParam().Path());
    const Gxr::PageInfo& page = recording.Page();
    for (const unsigned threads : kThreads) {
        BandedPlayer player(recording, threads);
        // The second time bands end where the first one's times say.
        for (int time = 0; time < (threads == 2 ? 2 : 1); ++time) {
            const Handle<GXBitmap> bitmap = Gxr::NewPageBitmap(page);
            player.Play(bitmap.Get());
            EXPECT_EQ(ChecksumOf(bitmap.Get(), page.format), GetParam().checksum) << threads << " threads";
            ExpectBandsCover(player.Bands(), static_cast<int32_t>(page.height));
            EXPECT_EQ(player.Bands().size() > 1, threads > 1 && page.height >= 32);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Pages, BandedPageTest, testing::ValuesIn(RecordedPages()), TestName);

TEST(ThreadedRecording, DrawsEveryKindOfCallAtEveryScale) {
    const Gxr::Recording recording(RecordScenario());
    for (const float scale : {1.0f, 1.37f, 4.0f})
        ExpectSameInBands(recording, scale);
}

// A surface of its own, with rows that all differ.
Handle<GXBitmap> DrawStripes(const Gxr::Calls& calls, uint32_t side, GXBrush shown) {
    const GXBitmapDesc desc{side, side, GXPixelFormatPBGRA32, 96, 96};
    Handle<GXBitmap> bitmap;
    Handle<GXRenderTarget> target;
    OK(GXCreateBitmap(&desc, bitmap.Out()));
    OK(GXBitmapColorFill(bitmap.Get(), nullptr, 0));
    OK(calls.CreateRenderTargetBitmap(bitmap.Get(), target.Out()));
    OK(calls.BeginPaint(target.Get()));
    for (uint32_t y = 0; y < side; ++y) {
        const auto top = static_cast<float>(y), end = static_cast<float>(side);
        const GXRect row{0, top, end - top / 2, top + 1};
        Handle<GXBrush> color;
        OK(calls.CreateBrushSolidARGB(0xFF000000u + 0x01030507u * (y * 37 % 83), color.Out()));
        OK(calls.FillRect(target.Get(), &row, color.Get()));
    }
    const GXRect all{3, 5, static_cast<float>(side) - 2, static_cast<float>(side) - 7};
    if (shown != nullptr) {
        OK(calls.FillRect(target.Get(), &all, shown));
    }
    OK(calls.EndPaint(target.Get()));
    return bitmap;
}

// Masks and paints from surfaces, placed every way: on their rows, between rows, mirrored, beyond their edges, reduced,
// turned, repeated; and surfaces that are shown on other surfaces.
TEST(ThreadedRecording, DrawsWhatABandShowsOfThePagesOwnSurfaces) {
    const GXMatrix places[] = {{1, 0, 0, 1, 0, 0},       {1, 0, 0, 1, -4, 17},      {1, 0, 0, 1, 0, 8.5f},
                               {2, 0, 0, 2.75f, 5, -40}, {1, 0, 0, -1, 0, 90},      {1, 0, 0, 1, 0, 150},
                               {1, 0, 0, 1, 0, -130},    {0.5f, 0, 0, 0.4f, 8, 30}, {0.8f, 0.6f, -0.6f, 0.8f, 60, 5},
                               {1, 0.25f, 0, 1, 0, 0},   {0, 1, 1, 0, 0, 0},        {1, 0, 0.5f, 1.5f, 0, 3}};
    const GXBitmapBrushOptions options[] = {{GXInterpolationNearest, GXExtendClamp, GXExtendClamp},
                                            {GXInterpolationLinear, GXExtendClamp, GXExtendClamp},
                                            {GXInterpolationAverage, GXExtendClamp, GXExtendClamp},
                                            {GXInterpolationLinear, GXExtendRepeat, GXExtendMirror}};
    Gxr::Recorder recorder;
    const Gxr::Calls calls(&recorder);
    constexpr uint32_t kPage = 128;
    const GXBitmapDesc desc{kPage, kPage, GXPixelFormatPBGRA32, 96, 96};
    Handle<GXBitmap> page;
    Handle<GXRenderTarget> target;
    Handle<GXBrush> color;
    OK(GXCreateBitmap(&desc, page.Out()));
    OK(calls.CreateRenderTargetBitmap(page.Get(), target.Out()));
    OK(calls.CreateBrushSolidARGB(0x60204080u, color.Out()));
    OK(calls.BeginPaint(target.Get()));
    OK(calls.Clear(target.Get(), 0xFFFFFFFFu));
    std::mt19937 random(5);
    for (const GXMatrix& place : places)
        for (const GXBitmapBrushOptions& option : options) {
            const Handle<GXBitmap> inner = DrawStripes(calls, 70, nullptr);
            Handle<GXBrush> innerBrush, outerBrush;
            OK(calls.CreateBrushBitmap(inner.Get(), 0.6f, &option, &places[random() % 12], innerBrush.Out()));
            const Handle<GXBitmap> outer = DrawStripes(calls, 90, innerBrush.Get());
            OK(calls.CreateBrushBitmap(outer.Get(), 0.4f, random() % 4 == 0 ? nullptr : &option, &place,
                                       outerBrush.Out()));
            const GXRect box{static_cast<float>(random() % 64), static_cast<float>(random() % 64), 120, 126};
            OK(calls.PushState(target.Get()));
            switch (random() % 3) {
            case 0:
                OK(calls.FillEllipse(target.Get(), &box, outerBrush.Get()));
                break;
            case 1:
                OK(calls.SetOpacityMask(target.Get(), GXMaskTypeLuminosity, outerBrush.Get()));
                OK(calls.FillRect(target.Get(), &box, color.Get()));
                break;
            default: {
                const GXLayerDesc layer{{0, 0, 0, 0}, 0.7f, 0, 0};
                OK(calls.SetShapeMask(target.Get(), GXMaskTypeInverseAlpha, outerBrush.Get()));
                OK(calls.BeginLayer(target.Get(), &layer));
                OK(calls.SetBlendMode(target.Get(), GXBlendModeDifference));
                OK(calls.FillEllipse(target.Get(), &box, innerBrush.Get()));
                OK(calls.EndLayer(target.Get()));
            }
            }
            OK(calls.PopState(target.Get()));
            calls.Forget(inner.Get());
            calls.Forget(outer.Get());
        }
    OK(calls.EndPaint(target.Get()));
    const Gxr::Recording recording(recorder.File());
    EXPECT_TRUE(Pixels(page.Get()) == Whole(recording, 1.0f));
    for (const float scale : {1.0f, 1.5f, 0.75f})
        ExpectSameInBands(recording, scale);
}

// Pens that reach far beside their path, at matrices that enlarge them: no stroke is left out of a band that shows it.
TEST(ThreadedRecording, DrawsStrokesThatReachIntoABand) {
    Gxr::Recorder recorder;
    const Gxr::Calls calls(&recorder);
    const GXBitmapDesc desc{160, 160, GXPixelFormatBGRX32, 96, 96};
    Handle<GXBitmap> page;
    Handle<GXRenderTarget> target;
    OK(GXCreateBitmap(&desc, page.Out()));
    OK(calls.CreateRenderTargetBitmap(page.Get(), target.Out()));
    OK(calls.BeginPaint(target.Get()));
    OK(calls.Clear(target.Get(), 0xFFFFFFFFu));
    std::mt19937 random(11);
    const auto number = [&](float low, float high) {
        return low + (high - low) * static_cast<float>(random() % 4096) / 4096;
    };
    for (int i = 0; i < 120; ++i) {
        Handle<GXGeometry> path;
        Handle<GXBrush> brush;
        OK(GXCreateGeometry(path.Out()));
        OK(calls.CreateBrushSolidARGB(0x40000000u + random() % 0x1000000u, brush.Out()));
        const GXPoint a{number(0, 160), number(0, 160)};
        OK(GXGeometryBeginFigure(path.Get(), &a));
        for (int k = 0; k < 3; ++k) {
            const GXPoint p{a.x + number(-20, 20), a.y + number(-4, 4)};
            OK(GXGeometryLineTo(path.Get(), &p));
        }
        OK(GXGeometryEndFigure(path.Get()));
        const GXMatrix matrix{1, number(-0.5f, 0.5f), number(-0.5f, 0.5f), number(0.2f, 3), 0, number(-80, 20)};
        const GXStrokeStyle style{static_cast<uint32_t>(random() % 3),
                                  static_cast<uint32_t>(random() % 3),
                                  number(1, 30),
                                  0,
                                  0,
                                  {5, 3},
                                  random() % 2 * 2};
        OK(calls.SetStrokeAdjustment(target.Get(), random() % 2));
        OK(calls.SetCTM(target.Get(), &matrix));
        OK(calls.StrokeGeometry(target.Get(), path.Get(), brush.Get(), number(0, 12),
                                random() % 4 == 0 ? nullptr : &style));
    }
    OK(calls.EndPaint(target.Get()));
    const Gxr::Recording recording(recorder.File());
    EXPECT_TRUE(Pixels(page.Get()) == Whole(recording, 1.0f));
    ExpectSameInBands(recording, 1.0f);
    ExpectSameInBands(recording, 3.0f);
}

// A page with its work in the uppermost eighth.
Gxr::Recording TopHeavyPage() {
    Gxr::Recorder recorder;
    const Gxr::Calls calls(&recorder);
    const GXBitmapDesc desc{64, 800, GXPixelFormatPBGRA32, 96, 96};
    Handle<GXBitmap> page;
    Handle<GXRenderTarget> target;
    Handle<GXBrush> brush;
    OK(GXCreateBitmap(&desc, page.Out()));
    OK(calls.CreateRenderTargetBitmap(page.Get(), target.Out()));
    OK(calls.CreateBrushSolidARGB(0x10304050u, brush.Out()));
    OK(calls.BeginPaint(target.Get()));
    OK(calls.Clear(target.Get(), 0xFFFFFFFFu));
    OK(calls.SetBlendMode(target.Get(), GXBlendModeScreen));
    const GXRect box{0, 0, 64, 100};
    for (int i = 0; i < 300; ++i)
        OK(calls.FillEllipse(target.Get(), &box, brush.Get()));
    OK(calls.EndPaint(target.Get()));
    return Gxr::Recording(recorder.File());
}

TEST(ThreadedRecording, EndsBandsWhereTheCostIsAndNotTheHeight) {
    const Gxr::Recording recording = TopHeavyPage();
    BandedPlayer player(recording, 2);
    const Handle<GXBitmap> bitmap = Gxr::NewPageBitmap(recording.Page());
    for (int time = 0; time < 2; ++time) {
        player.Play(bitmap.Get());
        const auto& bands = player.Bands();
        ExpectBandsCover(bands, 800);
        EXPECT_LT(bands[0].rows.bottom, 64) << "one band has most of the work";
        EXPECT_GT(bands.back().rows.bottom - bands.back().rows.top, 600) << "a band of its own for next to nothing";
    }
    EXPECT_TRUE(Pixels(bitmap.Get()) == Whole(recording, 1.0f));
}

// Rows that do not start at multiples of four are drawn through a copy of the whole page by the target.
TEST(ThreadedRecording, DrawsIntoMemoryThatStartsAnywhere) {
    const Gxr::Recording recording = TopHeavyPage();
    const std::vector<uint8_t> whole = Whole(recording, 1.0f);
    for (const uint32_t shift : {0u, 1u, 4u})
        for (const uint32_t stride : {256u, 260u, 269u}) {
            std::vector<uint8_t> memory(shift + size_t{stride} * 800, 0xAA);
            const GXExtBufLayout layout{64, 800, static_cast<float>(stride), 96, 96};
            BandedPlayer player(recording, 3);
            player.Play(memory.data() + shift, recording.Page().format, layout);
            for (size_t i = 0; i < memory.size(); ++i) {
                const size_t y = i < shift ? 0 : (i - shift) / stride, x = i < shift ? 256 : (i - shift) % stride;
                ASSERT_EQ(memory[i], x < 256 ? whole[y * 256 + x] : 0xAA) << shift << ", " << stride << ": " << i;
            }
        }
}

TEST(ThreadedRecording, ThrowsWhatAThreadFailedWith) {
    Gxr::ByteWriter out; // a page in a format that no target draws in
    for (const uint32_t v : {64u, 400u, uint32_t{GXPixelFormatGray8}})
        out.U32(v);
    out.F32(96);
    out.F32(96);
    out.U8(static_cast<uint8_t>(Gxr::ObjectKind::End));
    out.U8(static_cast<uint8_t>(Gxr::Op::BeginPaint));
    out.U8(static_cast<uint8_t>(Gxr::Op::EndPaint));
    out.U8(static_cast<uint8_t>(Gxr::Op::End));
    const Gxr::Recording recording = Gxr::Recording::FromBody(out.Get());
    const Handle<GXBitmap> bitmap = Gxr::NewPageBitmap(recording.Page());
    BandedPlayer player(recording, 4);
    for (int time = 0; time < 2; ++time)
        EXPECT_THROW(player.Play(bitmap.Get()), Gxr::Error);
    std::vector<uint8_t> memory(64);
    const GXExtBufLayout bad{4.5f, 4, 16, 96, 96};
    EXPECT_THROW(player.Play(memory.data(), GXPixelFormatPBGRA32, bad), Gxr::Error);
}

} // namespace
