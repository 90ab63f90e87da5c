// SPDX-License-Identifier: MIT
// Gradient colours against a plain evaluation of their formulas, pixel by pixel and without tolerance.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "Exception.h"
#include "KernelSets.h"
#include "Kernels/PaintKernels.h"
#include "Paint/Brush.h"
#include "Paint/Gradient.h"
#include "PaintSupport.h"

namespace {

using namespace Graphics;
using namespace PaintSupport;

/// The stops as they were added; a stable insertion keeps them sorted.
uint32_t PlainColor(const std::vector<GradientStop>& added, float t) {
    std::vector<GradientStop> stops;
    for (const GradientStop& s : added) {
        auto at = stops.begin();
        while (at != stops.end() && at->offset <= s.offset) {
            ++at;
        }
        stops.insert(at, s);
    }
    for (size_t i = 0; i < stops.size(); ++i) {
        if (stops[i].offset < t) {
            continue;
        }
        if (stops[i].offset == t || i == 0) {
            return stops[i].color;
        }
        const GradientStop& upper = stops[i];
        const GradientStop& lower = stops[i - 1];
        const uint32_t w =
            (static_cast<uint32_t>((upper.offset - t) / (upper.offset - lower.offset) * 255.0F) & 255U) + 1;
        return PerChannel(
            [&](int c) { return (Channel(lower.color, c) * w >> 8) + (Channel(upper.color, c) * (257 - w) >> 8); });
    }
    return 0;
}

struct Scene {
    std::vector<GradientStop> stops;
    Matrix brush = kIdentity;
    Matrix ctm = kIdentity;
    float opacity = 1.0F;
    uint32_t factor = 256;

    void Randomize() {
        const float offsets[] = {0.0F, 0.25F, 0.5F, 0.5F, 0.75F, 1.0F, -0.5F, 1.5F, 0.3F, 0.30000001F};
        stops.clear();
        for (size_t n = g_random() % 7; n > 0; --n) {
            const float o = g_random() % 2 != 0 ? offsets[g_random() % 10] : Uniform(0.0F, 1.0F);
            stops.push_back({o, RandomColor()});
        }
        const auto matrix = [] {
            return Matrix{Uniform(-3, 3), Uniform(-1, 1),   Uniform(-1, 1),
                          Uniform(-3, 3), Uniform(-50, 50), Uniform(-50, 50)};
        };
        brush = g_random() % 2 != 0 ? matrix() : kIdentity;
        ctm = g_random() % 2 != 0 ? matrix() : kIdentity;
        opacity = g_random() % 2 != 0 ? 1.0F : 0.5F;
        factor = opacity == 1.0F ? 256 : 128;
    }

    uint32_t At(float t) const { return PlainScale(PlainPremultiply(PlainColor(stops, t)), factor); }
    uint32_t Outside(const TwoPointGradientBase& g) const {
        return g.hasBackground ? PlainScale(PackColor(g.background), factor) : 0;
    }
    uint32_t Color(const TwoPointGradientBase& g, float t) const {
        if (t < 0.0F || std::isnan(t)) {
            return g.extendStart ? At(0.0F) : Outside(g);
        }
        if (t > 1.0F) {
            return g.extendEnd ? At(1.0F) : Outside(g);
        }
        return At(t);
    }
    bool Inverse(double (&m)[6]) const {
        const Matrix f = IsIdentity(ctm) ? brush : Concat(brush, ctm);
        const double det = double(f.m00) * f.m11 - double(f.m01) * f.m10;
        const double k = 1.0 / det;
        m[0] = f.m11 * k;
        m[1] = -f.m01 * k;
        m[2] = -f.m10 * k;
        m[3] = f.m00 * k;
        m[4] = (double(f.m10) * f.m21 - double(f.m11) * f.m20) * k;
        m[5] = (double(f.m01) * f.m20 - double(f.m00) * f.m21) * k;
        return det != 0.0;
    }
};

template <class G> std::shared_ptr<G> RandomGradient(const Scene& scene) {
    auto g = std::make_shared<G>();
    g->stops.Add(scene.stops.data(), scene.stops.size());
    g->start = {Uniform(-50, 50), Uniform(-50, 50)};
    g->end = {Uniform(-50, 50), Uniform(-50, 50)};
    g->extendStart = g_random() % 2 != 0;
    g->extendEnd = g_random() % 2 != 0;
    g->hasBackground = g_random() % 2 != 0;
    g->background = UnpackColor(RandomColor());
    return g;
}

void ExpectPromises(SwColorSource& source, const std::vector<uint32_t>& row) {
    uint32_t solid = 0;
    const bool isSolid = source.IsSolid(solid);
    for (const uint32_t c : row) {
        if (isSolid) {
            ASSERT_EQ(c, solid);
        }
        if (source.IsOpaque()) {
            ASSERT_EQ(c >> 24, 255U);
        }
    }
}

constexpr Rect kBounds{0, 0, 100, 100};

TEST(GradientStops, KeepOrderOfEqualOffsetsAndLookUpTheFirst) {
    GradientStopCollection stops;
    const GradientStop added[] = {{1.0F, 4}, {0.5F, 2}, {kNaN, 9}, {0.0F, 1}, {0.5F, 3}};
    stops.Add(added, 2);
    stops.Add(added + 2, 3);
    std::vector<uint32_t> order;
    for (const GradientStop& s : stops) {
        order.push_back(s.color);
    }
    EXPECT_EQ(order, (std::vector<uint32_t>{1, 2, 3, 4, 9}));
    const GradientSampler sampler(stops);
    EXPECT_EQ(sampler.ColorAt(0.5F), 2U);
    EXPECT_EQ(sampler.ColorAt(-1.0F), 1U);
    EXPECT_EQ(sampler.ColorAt(1.0F), 4U);
    EXPECT_EQ(GradientSampler(GradientStopCollection()).ColorAt(0.5F), 0U);
}

TEST(GradientShade, EqualsThePlainLookupAtEveryOffsetAndLength) {
    for (const auto& kernels : EveryKernelSet<PaintKernels>()) {
        for (int round = 0; round < 2000; ++round) {
            Scene scene;
            scene.Randomize();
            GradientStopCollection stops;
            stops.Add(scene.stops.data(), scene.stops.size());
            const GradientSampler sampler(stops);
            GradientShade shade{&sampler, sampler.IntervalAt(0.0F), 11, 22, 33, scene.factor};
            std::vector<float> t(g_random() % 40);
            float next = Uniform(-0.2F, 0.2F);
            const float step = Uniform(0.0F, 0.1F);
            for (float& v : t) {
                const float special[] = {0.0F, -0.0F, 1.0F, 0.5F, 0.25F, 0.3F, kNaN, kInf, -kInf, 1.0000001F, 1e-40F};
                v = g_random() % 8 == 0 ? special[g_random() % 11] : next;
                if (g_random() % 4 == 0) { // where shares of the outermost stops are whole, and beside
                    v = std::nextafter(static_cast<float>(g_random() % 256) / 255.0F, Uniform(-1, 2));
                }
                next += step;
            }
            std::vector<uint32_t> out(t.size() + 1, 7);
            kernels->shade(shade, t.data(), t.size(), out.data());
            EXPECT_EQ(out.back(), 7U);
            for (size_t i = 0; i < t.size(); ++i) {
                const uint32_t expected = t[i] < 0 ? 11 : t[i] > 1 ? 22 : std::isnan(t[i]) ? 33 : scene.At(t[i]);
                ASSERT_EQ(out[i], expected) << kernels.name << " round " << round << " t " << t[i];
            }
        }
    }
}

TEST(GradientShade, IntervalsBelowAndAboveWhatAFactorHoldsAreDivided) {
    // 255 / length is infinite for the first ones and without bits for the last.
    const std::pair<float, float> intervals[] = {{0.0F, 1e-37F}, {0.0F, 3e-39F}, {0.25F, 0.25000003F}, {-3e38F, 3e37F}};
    for (const auto& kernels : EveryKernelSet<PaintKernels>()) {
        for (const auto& [lower, upper] : intervals) {
            Scene scene;
            scene.stops = {{lower, 0xFF102030U}, {upper, 0x80F0E0D0U}};
            scene.factor = 256;
            GradientStopCollection stops;
            stops.Add(scene.stops.data(), scene.stops.size());
            const GradientSampler sampler(stops);
            GradientShade shade{&sampler, sampler.IntervalAt(0.0F), 11, 22, 33, scene.factor};
            std::vector<float> t(48);
            for (size_t i = 0; i < t.size(); ++i) {
                const float low = std::max(lower, 0.0F), high = std::min(upper, 1.0F);
                t[i] = low + (high - low) * (static_cast<float>(i) / 48.0F);
            }
            std::vector<uint32_t> out(t.size());
            kernels->shade(shade, t.data(), t.size(), out.data());
            for (size_t i = 0; i < t.size(); ++i) {
                ASSERT_EQ(out[i], scene.At(t[i]))
                    << kernels.name << " from " << lower << " to " << upper << " at " << t[i];
            }
        }
    }
}

TEST(Accumulation, EqualsRepeatedAdditionBitForBit) {
    for (const auto& kernels : EveryKernelSet<PaintKernels>()) {
        for (int round = 0; round < 3000; ++round) {
            const float scales[] = {1e-30F, 1e-3F, 1.0F, 1000.0F, 3e7F, 1e38F};
            float v = Uniform(-1, 1) * scales[g_random() % 6];
            float step = Uniform(-1, 1) * scales[g_random() % 5];
            switch (g_random() % 8) {
            case 0:
                step = std::ldexp(static_cast<float>(g_random() % 7), -20); // many ties
                v = 4.0F + std::ldexp(static_cast<float>(g_random() % 9), -21);
                break;
            case 1: {
                const float odd[] = {0.0F, -0.0F, kNaN, kInf, 1e-45F, 1.0F, -0.5F};
                step = odd[g_random() % 7];
                break;
            }
            case 2:
                v = std::ldexp(1.0F, static_cast<int>(g_random() % 5)) + 1.0F; // down across a binade's lower end
                step = -std::ldexp(1.0F + Uniform(0, 1), -static_cast<int>(g_random() % 9));
                break;
            default:
                break;
            }
            const size_t count = g_random() % 700;
            std::vector<float> out(count + 1, 123.0F);
            float plain = v;
            const float next = kernels->accumulate(v, step, out.data(), count);
            for (size_t i = 0; i < count; ++i, plain += step) {
                ASSERT_TRUE(std::memcmp(&out[i], &plain, 4) == 0 || (std::isnan(out[i]) && std::isnan(plain)))
                    << v << " + " << step << " term " << i << ": " << out[i] << " for " << plain;
            }
            ASSERT_TRUE(next == plain || std::isnan(plain));
            ASSERT_EQ(out[count], 123.0F);
        }
    }
}

TEST(LinearGradientSource, EqualsFormula) {
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        KernelTable<PaintKernels>::Select(round < 299 ? KernelSetOfRound<PaintKernels>(round).kernels : nullptr);
        Scene scene;
        scene.Randomize();
        const auto g = RandomGradient<LinearGradient>(scene);
        if (round % 10 == 0) {
            g->end.x = g->start.x; // upright axis
        }
        GradientBrush brush(g);
        brush.transform = scene.brush;
        brush.opacity = scene.opacity;
        Arena arena;
        SwColorSource* source = SwColorSource::Create(arena, InkOf(brush), kBounds, scene.ctm);
        double m[6];
        ASSERT_TRUE(scene.Inverse(m));
        const double sx = g->start.x, sy = g->start.y;
        const double ax = g->end.x - sx, ay = g->end.y - sy, square = ax * ax + ay * ay;
        const auto dtdx = static_cast<float>((m[0] * ax + m[1] * ay) / square);
        const auto dtdy = static_cast<float>((m[2] * ax + m[3] * ay) / square);
        const auto t0 = static_cast<float>(((m[4] - sx) * ax + (m[5] - sy) * ay) / square);
        for (const int32_t y : {-40, 0, 17, 500}) {
            const int32_t x0 = static_cast<int32_t>(g_random() % 200) - 100;
            const std::vector<uint32_t> row = Row(*source, x0, x0 + 1 + static_cast<int32_t>(g_random() % 600), y);
            ExpectPromises(*source, row);
            float t = static_cast<float>(y) * dtdy + static_cast<float>(x0) * dtdx + t0;
            for (size_t i = 0; i < row.size(); ++i, t += dtdx) {
                ASSERT_EQ(row[i], scene.Color(*g, t)) << "pixel " << i << " t " << t;
            }
        }
    }
}

TEST(LinearGradientSource, WhereStepsOverflowIsBeforeTheStart) {
    // An axis so short that the steps across and down overflow, with both signs: infinity minus infinity is no number.
    const auto g = std::make_shared<LinearGradient>();
    const GradientStop stops[] = {{0.0F, 0xFF112233U}, {1.0F, 0xFF445566U}};
    g->stops.Add(stops, 2);
    g->start = {0, 0};
    g->end = {1e-38F, -1e-38F};
    g->extendStart = true;
    g->extendEnd = true;
    g->hasBackground = true;
    g->background = UnpackColor(0xFFFF0000U);
    Arena arena;
    SwColorSource* source = SwColorSource::Create(arena, InkOf(GradientBrush(g)), kBounds, kIdentity);
    EXPECT_EQ(Row(*source, 100, 120, 100), std::vector<uint32_t>(20, 0xFF112233U));
}

TEST(RadialGradientSource, EqualsFormula) {
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        KernelTable<PaintKernels>::Select(round < 299 ? KernelSetOfRound<PaintKernels>(round).kernels : nullptr);
        Scene scene;
        scene.Randomize();
        const auto g = RandomGradient<RadialGradient>(scene);
        g->startRadius = Uniform(-5, 30);
        g->endRadius = Uniform(0, 80);
        if (round % 4 == 0) {
            g->end = g->start;
        }
        if (round % 7 == 0) { // the circles touch from inside: the equation is linear
            g->start = {0, 0};
            g->end = {16, 0};
            g->startRadius = 8;
            g->endRadius = 24;
        }
        GradientBrush brush(g);
        brush.transform = scene.brush;
        brush.opacity = scene.opacity;
        Arena arena;
        SwColorSource* source = SwColorSource::Create(arena, InkOf(brush), kBounds, scene.ctm);
        double m[6];
        ASSERT_TRUE(scene.Inverse(m));
        const float dr = g->endRadius - g->startRadius;
        const float a = static_cast<float>(m[0] / dr), b = static_cast<float>(m[1] / dr);
        const float c = static_cast<float>(m[2] / dr), d = static_cast<float>(m[3] / dr);
        const float e = static_cast<float>((m[4] - g->start.x) / dr), f = static_cast<float>((m[5] - g->start.y) / dr);
        const float ex = (g->start.x - g->end.x) / dr, ey = (g->start.y - g->end.y) / dr, gg = g->startRadius / dr;
        const float A = ex * ex + ey * ey - 1.0F, qa4 = A * 4.0F, qinv = 1.0F / (A + A);
        for (const int32_t y : {-60, 0, 33}) {
            const int32_t x0 = static_cast<int32_t>(g_random() % 200) - 100;
            const std::vector<uint32_t> row = Row(*source, x0, x0 + 1 + static_cast<int32_t>(g_random() % 500), y);
            ExpectPromises(*source, row);
            float u = a * static_cast<float>(x0) + c * static_cast<float>(y) + e;
            float v = b * static_cast<float>(x0) + d * static_cast<float>(y) + f;
            float B = 2.0F * (u * ex + v * ey - gg);
            for (size_t i = 0; i < row.size(); ++i, u += a, v += b, B += 2.0F * (ex * a + ey * b)) {
                const float C = u * u + v * v - gg * gg;
                float t = -C / B;
                bool outside = false;
                if (qa4 != 0.0F) {
                    const float D = B * B - qa4 * C;
                    outside = D < 0.0F;
                    const float s = std::sqrt(D);
                    const float t1 = (s - B) * qinv;
                    t = D == 0.0F ? -B * qinv : t1 >= 0.0F && t1 <= 1.0F ? t1 : (-B - s) * qinv;
                    t = std::isnan(D) ? 0.0F : t;
                }
                ASSERT_EQ(row[i], outside ? scene.Outside(*g) : scene.Color(*g, t)) << "pixel " << i << " t " << t;
            }
        }
    }
}

/// Terms are kept from row to row; another row, other runs or a chunk between them must not take them for their own.
TEST(RadialGradientSource, RowsDoNotDependOnTheRowsBefore) {
    const auto run = [](int32_t x0, int32_t x1) { return CoverageRun{x0, x1, nullptr, 255}; };
    const std::vector<CoverageRun> layouts[] = {
        {run(3, 200)},
        {run(40, 60)},
        {run(3, 4), run(4, 199), run(199, 200)},
        {run(3, 20), run(20, 60), run(60, 100), run(100, 200)},
        {run(3, 2600)},
        {run(2, 299), run(299, 300)},
        {run(-5, 35), run(35, 36), run(36, 400)},
    };
    for (int round = 0; round < 40; ++round) {
        Scene scene;
        scene.Randomize();
        scene.brush = kIdentity;
        scene.ctm = round % 4 == 0 ? Matrix{0, 2, -2, 0, 10, 20} : Matrix{1.5F, 0, 0, 1, 0, 0.5F};
        const auto g = RandomGradient<RadialGradient>(scene);
        g->startRadius = Uniform(-5, 30);
        g->endRadius = Uniform(40, 80);
        if (round % 2 == 0) {
            g->end = g->start;
        }
        const GradientBrush brush(g);
        Arena arena;
        SwColorSource* kept = SwColorSource::Create(arena, InkOf(brush), kBounds, scene.ctm);
        for (int32_t y = 0; y < 60; ++y) {
            const auto& runs = layouts[g_random() % (y < 30 ? 3 : std::size(layouts))];
            const auto width = static_cast<size_t>(runs.back().x1 - runs.front().x0);
            std::vector<uint32_t> out(width);
            std::vector<uint32_t> expected(width);
            kept->FillRuns(runs, y, out.data());
            SwColorSource::Create(arena, InkOf(brush), kBounds, scene.ctm)->FillRuns(runs, y, expected.data());
            ASSERT_EQ(out, expected) << "round " << round << " row " << y;
        }
    }
}

TEST(RadialGradientSource, IsNotOpaqueWhereNoCirclePasses) {
    // Two circles side by side: their tangents leave a wedge on either side that no circle reaches.
    const auto g = std::make_shared<RadialGradient>();
    const GradientStop stops[] = {{0.0F, 0xFF112233U}, {1.0F, 0xFF445566U}};
    g->stops.Add(stops, 2);
    g->start = {20, 50};
    g->startRadius = 5;
    g->end = {60, 50};
    g->endRadius = 15;
    g->extendStart = g->extendEnd = true;
    for (const uint32_t background : {0U, 0x80402010U, 0xFF804020U}) {
        g->hasBackground = background != 0;
        g->background = UnpackColor(background);
        Arena arena;
        SwColorSource* source = SwColorSource::Create(arena, InkOf(GradientBrush(g)), kBounds, kIdentity);
        const std::vector<uint32_t> row = Row(*source, 0, 5, 0);
        EXPECT_EQ(row[0] >> 24, background >> 24);
        EXPECT_EQ(source->IsOpaque(), background >> 24 == 255);
    }
}

TEST(RadialGradientSource, ThatIsOpaqueLeavesNoPixelToTheBackground) {
    // No background, centres at and near the border of the end circle, coordinates of every size.
    int opaque = 0;
    for (int round = 0; round < 4000; ++round) {
        const auto g = std::make_shared<RadialGradient>();
        const GradientStop stops[] = {{0.0F, 0xFF112233U}, {1.0F, 0xFF445566U}};
        g->stops.Add(stops, 2);
        const float radii[] = {0.0F, 0.0F, 0.0F, 1.0e-30F, 0.1F, 40.0F};
        const float sizes[] = {1.0F, 1.0e-3F, 1.0e4F, 1.0e18F, 1.0e-25F};
        const float size = sizes[g_random() % 5];
        const float angle = Uniform(0.0F, 6.2831855F);
        const float distances[] = {0.0F, Uniform(0.0F, 1.0F), 1.0F, 0.99999994F, 0.999F, 1.01F};
        const float distance = 50.0F * size * distances[g_random() % 6];
        g->start = {Uniform(0, 100) * size, Uniform(0, 100) * size};
        g->startRadius = radii[g_random() % 6] * size;
        g->end = {g->start.x + distance * std::cos(angle), g->start.y + distance * std::sin(angle)};
        g->endRadius = 50.0F * size;
        g->extendStart = g->extendEnd = true;
        const bool atApex = round % 4 == 0; // of the cone, in the middle of the row: start + (start - end)
        if (atApex) {
            const auto radius = static_cast<float>(3 + g_random() % 40);
            g->start = {static_cast<float>(g_random() % 500), static_cast<float>(g_random() % 500)};
            g->end = {g->start.x + 1.0F, g->start.y - static_cast<float>(g_random() % 3)};
            g->startRadius = radius;
            g->endRadius = 2.0F * radius;
        }
        const float scale = 1.0F / size;
        const float across = Uniform(-1, 1) * scale;
        const float down = Uniform(-1, 1) * scale;
        const Matrix toDevice = atApex ? kIdentity : Matrix{scale, across, down, scale, 0, 0};
        Arena arena;
        SwColorSource* source = SwColorSource::Create(arena, InkOf(GradientBrush(g)), kBounds, toDevice);
        if (!source->IsOpaque()) {
            continue;
        }
        ++opaque;
        // The start, where all terms cancel, among others.
        const float apexX = 2.0F * g->start.x - g->end.x;
        const float apexY = 2.0F * g->start.y - g->end.y;
        const auto x = static_cast<int32_t>(atApex ? apexX : g->start.x * scale + g->start.y * down) - 3;
        const auto y = static_cast<int32_t>(atApex ? apexY : g->start.x * across + g->start.y * scale);
        for (const auto& [left, at] : {IntPoint{x, y}, {x, y + 1}, {0, 0}, {-100000, 70000}, {30000000, -2}}) {
            for (const uint32_t pixel : Row(*source, left, left + 21, at)) {
                ASSERT_EQ(pixel >> 24, 255U) << "round " << round << " from " << left << " " << at;
            }
        }
    }
    EXPECT_GT(opaque, 500);
}

TEST(GradientSources, WithoutExtentOrInverseAreBackground) {
    Arena arena;
    const GradientStop stops[] = {{0.0F, 0xFFFF0000U}, {1.0F, 0xFF00FF00U}};
    for (const bool hasBackground : {false, true}) {
        const auto linear = std::make_shared<LinearGradient>();
        const auto radial = std::make_shared<RadialGradient>();
        for (TwoPointGradientBase* g :
             {static_cast<TwoPointGradientBase*>(linear.get()), static_cast<TwoPointGradientBase*>(radial.get())}) {
            g->stops.Add(stops, 2);
            g->extendStart = g->extendEnd = true;
            g->hasBackground = hasBackground;
            g->background = UnpackColor(0x80FFFFFFU);
        }
        radial->end = {5, 5};
        radial->startRadius = radial->endRadius = 3;
        const uint32_t expected = hasBackground ? PackColor(linear->background) : 0; // not premultiplied
        EXPECT_EQ(Row(*SwColorSource::Create(arena, InkOf(GradientBrush(linear)), kBounds, kIdentity), -3, 9, 4),
                  std::vector<uint32_t>(12, expected));
        EXPECT_EQ(Row(*SwColorSource::Create(arena, InkOf(GradientBrush(radial)), kBounds, kIdentity), -3, 9, 4),
                  std::vector<uint32_t>(12, expected));
        linear->end = {10, 0};
        for (const Matrix& m : {Matrix{1, 1, 1, 1, 0, 0}, Matrix{kNaN, 0, 0, 1, 0, 0}, Matrix{1, 0, 0, 1, kInf, 0}}) {
            EXPECT_EQ(Row(*SwColorSource::Create(arena, InkOf(GradientBrush(linear)), kBounds, m), -3, 9, 4),
                      std::vector<uint32_t>(12, expected));
        }
        linear->end = linear->start;
    }
}

class StrangeBrush final : public Brush {
public:
    [[nodiscard]] uint32_t Kind() const noexcept override { return 2; }
};

TEST(ColorSource, UnknownBrushIsNotImplemented) {
    Arena arena;
    EXPECT_THROW(static_cast<void>(SwColorSource::Create(arena, InkOf(StrangeBrush()), kBounds, kIdentity)), Exception);
}

} // namespace
