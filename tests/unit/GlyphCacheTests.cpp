// SPDX-License-Identifier: MIT
// Text fills: where a glyph lands, that kept coverage is the rasterizer's own, and that nothing depends on what the
// cache holds.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "Bitmaps/Bitmap.h"
#include "Coverage/GlyphCache.h"
#include "Exception.h"
#include "Geometry/DeviceFeed.h"
#include "Geometry/Geometry.h"
#include "GridSink.h"
#include "Paint/Brush.h"
#include "Paint/Gradient.h"
#include "Scan/SampleGrid.h"
#include "Target/RenderTarget.h"

namespace Graphics {
namespace {

using Shapes = std::vector<std::shared_ptr<Geometry>>;

class Random {
public:
    explicit Random(uint32_t seed) : m_engine(seed) {}
    float Real(float low, float high) { return std::uniform_real_distribution<float>(low, high)(m_engine); }
    int Whole(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_engine); }
    bool OneIn(int n) { return Whole(1, n) == 1; }
    Point In(float size) { return {Real(-0.3F * size, size), Real(-size, 0.3F * size)}; }

private:
    std::mt19937 m_engine;
};

/// One to three crossing figures of lines and curves, about `size` wide.
std::shared_ptr<Geometry> RandomOutline(Random& random, float size) {
    auto g = std::make_shared<Geometry>();
    g->SetFillRule(random.OneIn(3) ? GXFillRuleEvenOdd : GXFillRuleNonZero);
    for (int figure = random.Whole(1, 3); figure > 0; --figure) {
        g->BeginFigure(random.In(size));
        for (int i = random.Whole(2, 6); i > 0; --i) {
            if (random.OneIn(2)) {
                g->LineTo(random.In(size));
            } else {
                g->CubicTo(random.In(size), random.In(size), random.In(size));
            }
        }
        g->EndFigureClose();
    }
    return g;
}

TEST(SampleGrid, CountsWhatTheRasterizerCoversAtEveryPhase) {
    Random random(1);
    Rasterizer rasterizer;
    SampleGrid grid;
    for (int round = 0; round < 60; ++round) {
        const int32_t width = random.Whole(1, 40);
        const int32_t height = random.Whole(1, 40);
        const auto outline = RandomOutline(random, static_cast<float>(random.Whole(2, 30)));
        const Shape& shape = *outline;
        const Matrix place{1.0F, 0.0F, 0.0F, 1.0F, random.Real(0.0F, 12.0F), random.Real(0.0F, 30.0F)};
        const Rect clip{-60.0F, -60.0F, 100.0F, 100.0F};
        rasterizer.Begin(clip, {0, 0, width, height}, false);
        FeedFill(shape, place, rasterizer);
        rasterizer.FinishSamples(grid);
        const SampleView& samples = grid.View();
        for (int phase = 0; phase < 64; ++phase) {
            const int32_t right = phase & 7;
            const int32_t down = phase >> 3;
            // What lies outside of the grid is not in it, so the plane shows only what the grid had room for.
            const int32_t w = samples.WidthAt(right);
            const int32_t h = samples.HeightAt(down);
            GridSink expected({0, 0, w, h});
            rasterizer.Begin(clip, {0, 0, w, h}, false);
            FeedFill(shape, place, rasterizer);
            rasterizer.Move(right, down);
            rasterizer.Finish(expected);
            const size_t stride = samples.CoverageStride(right);
            HeapArray<uint8_t> coverage;
            coverage.resize(stride * static_cast<size_t>(h));
            samples.Coverage(right, down, coverage.data());
            // The first and last pixels may have lost samples that moved in from outside.
            for (int32_t y = down != 0 ? 1 : 0; y < height; ++y) {
                for (int32_t x = right != 0 ? 1 : 0; x < width; ++x) {
                    ASSERT_EQ(coverage[static_cast<size_t>(y) * stride + static_cast<size_t>(x)],
                              expected.grid.At(x, y))
                        << "round " << round << " phase " << phase << " at " << x << "," << y;
                }
            }
        }
    }
}

/// A small page that is painted from a list of placed glyphs.
class Page {
public:
    static constexpr uint32_t kSide = 120;

    Page() {
        m_bitmap = Bitmap::Create({kSide, kSide, GXPixelFormatPBGRA32, 96, 96});
        m_bitmap->ColorFill(nullptr, {0.9F, 0.8F, 0.7F, 0.6F});
        m_target = RenderTarget::ForBitmap(m_bitmap);
        m_target->BeginPaint();
    }
    [[nodiscard]] RenderTarget& Target() { return *m_target; }
    void Fill(const Geometry& glyph, const Matrix& m, const Brush& brush, bool text = true) {
        Target().SetTransform(m);
        Target().Fill(text ? Path::Outline(glyph) : Path(glyph), brush);
    }
    /// What a cold start finds.
    void Forget() {
        m_target->EndPaint();
        GlyphCache::DropWaiting();
        m_target->BeginPaint();
    }
    [[nodiscard]] std::vector<uint32_t> Pixels() const {
        std::vector<uint32_t> pixels(kSide * kSide);
        m_bitmap->CopyToMemory(nullptr, {pixels.data(), kSide * 4, kSide * 4});
        return pixels;
    }

private:
    std::shared_ptr<Bitmap> m_bitmap;
    std::shared_ptr<RenderTarget> m_target;
};

const SolidBrush kInk({0.1F, 0.2F, 0.3F, 0.8F});

std::shared_ptr<const Brush> GradientInk() {
    auto linear = std::make_shared<LinearGradient>();
    const GXGradientStop stops[2] = {{0.0F, 0xFFFF0000}, {1.0F, 0x4000FF00}};
    linear->stops.Add(stops, 2);
    linear->end = {40, 20};
    return std::make_shared<GradientBrush>(linear);
}

Matrix RandomPlace(Random& random) {
    const float angle = random.OneIn(2) ? 0.0F : random.Real(0.0F, 6.28F);
    const float scale = random.OneIn(2) ? 1.0F : random.Real(0.3F, 1.6F);
    const float c = std::cos(angle) * scale;
    const float s = std::sin(angle) * scale;
    return {c, s, -s, c * random.Real(0.9F, 1.1F), random.Real(-20.0F, 140.0F), random.Real(-20.0F, 140.0F)};
}

TEST(GlyphCache, WarmAndColdDrawTheSameBytes) {
    Random random(2);
    Shapes glyphs;
    for (int i = 0; i < 12; ++i) {
        glyphs.push_back(RandomOutline(random, static_cast<float>(random.Whole(2, 36))));
    }
    const auto gradient = GradientInk();
    const auto clip = RandomOutline(random, 100.0F);
    for (const int form : {0, 1, 2, 3, 4, 5}) {
        Page warm;
        Page cold;
        for (Page* page : {&warm, &cold}) {
            RenderTarget& t = page->Target();
            t.SetTransform({1, 0, 0, 1, 10, 110});
            if (form == 1) {
                t.Clip(*clip);
            } else if (form == 2) {
                t.SetBlendMode(GXBlendModeMultiply);
            } else if (form == 3) {
                t.SetShapeMask(0, gradient);
            } else if (form == 4) {
                t.SetOpacityMask(2, gradient);
            } else if (form == 5) {
                t.BeginLayer({{0, 0, 0, 0}, 0.5F, 1, 0});
            }
        }
        for (int i = 0; i < 150; ++i) {
            const Geometry& glyph = *glyphs[static_cast<size_t>(random.Whole(0, 11))];
            Matrix place = RandomPlace(random);
            const Brush& brush = random.OneIn(4) ? *gradient : static_cast<const Brush&>(kInk);
            // Again a little further: more phases of one outline, counted from its samples in the end. A copy is a
            // glyph that nobody has seen.
            for (int again = 0; again < 4; ++again, place.m20 += 0.125F, place.m21 += 0.25F) {
                warm.Fill(glyph, place, brush);
                cold.Fill(*glyph.Copy(), place, brush);
            }
        }
        for (Page* page : {&warm, &cold}) {
            if (form == 5) {
                page->Target().EndLayer();
            }
        }
        ASSERT_EQ(warm.Pixels(), cold.Pixels()) << "form " << form;
    }
}

TEST(GlyphCache, AGlyphIsTheFillAtTheNearestEighthOfAPixel) {
    Random random(3);
    for (int round = 0; round < 200; ++round) {
        // Points on 1/16 pixel: no rounding hides what is compared.
        const auto glyph = std::make_shared<Geometry>();
        for (int i = 0; i < 7; ++i) {
            const Point p{static_cast<float>(random.Whole(0, 500)) / 16.0F,
                          static_cast<float>(random.Whole(0, 500)) / 16.0F};
            i == 0 ? glyph->BeginFigure(p) : glyph->LineTo(p);
        }
        glyph->EndFigureClose();
        const Matrix place{1, 0, 0, 1, random.Real(1.0F, 80.0F), random.Real(1.0F, 80.0F)};
        const Matrix rounded{1, 0, 0, 1, std::floor(place.m20 * 8 + 0.5F) / 8, std::floor(place.m21 * 8 + 0.5F) / 8};
        Page text;
        Page path;
        text.Fill(*glyph, place, kInk);
        path.Target().SetStrokeAdjustment(false);
        path.Fill(*glyph, rounded, kInk, false);
        ASSERT_EQ(text.Pixels(), path.Pixels()) << "round " << round;
    }
}

TEST(GlyphCache, LargeGlyphsAndFarPlacesAreOrdinaryFills) {
    Random random(4);
    const auto large = RandomOutline(random, 90.0F);
    const auto small = RandomOutline(random, 20.0F);
    const auto compare = [](const Geometry& glyph, const Matrix& place) {
        Page text;
        Page path;
        text.Fill(glyph, place, kInk);
        path.Target().SetStrokeAdjustment(false);
        path.Fill(glyph, place, kInk, false);
        EXPECT_EQ(text.Pixels(), path.Pixels());
    };
    compare(*large, {1, 0, 0, 1, 20.3F, 95.7F});
    compare(*small, {5, 1, 0, 4, 20.3F, 95.7F});
    for (const float bad : {NAN, INFINITY, -INFINITY, 3.0e9F, -3.0e9F}) {
        compare(*small, {1, 0, 0, 1, bad, 50});
        compare(*small, {1, 0, 0, 1, 50, bad});
        compare(*small, {bad, 0, 0, 1, 50, 50});
        const auto broken = std::make_shared<Geometry>();
        broken->BeginFigure({1, 1});
        broken->LineTo({bad, 5});
        broken->LineTo({9, 20});
        broken->EndFigureClose();
        compare(*broken, {1, 0, 0, 1, 50, 50});
    }
    // Half a billion eighths away nothing is seen, and nothing overflows.
    compare(*small, {1, 0, 0, 1, 1.0e6F, -1.0e6F});
}

TEST(GlyphCache, AChangedGeometryIsDrawnAsItIsNow) {
    const auto square = [](Geometry& g, float at) {
        for (const Point p : {Point{at, at}, Point{at + 8, at}, Point{at + 8, at + 8}, Point{at, at + 8}}) {
            p.x == at&& p.y == at ? g.BeginFigure(p) : g.LineTo(p);
        }
        g.EndFigureClose();
    };
    Page page;
    const auto centre = [&](uint32_t at) { return page.Pixels()[at * Page::kSide + at]; };
    Geometry glyph;
    square(glyph, 10);
    const uint32_t bare = centre(34);
    page.Fill(glyph, kIdentity, kInk);
    page.Fill(glyph, kIdentity, kInk);
    EXPECT_EQ(centre(34), bare);
    square(glyph, 30); // one more figure
    page.Fill(glyph, kIdentity, kInk);
    EXPECT_NE(centre(34), bare);
    square(glyph, 32); // overlaps: even-odd leaves it out
    const uint32_t inked = centre(34);
    glyph.SetFillRule(GXFillRuleEvenOdd);
    page.Fill(glyph, kIdentity, kInk);
    EXPECT_EQ(centre(34), inked);
    glyph.SetFillRule(GXFillRuleNonZero);
    page.Fill(glyph, kIdentity, kInk);
    EXPECT_NE(centre(34), inked);
}

TEST(GlyphCache, AnAddressUsedAgainIsAnotherGlyph) {
    Random random(5);
    Page warm;
    Page cold;
    for (int i = 0; i < 200; ++i) { // the allocator gives the same block again
        const auto glyph = RandomOutline(random, 20.0F);
        const Matrix place{1, 0, 0, 1, 50, 50};
        warm.Fill(*glyph, place, kInk);
        cold.Forget();
        cold.Fill(*glyph, place, kInk);
        ASSERT_EQ(warm.Pixels(), cold.Pixels()) << "glyph " << i;
    }
}

TEST(GlyphCache, MemoryIsBoundedAndEvictedGlyphsComeBackTheSame) {
    Random random(6);
    GlyphCache cache;
    Rasterizer rasterizer;
    Shapes glyphs;
    std::vector<std::vector<uint8_t>> first;
    const auto bytes = [&](const Geometry& glyph, int phase) {
        GlyphCoverage found;
        EXPECT_TRUE(cache.Find(glyph, kIdentity, {phase & 7, phase >> 3}, rasterizer, found));
        std::vector<uint8_t> out;
        for (int32_t y = 0; y < found.height; ++y) {
            const uint8_t* row = found.coverage + static_cast<size_t>(y) * found.strideBytes;
            out.insert(out.end(), row, row + found.width);
        }
        return out;
    };
    for (int i = 0; i < 600; ++i) {
        glyphs.push_back(RandomOutline(random, 40.0F));
    }
    size_t most = 0;
    for (int round = 0; round < 2; ++round) {
        for (int phase = 0; phase < 5; ++phase) {
            for (size_t i = 0; i < glyphs.size(); ++i) {
                const auto now = bytes(*glyphs[i], phase * 9 % 64);
                const size_t at = static_cast<size_t>(phase) * glyphs.size() + i;
                if (round == 0) {
                    first.push_back(now);
                }
                ASSERT_EQ(now, first[at]) << "glyph " << i << " phase " << phase;
                most = std::max(most, cache.BytesInUse());
                ASSERT_LE(cache.BytesInUse(), GlyphCache::kMaxBytes);
            }
        }
    }
    EXPECT_GT(most, GlyphCache::kMaxBytes / 2); // it was full
    // What is asked for all the time stays, whatever else comes and goes.
    const auto steady = RandomOutline(random, 30.0F);
    GlyphCoverage found;
    EXPECT_TRUE(cache.Find(*steady, kIdentity, {3, 4}, rasterizer, found));
    const int64_t before = ProcessHeap::FailAfter(-1);
    for (int i = 0; i < 1000; ++i) {
        static_cast<void>(bytes(*glyphs[static_cast<size_t>(i) % glyphs.size()], i % 64));
        EXPECT_TRUE(cache.Find(*steady, kIdentity, {3, 4}, rasterizer, found));
    }
    EXPECT_EQ(ProcessHeap::FailAfter(-1), before) << "a full cache asks for no more memory";
}

TEST(GlyphCache, ThreadsShareGlyphsWithoutSeeingEachOther) {
    Random random(7);
    Shapes glyphs;
    for (int i = 0; i < 20; ++i) {
        glyphs.push_back(RandomOutline(random, 24.0F));
    }
    const auto draw = [&glyphs](std::vector<uint32_t>& out) {
        for (int page = 0; page < 20; ++page) { // caches change hands between pages
            Page p;
            Random places(8);
            for (int i = 0; i < 100; ++i) {
                p.Fill(*glyphs[static_cast<size_t>(places.Whole(0, 19))], RandomPlace(places), kInk);
            }
            out = p.Pixels();
        }
    };
    std::vector<uint32_t> expected;
    draw(expected);
    for (const auto& glyph : glyphs) {
        glyph->SetFillRule(glyph->FillRule() ^ 1U);
        glyph->SetFillRule(glyph->FillRule() ^ 1U); // new identities, asked for by all threads at once
    }
    std::vector<std::vector<uint32_t>> results(4);
    std::vector<std::thread> threads;
    for (auto& result : results) {
        threads.emplace_back([&] { draw(result); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (const auto& result : results) {
        EXPECT_EQ(result, expected);
    }
}

TEST(GlyphCache, WithoutMemoryForEntriesItStillDraws) {
    Random random(9);
    const auto glyph = RandomOutline(random, 30.0F);
    GlyphCache reference;
    Rasterizer rasterizer;
    GlyphCoverage found;
    bool drawn = false;
    // Warm scratch memory, so that only the cache's own allocations are left to refuse.
    GlyphCache cache;
    for (int phase = 0; phase < 8; ++phase) {
        ASSERT_TRUE(cache.Find(*glyph, kIdentity, {phase, 0}, rasterizer, found));
        cache.Clear();
    }
    for (int64_t n = 0; n < 6; ++n) {
        for (int phase = 0; phase < 8; ++phase) {
            GlyphCoverage expected;
            ASSERT_TRUE(reference.Find(*glyph, kIdentity, {phase, 0}, rasterizer, expected));
            ProcessHeap::FailAfter(n);
            try {
                ASSERT_TRUE(cache.Find(*glyph, kIdentity, {phase, 0}, rasterizer, found));
                drawn = true;
                for (int32_t y = 0; y < expected.height; ++y) {
                    for (int32_t x = 0; x < expected.width; ++x) {
                        const auto row = static_cast<size_t>(y);
                        ASSERT_EQ(found.coverage[row * found.strideBytes + static_cast<size_t>(x)],
                                  expected.coverage[row * expected.strideBytes + static_cast<size_t>(x)]);
                    }
                }
            } catch (const Exception& e) {
                EXPECT_STREQ(e.what(), "Not enough memory");
            }
            ProcessHeap::FailAfter(-1);
        }
        cache.Clear();
    }
    EXPECT_TRUE(drawn);
}

} // namespace
} // namespace Graphics
