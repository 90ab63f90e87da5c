// SPDX-License-Identifier: MIT
// Strokes and dashes that cost more than what can be seen of them, or came out wrong for it: counted in figures and
// points that reach the rasterizer, never in time.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "Exception.h"
#include "Geometry/DeviceFeed.h"
#include "Geometry/Figures.h"
#include "Geometry/Geometry.h"
#include "GridSink.h"
#include "Scan/Rasterizer.h"

using namespace Graphics;

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// Counts what arrives and checks that a rasterizer can hold it.
class Counter {
public:
    void SetFillRule(uint32_t) {}
    void BeginFigure(const Point& p) {
        ++figures;
        LineTo(p);
    }
    void EndFigure() {}
    void EndFigureClose() {}
    void LineTo(const Point& p) {
        ++points;
        inBand = inBand && std::fabs(p.x) <= kDeviceBand && std::fabs(p.y) <= kDeviceBand;
    }
    void CubicTo(const Point&, const Point&, const Point&) { FAIL() << "a pen sends lines"; }

    size_t figures = 0;
    size_t points = 0;
    bool inBand = true;
};

StrokeStyle Style(uint32_t join, uint32_t cap, float limit, std::initializer_list<float> dashes = {}) {
    StrokeStyle style;
    style.join = join;
    style.cap = cap;
    style.miterLimit = limit;
    for (const float dash : dashes) {
        style.dashes[style.dashCount++] = dash;
    }
    return style;
}

void Line(Geometry& shape, const Point& a, const Point& b) {
    shape.BeginFigure(a);
    shape.LineTo(b);
    shape.EndFigure();
}

/// Segments of this length to and fro along x, or y, over the target.
void Zigzag(Geometry& shape, int count, float length, float size, bool upright = false) {
    for (int i = 0; i <= count; ++i) {
        const float along = (i % 2 == 0 ? -0.5F : 0.5F) * length;
        const float across = size * static_cast<float>(i) / static_cast<float>(count);
        const Point p = upright ? Point{across, along} : Point{along, across};
        i == 0 ? shape.BeginFigure(p) : shape.LineTo(p);
    }
    shape.EndFigure();
}

Counter Count(const Shape& shape, const Matrix& m, const StrokeStyle& style, float width, float size) {
    PenStorage storage;
    Counter counter;
    FeedStroke(shape, m, style, width, false, storage, {0, 0, size, size}, counter);
    return counter;
}

/// The coverage of every pixel, 0 to 255, of what `feed` sends to a rasterizer.
template <class Feed> std::vector<int> Coverage(int size, const Feed& feed) {
    Rasterizer rasterizer;
    const IntRect all{0, 0, size, size};
    const auto side = static_cast<float>(size);
    GridSink sink(all);
    rasterizer.Begin({0, 0, side, side}, all, false);
    feed(rasterizer);
    rasterizer.Finish(sink);
    std::vector<int> result(sink.grid.value.begin(), sink.grid.value.end());
    for (const IntRect& r : sink.rectangles) {
        const IntRect seen = Intersect(r, all);
        for (int y = seen.top; y < seen.bottom; ++y) {
            std::fill_n(result.begin() + y * size + seen.left, std::max(seen.right - seen.left, 0), 255);
        }
    }
    return result;
}

/// Covered pixels.
double Area(const Shape& shape, const Matrix& m, const StrokeStyle& style, float width, int size, bool adjust = false) {
    PenStorage storage;
    Rasterizer rasterizer;
    const IntRect all{0, 0, size, size};
    const auto side = static_cast<float>(size);
    GridSink sink(all);
    rasterizer.Begin({0, 0, side, side}, all, adjust);
    FeedStroke(shape, m, style, width, adjust, storage, {0, 0, side, side}, rasterizer);
    rasterizer.Finish(sink);
    double sum = 0;
    for (const int value : sink.grid.value) {
        sum += value / 255.0;
    }
    for (const IntRect& r : sink.rectangles) {
        const IntRect seen = Intersect(r, all);
        sum += static_cast<double>(seen.right - seen.left) * (seen.bottom - seen.top);
    }
    return sum;
}

} // namespace

TEST(StrokeBounds, WidthsBeyondTheFloatsCoverTheTarget) {
    struct Case {
        float scale, width;
    };
    for (const Case& c : {Case{3, 3.4e38F}, Case{1e30F, 1e9F}, Case{1e38F, 10}, Case{1e-3F, 3.4e38F}}) {
        Geometry line;
        Line(line, {0, 0}, {1, 1});
        const Matrix m{c.scale, 0, 0, c.scale, 0, 0};
        EXPECT_NEAR(Area(line, m, Style(GXLineJoinRound, GXLineCapRound, 10), c.width, 40), 1600, 1) << c.scale;
        EXPECT_TRUE(Count(line, m, Style(GXLineJoinMiter, GXLineCapFlat, kInfinity), c.width, 40).inBand);
        Geometry tip;
        tip.BeginFigure({-3e38F, -45});
        tip.LineTo({80, 46});
        tip.LineTo({79, 46.5F});
        tip.EndFigure();
        EXPECT_TRUE(
            Count(tip, {1e-45F, 0, 0, 1e-30F, 0, 0}, Style(GXLineJoinMiter, GXLineCapFlat, 100), c.width, 40).inBand);
        const Matrix unequal{c.scale, 0, 0, c.scale * 0.5F, 0, 0};
        EXPECT_NEAR(Area(line, unequal, Style(GXLineJoinRound, GXLineCapRound, 10), c.width, 40), 1600, 1) << c.scale;
    }
}

TEST(StrokeBounds, NoMiterLimitChangesDashes) {
    Geometry line;
    Line(line, {10, 20}, {390, 20});
    for (const float limit : {1.0F, 10.0F, 1e5F, 1e6F, 1e9F, std::numeric_limits<float>::max(), kInfinity}) {
        EXPECT_EQ(Count(line, kIdentity, Style(GXLineJoinMiter, GXLineCapFlat, limit, {4, 4}), 2, 400).figures, 48U)
            << limit;
    }
    // Nor does a wide pen without caps.
    EXPECT_NEAR(static_cast<double>(
                    Count(line, kIdentity, Style(GXLineJoinMiter, GXLineCapFlat, 10, {1, 1}), 2e4F, 400).figures),
                190, 3);
}

TEST(StrokeBounds, UnequalScalesCostWhatIsSeen) {
    for (const bool upright : {false, true}) {
        for (const float scale : {1e3F, 1e4F, 1e5F, 1e6F}) {
            for (const Matrix& m : {Matrix{scale, 0, 0, 1, 0, 0}, Matrix{1, 0, 0, scale, 0, 0},
                                    Matrix{0, scale, 1, 0, 0, 0}, Matrix{1 / scale, 0, 0, 1, 0, 0}}) {
                Geometry shape;
                Zigzag(shape, 100, 2e6F, 64, upright);
                const StrokeStyle style = Style(GXLineJoinMiter, GXLineCapFlat, 10, {1, 1});
                EXPECT_LT(Count(shape, m, style, 1, 64).points, 400000U) << m.m00 << " " << m.m11;
            }
        }
    }
    Geometry curve;
    curve.BeginFigure({0, 0});
    curve.CubicTo({20, 3}, {-5, 30}, {60, 60});
    curve.EndFigure();
    for (const uint32_t cap : {GXLineCapFlat, GXLineCapRound, GXLineCapSquare}) {
        const StrokeStyle style = Style(GXLineJoinRound, cap, 10, {1, 1});
        EXPECT_LT(Count(curve, {1.78F, 0, 1.03e7F, 0.449F, 48, 0}, style, 1, 64).points, 200000U);
    }
    // The pen reaches along x alone: one pixel of the line's dashes after the other.
    Geometry line;
    Line(line, {20e-6F, -1e8F}, {20e-6F, 1e8F});
    EXPECT_NEAR(Area(line, {1e6F, 0, 0, 1, 0, 0}, Style(GXLineJoinMiter, GXLineCapFlat, 10, {1, 1}), 1e-5F, 64), 320,
                1);
    Geometry far;
    Line(far, {0, 0}, {1e16F, 1e8F});
    EXPECT_LT(Count(far, {4.3e-15F, 0, 0, 4.2e-7F, 0, 0}, Style(0, GXLineCapRound, 10, {1, 3}), 1e7F, 64).points,
              20000U);
}

TEST(StrokeBounds, PatternsFinerThanSamplesHaveTheirMeanCoverage) {
    struct Case {
        float dash, gap;
    };
    for (const Case& c : {Case{0.0625F, 0.0625F}, Case{0.03F, 0.03F}, Case{0.01F, 0.03F}, Case{0.0625F, 0.1875F},
                          Case{0.125F, 0.125F}, Case{1e-4F, 1e-4F}, Case{1e-30F, 3e-30F}}) {
        const StrokeStyle style = Style(GXLineJoinMiter, GXLineCapFlat, 10, {c.dash, c.gap});
        const double share = static_cast<double>(c.dash) / (static_cast<double>(c.dash) + c.gap);
        for (int direction = 0; direction < 3; ++direction) {
            Geometry line;
            const Point end = direction == 0 ? Point{64, 8} : direction == 1 ? Point{8, 64} : Point{56, 56};
            Line(line, direction == 0 ? Point{0, 8} : direction == 1 ? Point{8, 0} : Point{8, 8}, end);
            const double length = direction == 2 ? 48 * std::sqrt(2.0) : 64;
            EXPECT_NEAR(Area(line, kIdentity, style, 2, 64), 2 * length * share, 0.05 * length)
                << c.dash << " " << c.gap << " direction " << direction;
        }
    }
}

TEST(StrokeBounds, DotsThatTouchAreOneStroke) {
    const StrokeStyle plain = Style(GXLineJoinRound, GXLineCapRound, 10);
    Geometry shape;
    Zigzag(shape, 100, 800, 1000);
    const size_t undashed = Count(shape, kIdentity, plain, 100, 1000).points;
    StrokeStyle zeros = plain;
    zeros.dashCount = 14;
    zeros.dashes[13] = 0.2F;
    for (const StrokeStyle& style :
         {Style(GXLineJoinRound, GXLineCapRound, 10, {0, 0.2F}), Style(GXLineJoinRound, GXLineCapRound, 10, {0, 2}),
          Style(GXLineJoinMiter, GXLineCapRound, kInfinity, {0, 0.2F}), zeros}) {
        EXPECT_LT(Count(shape, kIdentity, style, 100, 1000).points, 4 * undashed + 20000);
        EXPECT_NEAR(Area(shape, kIdentity, style, 100, 1000), Area(shape, kIdentity, plain, 100, 1000), 600);
    }
    // Around a curve, too.
    Geometry circle;
    AddEllipse(circle, {200, 200, 800, 800});
    EXPECT_LT(Count(circle, kIdentity, Style(GXLineJoinRound, GXLineCapRound, 10, {0, 0.2F}), 100, 1000).points,
              4 * Count(circle, kIdentity, plain, 100, 1000).points + 2000);
    // Dots that do not touch stay dots.
    Geometry line;
    Line(line, {100, 500}, {900, 500});
    EXPECT_EQ(Count(line, kIdentity, Style(GXLineJoinRound, GXLineCapRound, 10, {0, 110}), 100, 1000).figures, 8U);
}

TEST(StrokeBounds, DotsCostWhatIsSeenOfThem) {
    // However wide the pen is, a dot that its neighbours hide but for a rim is a few points.
    Geometry shape;
    Zigzag(shape, 10, 800, 1000);
    for (const uint32_t cap : {GXLineCapRound, GXLineCapSquare}) {
        for (const float width : {60.0F, 200.0F, 600.0F}) {
            const Counter sent = Count(shape, kIdentity, Style(GXLineJoinRound, cap, 10, {0, 5}), width, 1000);
            EXPECT_LT(sent.points, 10U * 164 * 10) << cap << " " << width;
            EXPECT_LT(sent.figures, 60U) << cap << " " << width;
        }
    }
}

TEST(StrokeBounds, ChainsLookAsTheirDashesOneByOne) {
    std::mt19937 random(77);
    const auto between = [&](float low, float high) {
        return low + (high - low) * static_cast<float>(random() % 65536) / 65536;
    };
    constexpr int kSide = 64;
    double total = 0;
    for (int round = 0; round < 100; ++round) {
        Geometry path;
        const auto point = [&] { return Point{between(-10, kSide + 10), between(-10, kSide + 10)}; };
        path.BeginFigure(point());
        for (uint32_t i = 0; i <= random() % 3; ++i) {
            if (random() % 2 == 0) {
                path.LineTo(point());
                continue;
            }
            // A bow of short lines, over whose corners chains of dots go on.
            const Point centre = point();
            const float radius = between(5, 80), turn = between(-0.2F, 0.2F), start = between(0, 6);
            for (int k = 0; k < 40; ++k) {
                const float angle = start + turn * static_cast<float>(k);
                path.LineTo({centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)});
            }
        }
        path.EndFigure();
        const float width = between(3, 60);
        const float on = between(0.02F, 0.6F) * width; // compilers differ in the order of arguments
        StrokeStyle style = Style(GXLineJoinRound, 1 + random() % 2, 10, {0, on});
        if (random() % 2 == 0) {
            style.dashCount = 4;
            style.dashes[2] = random() % 2 == 0 ? 0 : between(0, 0.3F) * width;
            style.dashes[3] = between(0.02F, 0.6F) * width;
        }
        const auto chains = Coverage(kSide, [&](Rasterizer& rasterizer) {
            PenStorage storage;
            FeedStroke(path, kIdentity, style, width, false, storage, {0, 0, kSide, kSide}, rasterizer);
        });
        // The truth: every dash by itself, eight times as large.
        StrokeStyle large = style;
        for (float& dash : large.dashes) {
            dash *= 8;
        }
        const auto widened = path.Transform({8, 0, 0, 8, 0, 0})->Widen(8 * width, large);
        const auto fine =
            Coverage(8 * kSide, [&](Rasterizer& rasterizer) { FeedFill(*widened, kIdentity, rasterizer); });
        double sum = 0, worst = 0;
        for (int i = 0; i < kSide * kSide; ++i) {
            double truth = 0;
            for (int k = 0; k < 64; ++k) {
                truth += fine[(i / kSide * 8 + k / 8) * 8 * kSide + i % kSide * 8 + k % 8] / 64.0;
            }
            worst = std::max(worst, std::fabs(chains[i] - truth));
            sum += std::fabs(chains[i] - truth);
        }
        // Samples and circles of lines are each off by an eighth of a pixel at most.
        EXPECT_LE(worst, 64) << round;
        total += sum;
    }
    EXPECT_LT(total, 1.5 * 100 * kSide * kSide / 4);
}

TEST(StrokeBounds, WideRoundPensSendWhatIsNear) {
    Geometry shape;
    Zigzag(shape, 1000, 800, 1000);
    for (const float width : {1e4F, 1e6F}) {
        EXPECT_LT(Count(shape, kIdentity, Style(GXLineJoinRound, GXLineCapRound, 10), width, 1000).points, 500000U);
    }
    EXPECT_NEAR(Area(shape, kIdentity, Style(GXLineJoinRound, GXLineCapRound, 10), 1e6F, 200), 40000, 1e-9);
}

TEST(StrokeBounds, WidenGivesAllDashesOrNone) {
    const auto widen = [](float length, float dash) {
        Geometry line;
        line.BeginFigure({0, 0});
        line.LineTo({length, 0});
        line.EndFigure();
        return line.Widen(0.5F, Style(0, 0, 10, {dash, dash}))->Figures().size();
    };
    EXPECT_EQ(widen(1000, 0.25F), 2000U);
    // Just over 2^20 periods of the doubled pattern, where floats still tell the dashes apart.
    EXPECT_EQ(widen(1.05e6F, 0.25F), 2100000U);
    for (const float length : {1e9F, 1e20F, 3e38F}) {
        EXPECT_THROW(widen(length, 1e-3F), Exception) << length;
    }
}

TEST(StrokeDots, TurnWithTheMatrix) {
    const StrokeStyle square = Style(GXLineJoinMiter, GXLineCapSquare, 10);
    for (const float distortion : {1.0F, 1.0001F}) {
        for (const float width : {6.0F, 0.0F}) {
            Geometry dot, out;
            Line(dot, {0, 0}, {0, 0});
            PenStorage storage;
            const float k = 0.70710677F;
            FeedStroke(dot, {k, k, -k * distortion, k * distortion, 50, 50}, square, width, false, storage,
                       {0, 0, 100, 100}, out);
            ASSERT_EQ(out.Figures().size(), 1U);
            // A square that stands on a corner.
            const float reach = width == 0 ? k : 3 / k;
            EXPECT_NEAR(out.ControlBox().right, 50 + reach, 0.01) << distortion << " " << width;
            EXPECT_NEAR(out.ControlBox().top, 50 - reach, 0.01) << distortion << " " << width;
        }
    }
}

TEST(StrokeAdjustment, MovesEveryLevelAndUprightSegment) {
    PenStorage storage;
    const auto outline = [&](const Shape& shape, Geometry& out) {
        FeedStroke(shape, kIdentity, Style(GXLineJoinMiter, GXLineCapFlat, 10), 1.4F, true, storage, {0, 0, 200, 200},
                   out);
    };
    Geometry plain, rounded, plainOut, roundedOut;
    AddRectangle(plain, {10.3F, 20.4F, 90.7F, 70.6F});
    AddRoundRectangle(rounded, {10.3F, 20.4F, 90.7F, 70.6F}, 12, 9);
    outline(plain, plainOut);
    outline(rounded, roundedOut);
    const Rect a = plainOut.ControlBox(), b = roundedOut.ControlBox();
    EXPECT_EQ(a.left, b.left);
    EXPECT_EQ(a.top, b.top);
    EXPECT_EQ(a.right, b.right);
    EXPECT_EQ(a.bottom, b.bottom);
    EXPECT_EQ(a.left, std::floor(a.left));

    // A joint with a slanted segment stays closed: the outline is one figure, and its upright edges are whole.
    Geometry bent, bentOut, slanted, plainSlanted;
    bent.BeginFigure({30.3F, 10});
    bent.LineTo({30.3F, 60.2F});
    bent.LineTo({80, 90});
    bent.EndFigure();
    outline(bent, bentOut);
    ASSERT_EQ(bentOut.Figures().size(), 1U);
    EXPECT_EQ(bentOut.ControlBox().left, 30);
    // Without such a segment nothing moves.
    slanted.BeginFigure({30.3F, 10});
    slanted.LineTo({50.3F, 60.2F});
    slanted.CubicTo({60, 70}, {70, 30}, {80, 90});
    slanted.EndFigure();
    outline(slanted, plainSlanted);
    Geometry untouched;
    FeedStroke(slanted, kIdentity, Style(GXLineJoinMiter, GXLineCapFlat, 10), 1.4F, false, storage, {0, 0, 200, 200},
               untouched);
    EXPECT_TRUE(plainSlanted.Equals(untouched));
}

/// The second seed soon has pens and shifts at the end of the floats, whose sums have no position.
class HostileStrokes : public testing::TestWithParam<std::pair<uint32_t, int>> {};

TEST_P(HostileStrokes, StayWithinTheirBudget) {
    std::mt19937 random(GetParam().first);
    const auto pick = [&](uint32_t n) { return random() % n; };
    const auto hostile = [&]() -> float {
        static constexpr float kSpecial[] = {0.0F,   -0.0F,   1.0F,     -1.0F,     1e30F,      -1e30F,
                                             1e-30F, 3.4e38F, -3.4e38F, kInfinity, -kInfinity, 1e-45F};
        switch (pick(8)) {
        case 0:
            return kSpecial[pick(12)];
        case 1:
            return pick(60) == 0 ? std::bit_cast<float>(static_cast<uint32_t>(random())) : 3.0F;
        case 2: {
            const int exponent = static_cast<int>(pick(120)) - 60; // compilers differ in the order of arguments
            return std::ldexp(static_cast<float>(pick(1000)) - 500, exponent);
        }
        default:
            return static_cast<float>(pick(20000)) / 100 - 70;
        }
    };
    const auto point = [&] {
        const float x = hostile();
        return Point{x, hostile()};
    };
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(GX_TEST_EMULATED)
    const int rounds = std::min(GetParam().second, 10000);
#else
    const int rounds = GetParam().second;
#endif
    PenStorage storage;
    size_t drawn = 0;
    for (int round = 0; round < rounds; ++round) {
        Geometry shape;
        size_t segments = 0;
        for (uint32_t figure = 0; figure <= pick(2); ++figure) {
            shape.BeginFigure(point());
            for (uint32_t i = 0; i <= pick(4); ++i) {
                const Point a = point(), b = point(), c = point();
                pick(3) == 0 ? shape.CubicTo(a, b, c) : shape.LineTo(a);
                segments += 1;
            }
            pick(2) == 0 ? shape.EndFigure() : shape.EndFigureClose();
        }
        const float s = pick(3) == 0 ? 1.0F : hostile();
        Matrix m{s, 0, 0, pick(2) == 0 ? s : hostile(), 0, 0};
        if (pick(3) == 0) {
            m = {hostile(), hostile(), hostile(), hostile(), hostile(), hostile()};
        }
        Counter counter;
        if (pick(3) == 0) {
            FeedFill(
                shape, m, *[&] {
                    static Rasterizer rasterizer;
                    rasterizer.Begin({0, 0, 64, 64}, {0, 0, 64, 64}, false);
                    return &rasterizer;
                }());
            continue;
        }
        const float miterLimit = pick(2) == 0 ? 10.0F : std::fabs(hostile());
        const uint32_t cap = pick(3);
        StrokeStyle style = Style(pick(3), cap, miterLimit);
        style.dashPhase = pick(2) == 0 ? 0.0F : hostile();
        style.dashCount = pick(2) == 0 ? 0 : 1 + pick(4);
        for (uint32_t i = 0; i < style.dashCount; ++i) {
            style.dashes[i] = std::fabs(hostile());
        }
        const float width = std::fabs(hostile());
        try {
            FeedStroke(shape, m, style, width, pick(2) == 0, storage, {0, 0, 64, 64}, counter);
        } catch (const Exception& e) {
            EXPECT_STREQ(e.what(), "Dash pattern has zero length");
        }
        // Eight times the periods that the target's samples can tell apart, each of up to 15 dashes.
        ASSERT_LT(counter.points, 400000 * segments + 1000) << "round " << round;
        ASSERT_TRUE(counter.inBand) << "round " << round;
        drawn += counter.figures != 0 ? 1 : 0;
    }
    EXPECT_GT(drawn, static_cast<size_t>(rounds) / 20);
}

INSTANTIATE_TEST_SUITE_P(Seeds, HostileStrokes, testing::Values(std::pair{2311U, 150000}, std::pair{9U, 6000}));
