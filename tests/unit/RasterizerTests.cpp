// SPDX-License-Identifier: MIT
// The rasterizer against a plain scan-line algorithm: every pixel of thousands of random shapes, on every instruction
// set.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include "Geometry/CurveFlattener.h"
#include "KernelSets.h"
#include "Pixels/PixelMath.h"
#include "PlainCoverage.h"
#include "Scan/Rasterizer.h"
#include "Scan/SnapRectangle.h"

namespace Graphics {
namespace {

void Feed(Rasterizer& r, const Loops& loops, bool close = true) {
    for (const Loop& loop : loops) {
        r.BeginFigure(loop[0]);
        for (size_t i = 1; i < loop.size(); ++i) {
            r.LineTo(loop[i]);
        }
        close ? r.EndFigureClose() : r.EndFigure();
    }
}

Loop Box(float l, float t, float r, float b) { return {{l, t}, {r, t}, {r, b}, {l, b}}; }

class RasterizerTest : public testing::Test {
protected:
    /// All sets and the sorting scanner give the plain counts.
    void Check(const Loops& loops, const Rect& clip, const IntRect& visible, bool evenOdd, const std::string& what) {
        Grid expected = PlainCoverage(loops, clip, visible, evenOdd);
        for (size_t set = 0; set < m_sets.size(); ++set) {
            GridSink sink(visible);
            m_rasterizer.UseKernels(*m_sets[set].kernels);
            m_rasterizer.Begin(clip, visible, false);
            m_rasterizer.SetFillRule(evenOdd ? 1 : 0);
            Feed(m_rasterizer, loops);
            m_rasterizer.Finish(sink);
            ASSERT_TRUE(sink.rectangles.empty());
            Compare(expected, sink.grid, what + ", set " + std::to_string(set));
            CheckPainted(expected, loops, clip, visible, evenOdd, what + ", painted, set " + std::to_string(set));
        }
        EdgeBuilder builder;
        builder.Begin(clip);
        for (const Loop& loop : loops) {
            for (const Point& p : loop) {
                builder.Add(ToVertex(p));
            }
            builder.CloseFigure();
        }
        const FillShape shape = builder.Measure(!evenOdd);
        HeapArray<Edge> edges;
        builder.Build(edges, builder.ClipFirst(), builder.ClipLast());
        GridSink sink(visible);
        if (!edges.empty()) {
            EdgeScanner().Scan(edges, evenOdd, false, shape.first, shape.last, visible, sink);
        }
        Compare(expected, sink.grid, what + ", sorting");
    }

    /// One colour over any pixels: each row is either painted, by the formula of Normal, or sent.
    void CheckPainted(Grid& expected, const Loops& loops, const Rect& clip, const IntRect& visible, bool evenOdd,
                      const std::string& what) {
        constexpr uint32_t kColors[] = {0xFF8040C0U, 0x80402060U, 0x01010001U, 0xFFFFFFFFU};
        constexpr uint32_t kPixels[] = {0xFF204060U, 0x00FFFFFFU, 0U, 0x7F112233U, 0xFFFFFFFFU};
        const uint32_t color = kColors[m_painted++ % std::size(kColors)];
        PaintedSink sink(visible, color);
        for (size_t i = 0; i < sink.pixels.size(); ++i) {
            sink.pixels[i] = kPixels[i % std::size(kPixels)];
        }
        sink.ahead = m_painted % 3 == 0 ? 64 : 0;
        const std::vector<uint32_t> before = sink.pixels;
        m_rasterizer.Begin(clip, visible, false);
        m_rasterizer.SetFillRule(evenOdd ? 1 : 0);
        Feed(m_rasterizer, loops);
        m_rasterizer.Finish(sink);
        for (int y = visible.top; y < visible.bottom; ++y) {
            for (int x = visible.left; x < visible.right + static_cast<int>(PaintedSink::kGuard); ++x) {
                const size_t at = sink.IndexOf(x, y);
                const bool paints = x < visible.right && sink.grid.At(x, y) == 0;
                const int coverage = paints ? expected.At(x, y) : 0;
                const uint32_t scaled = ScalePixel(color, static_cast<uint32_t>(coverage) + 1U);
                const uint32_t d = before[at];
                const uint32_t over = d >> 24 == 0 ? scaled : ScalePixel(d, 256U - (scaled >> 24)) + scaled;
                ASSERT_EQ(sink.pixels[at], coverage == 0 ? d : over) << what << " at " << x << ", " << y;
                if (!paints && x < visible.right) {
                    ASSERT_EQ(sink.grid.At(x, y), expected.At(x, y)) << what << " at " << x << ", " << y;
                }
            }
        }
    }

    static void Compare(Grid& expected, Grid& actual, const std::string& what) {
        for (int y = expected.area.top; y < expected.area.bottom; ++y) {
            for (int x = expected.area.left; x < expected.area.right; ++x) {
                ASSERT_EQ(expected.At(x, y), actual.At(x, y)) << what << " at " << x << ", " << y;
            }
        }
    }

    std::vector<NamedKernels<BandKernels>> m_sets = EveryKernelSet<BandKernels>();
    Rasterizer m_rasterizer;
    size_t m_painted = 0; // shapes so far
};

TEST_F(RasterizerTest, RandomShapesGiveThePlainCounts) {
    std::mt19937 random(20240611);
    const auto number = [&](float low, float high) { return std::uniform_real_distribution<float>(low, high)(random); };
    const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<uint32_t>(n)); };
    for (int round = 0; round < 4000; ++round) {
        const int width = 1 + pick(round % 50 == 0 ? 700 : 90);
        const int height = 1 + pick(round % 50 == 1 ? 300 : 60);
        Rect clip{0, 0, static_cast<float>(width), static_cast<float>(height)};
        IntRect visible{0, 0, width, height};
        if (pick(4) == 0) { // a part is visible
            visible = {pick(width), pick(height), 0, 0};
            visible.right = visible.left + 1 + pick(width - visible.left);
            visible.bottom = visible.top + 1 + pick(height - visible.top);
        }
        if (pick(6) == 0) {
            clip = {clip.left - 3.3F, 2.3F, clip.right - 0.4F, clip.bottom - 1.7F};
        }
        // The extent of the shape: tiny to far outside.
        static constexpr float kReach[] = {0.02F, 1, 5, 30, 100, 3000, 32000};
        const float reach = kReach[pick(7)];
        const float cx = number(-0.3F, 1.3F) * static_cast<float>(width);
        const float cy = number(-0.3F, 1.3F) * static_cast<float>(height);
        const int kind = pick(7);
        Loops loops;
        const int figures = 1 + pick(kind == 1 ? 40 : 4);
        for (int f = 0; f < figures; ++f) {
            Loop loop;
            const int points = 1 + pick(kind == 2 ? 60 : 8);
            for (int i = 0; i < points; ++i) {
                Point p{cx + number(-reach, reach), cy + number(-reach, reach)};
                if (kind == 3) { // on whole and half pixels: shared vertices, upright and level sides
                    p = {std::floor(p.x * 2) / 2, std::floor(p.y * 2) / 2};
                } else if (kind == 4 && i > 0 && pick(2) == 0) { // upright sides
                    p.x = loop.back().x;
                } else if (kind == 5) { // a chain of small steps
                    p = i == 0 ? p : Point{loop.back().x + number(-3, 3), loop.back().y + number(-3, 3)};
                } else if (kind == 6 && i > 0) { // steep or flat
                    p = {loop.back().x + number(-1, 1) * (pick(2) ? reach : 0.5F),
                         loop.back().y + number(-1, 1) * (pick(2) ? reach : 0.5F)};
                }
                p = {std::clamp(p.x, -32535.0F, 32535.0F), std::clamp(p.y, -32535.0F, 32535.0F)};
                loop.push_back(p);
            }
            loops.push_back(loop);
            if (pick(5) == 0) {
                loops.push_back(loop);
            }
        }
        Check(loops, clip, visible, pick(2) == 0, "round " + std::to_string(round));
        if (HasFatalFailure()) {
            return;
        }
    }
}

/// Wide figures whose rows a few to many edges cross: windings are resolved by sorting, until edges are too many or
/// change places too often; then rows are walked.
TEST_F(RasterizerTest, OverlappingFiguresInWideRows) {
    std::mt19937 random(77);
    const auto number = [&](float low, float high) { return std::uniform_real_distribution<float>(low, high)(random); };
    for (int round = 0; round < 120; ++round) {
        const int width = 200 + static_cast<int>(random() % 900);
        const int height = 20 + static_cast<int>(random() % 60);
        const auto w = static_cast<float>(width);
        const auto h = static_cast<float>(height);
        const int points = 14 + static_cast<int>(random() % (round % 3 == 0 ? 400 : 60));
        const float beyond = round % 4 == 0 ? w : 0;
        Loop loop;
        for (int i = 0; i < points; ++i) {
            if (round % 5 == 1) { // a coil: deep windings whose edges keep their order
                const float turn = static_cast<float>(i) * 0.7F;
                const float size = static_cast<float>(i) / static_cast<float>(points);
                loop.push_back({w * (0.5F + 0.6F * size * std::cos(turn)), h * (0.5F + 0.6F * size * std::sin(turn))});
            } else if (round % 5 == 2) { // tall zigzags that drift
                loop.push_back({w * static_cast<float>(i % 20) / 20 + number(0, 30), i % 2 == 0 ? number(-9, 3) : h});
            } else {
                loop.push_back({number(-beyond, w + beyond), number(-h, 2 * h)});
            }
        }
        Loops loops{loop};
        if (round % 5 == 3) { // upright sides, between whose ends rows are equal
            for (int i = 0; i < 12; ++i) {
                const float x = number(-20, w);
                const float y = number(-20, h / 3);
                loops.push_back(Box(x, y, x + number(20, 200), y + number(16, h)));
            }
            if (round % 2 == 0) {
                loops.erase(loops.begin());
            }
        }
        if (round % 6 == 0) { // a crowd in the lower half
            for (int i = 0; i < 150; ++i) {
                const float x = number(0, w);
                loops.push_back({{x, h * 0.6F}, {x + 9, h * 0.7F}, {x + number(-40, 40), h}});
            }
        }
        Check(loops, {0, 0, w, h}, {0, 0, width, height}, false, "round " + std::to_string(round));
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(RasterizerTest, ManyCoincidentSides) {
    for (const int copies :
         {1, 2, 3, 4, 7, 8, 15, 16, 17, 31, 32, 63, 64, 100, 128, 255, 256, 257, 300, 4095, 4096, 5000}) {
        Loops loops;
        for (int i = 0; i < copies; ++i) {
            loops.push_back({{3.3F, 2}, {20, 2.5F}, {15.2F, 17}, {4, 14}});
        }
        loops.push_back({{8, 4}, {8, 12}, {14, 12}, {14, 4}}); // the other way round
        Check(loops, {0, 0, 24, 20}, {0, 0, 24, 20}, false, std::to_string(copies) + " copies");
        Check(loops, {0, 0, 24, 20}, {2, 3, 17, 16}, true, std::to_string(copies) + " copies");
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(RasterizerTest, ManySmallFiguresAmongCoincidentOnes) {
    std::mt19937 random(11);
    const auto at = [&](int range) { return static_cast<float>(random() % static_cast<uint32_t>(range * 128)) / 128; };
    for (const int copies : {7, 8, 15, 16, 255, 256, 257}) { // powers of two wrap to 0 where cells are too narrow
        for (const int small : {100, 5000, 9000}) {
            Loops loops;
            for (int i = 0; i < copies + small; ++i) {
                if (i < copies) {
                    loops.push_back({{3.3F, 2}, {20, 2.5F}, {15.2F, 17}, {4, 14}});
                } else { // less than a pixel high, some within one sub-scanline; right of the others, and below
                    const Point p{21 + at(8), at(36) - 2};
                    loops.push_back({p, {p.x + 1 + at(2), p.y + at(1) / 2}, {p.x, p.y + at(1)}});
                }
            }
            Check(loops, {0, 0, 32, 32}, {0, 0, 32, 32}, false,
                  std::to_string(copies) + " among " + std::to_string(small));
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

TEST_F(RasterizerTest, LongFlatAndSteepSidesKeepTheirExactSteps) {
    std::mt19937 random(7);
    const auto at = [&](int range) {
        return static_cast<float>(static_cast<int>(random() % (2U * range * 128)) - range * 128) / 128;
    };
    for (int round = 0; round < 60; ++round) {
        // The visible part is far from where the side begins.
        const Point a{at(32000), -32535.0F};
        const Point b{at(200), 32535.0F};
        const Point c{at(32000), at(32000)};
        Check({{a, b, c}}, {0, 0, 40, 2000}, {0, 0, 40, 2000}, round % 2 == 0, "tall " + std::to_string(round));
        const Point d{-32535.0F, at(20)};
        const Point e{32535.0F, d.y + at(2)};
        Check({{d, e, c}, {e, {at(20), at(20)}, d}}, {0, 0, 300, 40}, {0, 0, 300, 40}, false,
              "wide " + std::to_string(round));
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST(EdgeBuilderTest, ClosedFormsEqualTheAlignmentLoop) {
    std::mt19937 random(99);
    for (int i = 0; i < 300000; ++i) {
        const int bits = 1 + static_cast<int>(random() % 22);
        const auto v = [&] { return static_cast<int32_t>(random() % (2U << bits)) - (1 << bits); };
        const Vertex from{v(), v()};
        const Vertex to{i % 7 == 0 ? from.x : v(), i % 5 == 0 ? from.y + v() % 40 : v()};
        const int32_t clipFirst = v() >> 4;
        const int32_t clipLast = clipFirst + 1 + (v() & 0xFFFF);
        PlainEdge expected;
        Edge e;
        const bool exists = PlainSetUp(from.x, from.y, to.x, to.y, clipFirst, clipLast, expected);
        ASSERT_EQ(exists, EdgeBuilder::SetUp(from, to, clipFirst, clipLast, e));
        if (exists) {
            ASSERT_EQ(expected.first, e.first);
            ASSERT_EQ(expected.last, e.last);
            ASSERT_EQ(expected.x, e.x) << from.x << ' ' << from.y << ' ' << to.x << ' ' << to.y;
            ASSERT_EQ(expected.error, e.error);
            ASSERT_EQ(expected.step, e.step);
            ASSERT_EQ(expected.increment, e.increment);
            ASSERT_EQ(expected.denominator, e.denominator);
            ASSERT_EQ(expected.direction, e.direction);
        }
    }
}

TEST_F(RasterizerTest, CurvesAreFlattenedAndFiguresClosed) {
    const Rect clip{0, 0, 64, 64};
    const IntRect all{0, 0, 64, 64};
    Loop flat{{5, 50}};
    CurveFlattener flattener(0.25F, {5, 50}, {-20, -30}, {90, -10}, {55, 58});
    for (Point p; flattener.Next(p);) {
        flat.push_back(p);
    }
    flat.push_back({55, 58});
    Grid expected = PlainCoverage({flat}, clip, all, false);
    for (const bool close : {false, true}) {
        GridSink sink(all);
        m_rasterizer.Begin(clip, all, true);
        m_rasterizer.BeginFigure({5, 50});
        m_rasterizer.CubicTo({-20, -30}, {90, -10}, {55, 58});
        close ? m_rasterizer.EndFigureClose() : m_rasterizer.EndFigure();
        m_rasterizer.Finish(sink);
        EXPECT_EQ(1, sink.begins);
        Compare(expected, sink.grid, close ? "closed" : "open");
    }
}

TEST_F(RasterizerTest, UprightRectanglesBecomeWholePixels) {
    const IntRect all{0, 0, 64, 64};
    const auto snapped = [&](const Loops& loops) {
        GridSink sink(all);
        m_rasterizer.Begin({0, 0, 64, 64}, all, true);
        Feed(m_rasterizer, loops);
        m_rasterizer.Finish(sink);
        EXPECT_EQ(sink.rectangles.empty() ? 1 : 0, sink.begins);
        const IntRect r = sink.rectangles.empty() ? IntRect{} : sink.rectangles[0];
        return std::vector<int>{r.left, r.top, r.right, r.bottom};
    };
    const auto is = [](int l, int t, int r, int b) { return std::vector<int>{l, t, r, b}; };
    const std::vector<int> none(4);
    EXPECT_EQ(is(10, 10, 21, 20), snapped({Box(10.25F, 10, 20.75F, 20)}));
    EXPECT_EQ(is(10, 10, 20, 20), snapped({Box(10.5F, 10, 20.5F, 20)})); // a tie drops the far column
    EXPECT_EQ(is(11, 10, 21, 20), snapped({Box(10.75F, 10, 20.75F, 20)}));
    EXPECT_EQ(is(10, 10, 20, 20), snapped({Box(10.25F, 10, 20.25F, 20)}));
    EXPECT_EQ(is(5, 7, 6, 9), snapped({Box(5, 7, 5.05F, 9)})); // never less than a pixel wide
    EXPECT_EQ(is(5, 7, 15, 8), snapped({Box(5, 7.25F, 15, 7.5F)}));
    EXPECT_EQ(is(1, 2, 9, 30), snapped({{{1, 2}, {4, 2}, {9, 2}, {9, 30}, {1, 30}}})); // level sides don't count
    EXPECT_EQ(is(1, 2, 9, 30000), snapped({Box(1, 2, 9, 30000)}));                     // not clipped
    EXPECT_EQ(none, snapped({Box(1, 2, 9, 8), Box(1, 12, 9, 18)}));
    EXPECT_EQ(none, snapped({{{1, 2}, {9, 2}, {9, 8}, {1.5F, 8}}}));

    // Without the fill: the same, whichever corners are given.
    std::mt19937 random(5);
    for (int i = 0; i < 5000; ++i) {
        const auto at = [&] { return static_cast<float>(static_cast<int>(random() % 12000) - 2000) / 128.0F; };
        const Point a{at(), at()};
        const Point b{random() % 4 == 0 ? a.x + 0.02F : at(), random() % 4 == 0 ? a.y + 0.1F : at()};
        IntRect r{};
        const bool found = SnapRectangle({0, 0, 64, 64}, ToVertex(a), ToVertex(b), r);
        GridSink sink(all);
        m_rasterizer.Begin({0, 0, 64, 64}, all, true);
        Feed(m_rasterizer, {{a, {b.x, a.y}, b, {a.x, b.y}}});
        m_rasterizer.Finish(sink);
        if (r.right > 0 && r.left < 64) { // beside the target a fill is dropped earlier
            ASSERT_EQ(found, !sink.rectangles.empty());
            ASSERT_TRUE(!found || r == sink.rectangles[0]) << a.x << ' ' << a.y << ' ' << b.x << ' ' << b.y;
        }
    }
}

/// Paints what comes into the grid and keeps where the runs of each row begin.
class CutSink final : public GridSink {
public:
    CutSink(const IntRect& visible, bool any) : GridSink(visible) { anyCuts = any; }
    void Row(int32_t y, std::span<CoverageRun> runs) override {
        for (const CoverageRun& run : runs) {
            cuts.push_back({y, run.x0, run.x1, run.shape == nullptr ? run.value : -1});
            if (run.shape != nullptr) { // as a mask would
                for (int32_t x = run.x0; x < run.x1; ++x) {
                    grid.At(x, y) = std::exchange(run.shape[x - run.x0], uint8_t{99});
                }
            } else {
                std::fill(&grid.At(run.x0, y), &grid.At(run.x0, y) + (run.x1 - run.x0), run.value);
            }
        }
    }
    void Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) override {
        for (int32_t y = top; y < bottom; ++y) {
            std::fill(&grid.At(left, y), &grid.At(left, y) + (right - left), 255);
        }
    }
    /// Row, begin, end and constant value (or -1) of the runs that are not all zeros.
    std::vector<std::array<int32_t, 4>> Seen() {
        std::erase_if(cuts, [&](const std::array<int32_t, 4>& run) {
            const int* first = &grid.At(run[1], run[0]);
            return std::all_of(first, first + (run[2] - run[1]), [](int v) { return v == 0; });
        });
        return cuts;
    }

private:
    std::vector<std::array<int32_t, 4>> cuts;
};

/// Takes rows together, or one by one and spoils what it is given.
class EqualRowsSink final : public GridSink {
public:
    EqualRowsSink(const IntRect& visible, bool together) : GridSink(visible), m_together(together) {}
    void Row(int32_t y, std::span<CoverageRun> runs) override {
        ++calls;
        GridSink::Row(y, runs);
        for (CoverageRun& run : runs) {
            if (run.shape != nullptr) {
                std::fill_n(run.shape, run.x1 - run.x0, uint8_t{77});
            }
            run = {0, 1, nullptr, 55};
        }
    }
    bool Rows(int32_t y0, int32_t y1, std::span<const CoverageRun> runs) override {
        if (m_together) {
            ++calls;
            for (int32_t y = y0; y < y1; ++y) {
                std::vector<CoverageRun> copy(runs.begin(), runs.end());
                GridSink::Row(y, copy);
            }
        }
        return m_together;
    }

    int calls = 0;

private:
    bool m_together;
};

TEST_F(RasterizerTest, RowsBetweenUprightSidesAreSentTogether) {
    std::mt19937 random(77);
    const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<uint32_t>(n)); };
    constexpr int kSize = 300;
    const Rect clip{0, 0, kSize, kSize};
    int together = 0;
    int rows = 0;
    for (int round = 0; round < 400; ++round) {
        Loops loops;
        for (int i = 0; i <= pick(4); ++i) { // bars with slanted ends, a part of them slanted as a whole
            const auto x = static_cast<float>(pick(kSize * 16)) / 16;
            const auto y = static_cast<float>(pick(kSize * 16)) / 16;
            const auto w = static_cast<float>(1 + pick(40 * 16)) / 16;
            const auto h = static_cast<float>(pick(kSize * 16)) / 16;
            const float lean = pick(4) == 0 ? 3.25F : 0.0F;
            Loop bar{{x, y}, {x + w, y + static_cast<float>(pick(3)) * 2.7F}, {x + w + lean, y + h}, {x, y + h + 1.3F}};
            if (pick(2) == 0) {
                std::reverse(bar.begin(), bar.end());
            }
            loops.push_back(bar);
        }
        const int32_t top = pick(3) == 0 ? pick(200) : 0;
        const IntRect visible{pick(3) == 0 ? pick(200) : 0, top, kSize, kSize};
        const bool evenOdd = pick(2) == 0;
        Grid expected = PlainCoverage(loops, clip, visible, evenOdd);
        for (const auto& set : m_sets) {
            for (const bool accepts : {true, false}) {
                EqualRowsSink sink(visible, accepts);
                m_rasterizer.UseKernels(*set.kernels);
                m_rasterizer.Begin(clip, visible, false);
                m_rasterizer.SetFillRule(evenOdd ? 1 : 0);
                Feed(m_rasterizer, loops);
                m_rasterizer.Finish(sink);
                Compare(expected, sink.grid, "round " + std::to_string(round));
                (accepts ? together : rows) += sink.calls;
            }
            CheckPainted(expected, loops, clip, visible, evenOdd, "painted, round " + std::to_string(round));
        }
        if (HasFatalFailure()) {
            return;
        }
    }
    EXPECT_LT(together, rows / 3);
}

TEST_F(RasterizerTest, RectanglesInClosedFormAreThoseOfTheBandScanner) {
    std::mt19937 random(31);
    const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<uint32_t>(n)); };
    for (int round = 0; round < 6000; ++round) {
        const int width = round % 3 == 0 ? 12 : 90;
        const auto at = [&] {
            const int v = pick(width * 128 + 1024) - 512;
            return static_cast<float>(pick(3) == 0 ? v / 128 * 128 : v) / 128;
        };
        const Point a{at(), at()};
        const Point b{pick(9) == 0 ? a.x + 0.3F : at(), pick(9) == 0 ? a.y + 0.3F : at()};
        const Rect clip{0, 0, static_cast<float>(width), static_cast<float>(width)};
        IntRect visible{0, 0, width, width};
        if (pick(2) == 0) {
            visible = {pick(width / 2), pick(width / 2), width - pick(width / 2), width - pick(width / 2)};
        }
        const Loop corners{a, {b.x, a.y}, b, {a.x, b.y}};
        // A fifth vertex on a side leaves the edges as they are and the closed form out.
        const Loop general{a, {(a.x + b.x) / 2, a.y}, {b.x, a.y}, b, {a.x, b.y}};
        CutSink expected(visible, false), cut(visible, false), any(visible, true);
        const auto fill = [&](const Loop& loop, CutSink& sink) {
            m_rasterizer.Begin(clip, visible, false);
            m_rasterizer.SetFillRule(round % 2 != 0 ? 1 : 0);
            Feed(m_rasterizer, {loop});
            m_rasterizer.Finish(sink);
        };
        fill(general, expected);
        fill(corners, cut);
        fill(corners, any);
        const std::string what = "round " + std::to_string(round);
        Compare(expected.grid, cut.grid, what);
        Compare(expected.grid, any.grid, what + ", cut anywhere");
        ASSERT_EQ(expected.Seen(), cut.Seen()) << what;
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(RasterizerTest, SimpleShapesInPixels) {
    const Rect clip{0, 0, 16, 16};
    const IntRect all{0, 0, 16, 16};
    const auto draw = [&](const Loops& loops, uint32_t rule) {
        GridSink sink(all);
        m_rasterizer.Begin(clip, all, false);
        m_rasterizer.SetFillRule(rule);
        Feed(m_rasterizer, loops);
        m_rasterizer.Finish(sink);
        return sink.grid;
    };
    Grid one = draw({Box(3, 4, 4, 5)}, 0);
    EXPECT_EQ(255, one.At(3, 4));
    EXPECT_EQ(255, std::accumulate(one.value.begin(), one.value.end(), 0));
    Grid half = draw({Box(5, 2, 5.5F, 9)}, 1);
    EXPECT_EQ(127, half.At(5, 2));
    EXPECT_EQ(127 * 7, std::accumulate(half.value.begin(), half.value.end(), 0));
    const Loops two{Box(1, 1, 8, 8), Box(4, 4, 12, 12)};
    EXPECT_EQ(255, draw(two, 0).At(5, 5));
    EXPECT_EQ(0, draw(two, 1).At(5, 5));
    EXPECT_EQ(255, draw(two, 1).At(10, 10));
}

TEST_F(RasterizerTest, DegenerateAndAbsurdInputGivesNothingOrSomethingButNoHarm) {
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const IntRect all{0, 0, 32, 32};
    GridSink empty(all);
    for (const Loops& loops :
         {Loops{}, Loops{{{1, 1}}}, Loops{{{1, 1}, {9, 1}}}, Loops{{{1, 1.01F}, {9, 1.02F}, {4, 1.05F}}},
          Loops{Box(-9, 2, -1, 8)}, Loops{Box(40, 2, 49, 8)}, Loops{Box(2, 40, 8, 50)}}) {
        m_rasterizer.Begin({0, 0, 32, 32}, all, true);
        Feed(m_rasterizer, loops);
        m_rasterizer.Finish(empty);
        EXPECT_EQ(0, empty.begins);
    }
    const float wild[] = {inf, -inf, nan, 1e30F, -1e30F, 5, 20, 3.4e38F, -8.3e6F, 8.3e6F, 70000, 0.3F};
    std::mt19937 random(5);
    for (int round = 0; round < 500; ++round) {
        GridSink sink(all);
        const auto any = [&] { return wild[random() % std::size(wild)]; };
        m_rasterizer.Begin({0, 0, 32, 32}, all, round % 2 == 0);
        m_rasterizer.SetFillRule(static_cast<uint32_t>(round) & 2U);
        for (int f = 0; f < 3; ++f) {
            m_rasterizer.BeginFigure({any(), any()});
            for (int i = 0; i < 5; ++i) {
                m_rasterizer.LineTo({any(), any()});
            }
            m_rasterizer.EndFigure();
        }
        m_rasterizer.Finish(sink);
    }
    m_rasterizer.Begin({nan, -inf, inf, nan}, {INT32_MIN, INT32_MIN, INT32_MIN + 4, INT32_MAX}, true);
    Feed(m_rasterizer, {{{1, 1}, {9, 5}, {2, 9}}});
    m_rasterizer.Finish(empty);
    // Vertices far beyond what the fast form holds still give the plain counts.
    Check({{{-60000, -50000}, {70000, 3}, {-40000, 60000}}, {{20, -3}, {90000, 40000}, {3, 50}}}, {0, 0, 32, 32}, all,
          true, "far");
}

TEST_F(RasterizerTest, AFailingSinkLeavesTheNextFillClean) {
    struct Thrower : GridSink {
        using GridSink::GridSink;
        void Row(int32_t, std::span<CoverageRun>) override { throw 1; }
    };
    const Rect clip{0, 0, 40, 40};
    const IntRect all{0, 0, 40, 40};
    Thrower thrower(all);
    m_rasterizer.Begin(clip, all, false);
    Feed(m_rasterizer, {{{1, 1}, {38, 4}, {20, 39}}});
    EXPECT_THROW(m_rasterizer.Finish(thrower), int);
    Check({{{5, 3}, {30, 8}, {11, 29}}}, clip, all, false, "after");
}

/// Trapezoids and rows together cover what the plain counts cover, and bands are whole rows with ordered edges.
TEST_F(RasterizerTest, TrapezoidBandsReplaceRows) {
    std::mt19937 random(31);
    const auto number = [&](float low, float high) { return std::uniform_real_distribution<float>(low, high)(random); };
    int bands = 0;
    for (int round = 0; round < 300; ++round) {
        const IntRect all{0, 0, 200, 120};
        const Rect clip{0, 0, 200, 120};
        const Loops loops{{{number(5, 60), number(1, 30)},
                           {number(120, 195), number(1, 30)},
                           {number(120, 195), number(80, 119)},
                           {number(5, 60), number(80, 119)}}};
        const bool evenOdd = round % 2 == 0;
        GridSink sink(all, true);
        m_rasterizer.Begin(clip, all, false);
        m_rasterizer.SetFillRule(evenOdd ? 1 : 0);
        Feed(m_rasterizer, loops);
        m_rasterizer.Finish(sink);
        Grid expected = PlainCoverage(loops, clip, all, evenOdd);
        std::vector<bool> banded(120);
        for (const Trapezoid& t : sink.bands) {
            ++bands;
            ASSERT_EQ(t.top, std::floor(t.top));
            ASSERT_EQ(t.bottom, std::floor(t.bottom));
            ASSERT_GE(t.bottom, t.top + 1);
            ASSERT_LT(t.leftTop, t.rightTop);
            ASSERT_LT(t.leftBottom, t.rightBottom);
            ASSERT_NEAR(0.5F + 0.5F * std::fabs(t.leftBottom - t.leftTop) / (t.bottom - t.top), t.leftRamp, 0.2F);
            double sum = 0;
            for (int y = static_cast<int>(t.top); y < static_cast<int>(t.bottom); ++y) {
                banded[static_cast<size_t>(y)] = true;
                for (int x = 0; x < 200; ++x) {
                    sum += (expected.At(x, y) + 1) / 256.0 - (expected.At(x, y) == 0 ? 1 / 256.0 : 0);
                }
            }
            const double area = (t.bottom - t.top) * (t.rightTop - t.leftTop + t.rightBottom - t.leftBottom) / 2;
            // A sub-scanline's x belongs to its middle, 1/16 pixel below the y that a band names.
            const double slopes = 2.0 * t.leftRamp + 2.0 * t.rightRamp - 2;
            ASSERT_NEAR(sum, area, (0.2 + slopes / 16) * (t.bottom - t.top)) << round;
        }
        for (int y = 0; y < 120; ++y) {
            for (int x = 0; x < 200; ++x) {
                ASSERT_EQ(banded[static_cast<size_t>(y)] ? 0 : expected.At(x, y), sink.grid.At(x, y))
                    << round << ' ' << y;
            }
        }
    }
    EXPECT_GT(bands, 300);
}

} // namespace
} // namespace Graphics
