// SPDX-License-Identifier: MIT
// Recordings by themselves: what is played is what was recorded, what is shared is stored once, and no file whatever
// brings the player down.
#include "Recording.h"
#include "Container.h"
#include "Scenario.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

namespace {

using namespace RecordingTests;

Handle<GXBitmap> Play(const Gxr::Recording& recording, float scale = 1.0f, int times = 1) {
    Handle<GXBitmap> bitmap = Gxr::NewPageBitmap(recording.Page(), scale);
    Handle<GXRenderTarget> target;
    EXPECT_EQ(GXCreateRenderTargetBitmap(bitmap.Get(), target.Out()), GXResult{GXResultSuccess});
    Gxr::Player player(recording);
    for (int i = 0; i < times; ++i)
        player.Play(target.Get(), scale);
    return bitmap;
}

TEST(Recording, PlaysWhatWasDrawn) {
    const std::vector<uint8_t> drawn = Pixels(DrawScenario(Gxr::Calls()).Get());
    Gxr::Recorder recorder;
    EXPECT_EQ(Pixels(DrawScenario(Gxr::Calls(&recorder)).Get()), drawn) << "recording changes what is drawn";
    const Gxr::Recording recording(recorder.File());
    EXPECT_EQ(recording.Page().width, kSide);
    EXPECT_EQ(recording.Page().dpiY, 72.0f);
    EXPECT_EQ(Pixels(Play(recording).Get()), drawn);
    EXPECT_EQ(Pixels(Play(recording, 1.0f, 3).Get()), drawn) << "a second time";
    EXPECT_EQ(RecordScenario(), recorder.File()) << "the same page gives the same file";
}

TEST(Recording, SharesEqualObjects) {
    const auto size = [](int copies, bool share) {
        Gxr::Recorder recorder;
        const Gxr::Calls calls(&recorder);
        const GXBitmapDesc desc{32, 32, GXPixelFormatPBGRA32, 96, 96};
        Handle<GXBitmap> bitmap;
        Handle<GXRenderTarget> target;
        GXCreateBitmap(&desc, bitmap.Out());
        calls.CreateRenderTargetBitmap(bitmap.Get(), target.Out());
        calls.BeginPaint(target.Get());
        std::mt19937 random(7);
        for (int i = 0; i < copies; ++i) {
            if (share)
                random.seed(7);
            Handle<GXGeometry> geometry;
            Handle<GXBrush> brush;
            GXCreateGeometry(geometry.Out());
            for (int k = 0; k < 100; ++k) {
                const GXPoint p{static_cast<float>(random() % 4096) / 128, static_cast<float>(random() % 4096) / 128};
                k == 0 ? GXGeometryBeginFigure(geometry.Get(), &p) : GXGeometryLineTo(geometry.Get(), &p);
            }
            GXGeometryEndFigureClose(geometry.Get());
            calls.CreateBrushSolidARGB(0xFF123456u, brush.Out());
            EXPECT_EQ(calls.FillGeometry(target.Get(), geometry.Get(), brush.Get()), GXResult{GXResultSuccess});
        }
        calls.EndPaint(target.Get());
        return recorder.File().size();
    };
    EXPECT_LT(size(50, true), size(1, true) + 100);
    EXPECT_GT(size(50, false), 30 * size(1, true));
}

// A page scaled by 2 and reduced again is the page itself, but for edges and samples.
TEST(Recording, PlaysAtAnyScaleAndPlace) {
    Gxr::Recorder recorder;
    const Gxr::Calls calls(&recorder);
    const GXBitmapDesc desc{40, 40, GXPixelFormatPBGRA32, 96, 96};
    Handle<GXBitmap> page, mask;
    Handle<GXRenderTarget> target, maskTarget;
    Handle<GXBrush> white, green, maskBrush;
    GXCreateBitmap(&desc, page.Out());
    GXCreateBitmap(&desc, mask.Out());
    calls.CreateRenderTargetBitmap(page.Get(), target.Out());
    calls.CreateRenderTargetBitmap(mask.Get(), maskTarget.Out());
    calls.CreateBrushSolidARGB(0xFFFFFFFFu, white.Out());
    calls.CreateBrushSolidARGB(0xFF00FF00u, green.Out());
    const GXBitmapBrushOptions nearest{GXInterpolationNearest, GXExtendClamp, GXExtendClamp};
    calls.CreateBrushBitmap(mask.Get(), 1, &nearest, nullptr, maskBrush.Out());
    const GXRect left{0, 0, 10, 40}, all{0, 0, 40, 40}, low{0, 20, 40, 40};
    const GXMatrix narrow{0.5f, 0, 0, 1, 0, 0};
    calls.BeginPaint(target.Get());
    calls.Clear(target.Get(), 0xFF000000u);
    calls.BeginPaint(maskTarget.Get());
    calls.Clear(maskTarget.Get(), 0);
    calls.FillRect(maskTarget.Get(), &left, white.Get());
    calls.EndPaint(maskTarget.Get());
    calls.PushState(target.Get());
    calls.SetOpacityMask(target.Get(), GXMaskTypeAlpha, maskBrush.Get());
    calls.FillRect(target.Get(), &all, green.Get()); // green where x < 10
    calls.PopState(target.Get());
    calls.SetCTM(target.Get(), &narrow);
    calls.FillRect(target.Get(), &low, white.Get()); // white where x < 20 and y >= 20
    calls.EndPaint(target.Get());

    const Gxr::Recording recording(recorder.File());
    const auto expected = [](double x, double y) {
        return x < 20 && y >= 20 ? 0xFFFFFFFFu : x < 10 ? 0xFF00FF00u : 0xFF000000u;
    };
    for (const float scale : {1.0f, 2.0f, 0.5f, 3.0f}) {
        const std::vector<uint8_t> pixels = Pixels(Play(recording, scale).Get());
        const auto side = static_cast<uint32_t>(40 * scale);
        ASSERT_EQ(pixels.size(), size_t{4} * side * side);
        for (uint32_t y = 0; y < side; ++y)
            for (uint32_t x = 0; x < side; ++x) {
                uint32_t pixel = 0;
                std::memcpy(&pixel, &pixels[4 * (size_t{y} * side + x)], 4);
                ASSERT_EQ(pixel, expected((x + 0.5) / scale, (y + 0.5) / scale)) << scale << ": " << x << ", " << y;
            }
    }
    // The matrix that the target has is the page's place on it.
    const GXBitmapDesc wide{60, 50, GXPixelFormatPBGRA32, 96, 96};
    const GXMatrix place{1, 0, 0, 1, 15, 10};
    Handle<GXBitmap> paper;
    Handle<GXRenderTarget> paperTarget;
    GXCreateBitmap(&wide, paper.Out());
    GXCreateRenderTargetBitmap(paper.Get(), paperTarget.Out());
    GXRenderTargetSetCTM(paperTarget.Get(), &place);
    Gxr::Player(recording).Play(paperTarget.Get());
    const std::vector<uint8_t> pixels = Pixels(paper.Get());
    for (uint32_t y = 10; y < 50; ++y)
        for (uint32_t x = 15; x < 55; ++x) {
            uint32_t pixel = 0;
            std::memcpy(&pixel, &pixels[4 * (size_t{y} * 60 + x)], 4);
            ASSERT_EQ(pixel, expected(x - 14.5, y - 9.5)) << x << ", " << y;
        }
    // On paper nothing is drawn beside, and what lay there before is gone.
    const Gxr::Paper part{0xFFFFFFFFu, 0xFF445566u, {20, 12, 58, 30}};
    for (int i = 0; i < 2; ++i) {
        GXRenderTargetSetCTM(paperTarget.Get(), &place);
        Gxr::Player(recording).Play(paperTarget.Get(), 1.0f, &part);
    }
    const std::vector<uint8_t> cut = Pixels(paper.Get());
    for (uint32_t y = 0; y < 50; ++y)
        for (uint32_t x = 0; x < 60; ++x) {
            uint32_t pixel = 0;
            std::memcpy(&pixel, &cut[4 * (size_t{y} * 60 + x)], 4);
            const bool inside = x >= 20 && x < 58 && y >= 12 && y < 30;
            ASSERT_EQ(pixel, inside ? expected(x - 14.5, y - 9.5) : part.around) << x << ", " << y;
        }
}

TEST(Recording, SaysWhatCannotBeRecorded) {
    Gxr::Recorder recorder;
    EXPECT_THROW(recorder.File(), Gxr::Error);
    const Gxr::Calls calls(&recorder);
    const GXBitmapDesc desc{8, 8, GXPixelFormatPBGRA32, 96, 96};
    Handle<GXBitmap> bitmap;
    Handle<GXRenderTarget> target;
    Handle<GXBrush> unseen;
    GXCreateBitmap(&desc, bitmap.Out());
    GXCreateBrushSolidARGB(0xFF000000u, unseen.Out());
    calls.CreateRenderTargetBitmap(bitmap.Get(), target.Out());
    calls.BeginPaint(target.Get());
    EXPECT_NO_THROW(recorder.File());
    const GXRect all{0, 0, 8, 8};
    EXPECT_EQ(calls.FillRect(target.Get(), &all, unseen.Get()), GXResult{GXResultSuccess});
    EXPECT_THROW(recorder.File(), Gxr::Error);
}

// Files

std::string Refusal(const Gxr::Bytes& file) {
    try {
        const Gxr::Recording recording(file);
    } catch (const Gxr::Error& error) {
        return error.what();
    }
    return {};
}

TEST(RecordingFile, RefusesEveryCutAndEveryFlippedBit) {
    const Gxr::Bytes file = RecordScenario();
    ASSERT_EQ(Refusal(file), "");
    for (size_t length = 0; length < file.size(); ++length) {
        const std::string reason = Refusal(Gxr::Bytes(file.begin(), file.begin() + static_cast<ptrdiff_t>(length)));
        ASSERT_NE(reason, "") << "cut at " << length;
        ASSERT_EQ(reason.find('\n'), std::string::npos);
    }
    Gxr::Bytes longer = file;
    longer.push_back(0);
    EXPECT_NE(Refusal(longer), "");
    for (size_t bit = 0; bit < 8 * file.size(); bit += bit < 512 ? 1 : 7) {
        Gxr::Bytes flipped = file;
        flipped[bit / 8] ^= static_cast<uint8_t>(1 << bit % 8);
        ASSERT_NE(Refusal(flipped), "") << "bit " << bit;
    }
}

// With the checksum made right again only the checks of every single number stand in the way. What they let pass is
// played, and may fail, but no more than that.
TEST(RecordingFile, SurvivesDamageUnderARightChecksum) {
    const Gxr::Bytes file = RecordScenario();
    const Gxr::Bytes body = Gxr::Unpack(file.data(), file.size());
    for (size_t length = 0; length < body.size(); ++length)
        ASSERT_NE(Refusal(Gxr::Pack(Gxr::Bytes(body.begin(), body.begin() + static_cast<ptrdiff_t>(length)))), "")
            << "cut at " << length;
    std::mt19937 random(20);
    int played = 0, refused = 0, failed = 0;
    const auto attempt = [&](const Gxr::Bytes& damaged) {
        try {
            const Gxr::Recording recording(Gxr::Pack(damaged));
            // A page of another size is not what this is about, and would take its time.
            if (recording.Page().width > 512 || recording.Page().height > 512)
                return;
            try {
                Play(recording);
                ++played;
            } catch (const Gxr::Error&) {
                ++failed;
            }
        } catch (const Gxr::Error&) {
            ++refused;
        }
    };
    for (int i = 0; i < 1500; ++i) {
        Gxr::Bytes damaged = body;
        for (uint32_t flips = 1 + random() % 3; flips > 0; --flips)
            damaged[random() % damaged.size()] ^= static_cast<uint8_t>(1u << random() % 8);
        attempt(damaged);
    }
    for (int i = 0; i < 500; ++i) {
        Gxr::Bytes damaged = body;
        damaged[random() % damaged.size()] = static_cast<uint8_t>(random() % 3 == 0 ? 0xFF : random());
        attempt(damaged);
    }
    EXPECT_GT(played, 100);
    EXPECT_GT(refused, 100);
}

// What a small file may not ask for.
TEST(RecordingFile, RefusesWhatItsSizeDoesNotPayFor) {
    const auto page = [](uint32_t width, uint32_t height) {
        Gxr::ByteWriter out;
        out.U32(width);
        out.U32(height);
        out.U32(GXPixelFormatPBGRA32);
        out.F32(96);
        out.F32(96);
        return out;
    };
    const auto op = [](Gxr::ByteWriter& out, Gxr::Op what) { out.U8(static_cast<uint8_t>(what)); };
    const auto file = [&](Gxr::ByteWriter out) {
        op(out, Gxr::Op::End);
        return Gxr::Pack(out.Get());
    };
    Gxr::ByteWriter good = page(10, 10);
    good.U8(0);
    EXPECT_EQ(Refusal(file(good)), "");
    for (const auto& [width, height] : {std::pair{65501u, 1u}, {0u, 4u}, {60000u, 60000u}}) {
        Gxr::ByteWriter out = page(width, height);
        out.U8(0);
        EXPECT_NE(Refusal(file(out)), "") << width;
    }

    Gxr::ByteWriter pixels = page(10, 10); // a bitmap without its pixels
    pixels.U8(static_cast<uint8_t>(Gxr::ObjectKind::Bitmap));
    for (const uint32_t v : {0x7FFFFFFFu, 0x7FFFFFFFu, uint32_t{GXPixelFormatPBGRA32}, 0u, 0u})
        pixels.U32(v);
    pixels.Count(0);
    EXPECT_NE(Refusal(file(pixels)), "");

    for (const auto kind : {Gxr::ObjectKind::Geometry, Gxr::ObjectKind::Palette, Gxr::ObjectKind::MeshGradient,
                            Gxr::ObjectKind::LinearGradient, Gxr::ObjectKind::FontFace}) {
        Gxr::ByteWriter out = page(10, 10); // a number of things that are not there
        out.U8(static_cast<uint8_t>(kind));
        if (kind == Gxr::ObjectKind::Geometry)
            out.U32(0);
        out.Count(uint64_t{1} << 60);
        EXPECT_NE(Refusal(file(out)), "");
    }

    const auto many = [&](Gxr::Op what, int count, auto&& arguments) {
        Gxr::ByteWriter out = good;
        op(out, Gxr::Op::BeginPaint);
        for (int i = 0; i < count; ++i) {
            op(out, what);
            arguments(out);
        }
        return file(out);
    };
    const auto layer = [](Gxr::ByteWriter& out) {
        const GXLayerDesc desc{};
        Gxr::PutOptional(out, &desc);
    };
    EXPECT_EQ(Refusal(many(Gxr::Op::BeginLayer, 64, layer)), "");
    EXPECT_NE(Refusal(many(Gxr::Op::BeginLayer, 65, layer)), "");
    EXPECT_NE(Refusal(many(Gxr::Op::PushState, 1025, [](Gxr::ByteWriter&) {})), "");
    EXPECT_NE(Refusal(many(Gxr::Op::PopState, 1, [](Gxr::ByteWriter&) {})), "");
    EXPECT_NE(Refusal(many(Gxr::Op::EndLayer, 1, [](Gxr::ByteWriter&) {})), "");
    EXPECT_NE(Refusal(many(Gxr::Op::BeginPaint, 1, [](Gxr::ByteWriter&) {})), "");
    const auto surface = [&](Gxr::ByteWriter& out) { out.Append(page(10, 10)); };
    EXPECT_EQ(Refusal(many(Gxr::Op::NewSurface, 16, surface)), "");
    EXPECT_NE(Refusal(many(Gxr::Op::NewSurface, 17, surface)), "");
    const auto number = [](Gxr::ByteWriter& out) { out.Count(1); };
    for (const auto what : {Gxr::Op::Select, Gxr::Op::DropSurface, Gxr::Op::SurfaceBrush, Gxr::Op::FirstTargetCall})
        EXPECT_NE(Refusal(many(what, 1, number)), "");

    // A body that unpacks to more than it says, and to less.
    Gxr::Bytes lying = file(good);
    for (const int change : {-1, 1}) {
        Gxr::Bytes copy = lying;
        copy[20] = static_cast<uint8_t>(copy[20] + change);
        EXPECT_NE(Refusal(copy), "");
    }
    Gxr::Bytes newer = lying;
    newer[8] = 9;
    EXPECT_NE(Refusal(newer).find("version 9"), std::string::npos);
}

// A host that has little memory: bitmaps beyond the limit make the page one that cannot be recorded; equal ones count once.
TEST(RecorderLimit, CountsEachBitmapOnce) {
    const GXBitmapDesc desc{20, 20, GXPixelFormatPBGRA32, 96, 96};
    for (const uint64_t limit : {uint64_t{1599}, uint64_t{1600}}) {
        Gxr::Recorder recorder(limit);
        const Gxr::Calls calls(&recorder);
        Handle<GXBitmap> page, picture;
        Handle<GXRenderTarget> target;
        ASSERT_EQ(GXCreateBitmap(&desc, page.Out()), GXResult{GXResultSuccess});
        ASSERT_EQ(GXCreateBitmap(&desc, picture.Out()), GXResult{GXResultSuccess});
        ASSERT_EQ(GXBitmapColorFill(picture.Get(), nullptr, 0xFF102030), GXResult{GXResultSuccess});
        ASSERT_EQ(calls.CreateRenderTargetBitmap(page.Get(), target.Out()), GXResult{GXResultSuccess});
        ASSERT_EQ(calls.BeginPaint(target.Get()), GXResult{GXResultSuccess});
        for (int i = 0; i < 3; ++i)
            ASSERT_EQ(calls.DrawBitmap(target.Get(), picture.Get(), nullptr, 1.0f, GXInterpolationNearest),
                      GXResult{GXResultSuccess});
        ASSERT_EQ(calls.EndPaint(target.Get()), GXResult{GXResultSuccess});
        if (limit < 1600)
            EXPECT_THROW(recorder.Body(), Gxr::Error);
        else
            EXPECT_NO_THROW(Gxr::Recording::FromBody(recorder.Body()));
    }
}

} // namespace
