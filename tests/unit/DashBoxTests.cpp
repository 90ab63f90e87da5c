// SPDX-License-Identifier: MIT
// Dashes of level and upright lines as rectangles against the same dashes as outlines of the pen: every byte of
// coverage.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "Geometry/DeviceFeed.h"
#include "Geometry/Geometry.h"
#include "GridSink.h"
#include "Scan/Rasterizer.h"

using namespace Graphics;

namespace {

/// A rasterizer that takes outlines only.
class OutlinesOnly {
public:
    explicit OutlinesOnly(Rasterizer& rasterizer) : m_rasterizer(rasterizer) {}
    void SetFillRule(uint32_t rule) { m_rasterizer.SetFillRule(rule); }
    void BeginFigure(const Point& start) { m_rasterizer.BeginFigure(start); }
    void EndFigure() { m_rasterizer.EndFigure(); }
    void EndFigureClose() { m_rasterizer.EndFigureClose(); }
    void LineTo(const Point& p) { m_rasterizer.LineTo(p); }
    void CubicTo(const Point& c1, const Point& c2, const Point& end) { m_rasterizer.CubicTo(c1, c2, end); }

private:
    Rasterizer& m_rasterizer;
};
static_assert(TakesBoxes<Rasterizer> && !TakesBoxes<OutlinesOnly>);

/// Spoils what it was lent, and takes blocks if it may.
class PlaneSink final : public GridSink {
public:
    PlaneSink(const IntRect& visible, bool blocks) : GridSink(visible), m_blocks(blocks) {}

    void Row(int32_t y, std::span<CoverageRun> runs) override {
        GridSink::Row(y, runs);
        for (const CoverageRun& run : runs) {
            if (run.shape != nullptr) {
                std::fill(run.shape, run.shape + (run.x1 - run.x0), uint8_t{77});
            }
        }
    }
    bool Rows(int32_t y0, int32_t y1, std::span<const CoverageRun> runs) override {
        for (int32_t y = y0; m_blocks && y < y1; ++y) {
            for (const CoverageRun& run : runs) {
                for (int32_t x = run.x0; x < run.x1; ++x) {
                    EXPECT_EQ(grid.At(x, y), 0) << "twice at " << x << ", " << y;
                    grid.At(x, y) = run.shape == nullptr ? run.value : run.shape[x - run.x0];
                }
            }
        }
        taken += m_blocks ? 1 : 0;
        return m_blocks;
    }

    int taken = 0;

private:
    bool m_blocks;
};

} // namespace

TEST(DashBoxes, HaveTheCoverageOfThePensOutlines) {
    std::mt19937 random(77);
    const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<uint32_t>(n)); };
    const auto number = [&](float low, float high) { return std::uniform_real_distribution<float>(low, high)(random); };
    Rasterizer boxes, outlines;
    PenStorage storage;
    int taken = 0;
    for (int round = 0; round < 6000; ++round) {
        const IntRect area{0, 0, 60 + pick(60), 40 + pick(60)};
        IntRect visible = area;
        if (pick(3) == 0) {
            visible = {pick(30), pick(20), 31 + pick(29), 21 + pick(19)};
        }
        const bool adjust = pick(2) == 0;
        const bool whole = pick(3) == 0; // lengths on the grid
        const auto length = [&](float most) {
            const float v = number(0, most);
            return whole ? std::floor(v) : v;
        };
        StrokeStyle style;
        style.cap = static_cast<uint32_t>(pick(5) == 0   ? GXLineCapRound
                                          : pick(2) == 0 ? GXLineCapFlat
                                                         : GXLineCapSquare);
        style.dashCount = static_cast<uint32_t>(1 + pick(4));
        for (uint32_t i = 0; i < style.dashCount; ++i) {
            style.dashes[i] = pick(6) == 0 ? 0.0F : length(pick(3) == 0 ? 40.0F : 5.0F);
        }
        style.dashes[0] += style.dashCount == 1 || whole ? 1.0F : 0.01F;
        style.dashPhase = pick(2) == 0 ? 0.0F : length(20) - 10;
        const float width = pick(8) == 0 ? 0.0F : length(pick(5) == 0 ? 30.0F : 4.0F);
        const float sx = pick(3) == 0 ? 1.0F : number(0.2F, 3) * (pick(2) == 0 ? 1.0F : -1.0F);
        const float sy = pick(2) == 0 ? sx : number(0.2F, 3);
        Matrix m{sx, 0, 0, sy, sx < 0 ? 100.0F : number(0, 3), length(4)};
        if (pick(3) == 0) {
            m = {0, sx, sy, 0, length(4), sx < 0 ? 80.0F : 0.0F};
        } else if (pick(20) == 0) {
            m.m10 = 0.01F;
        }
        Geometry shape;
        const int figures = pick(4) == 0 ? 2 : 1;
        for (int f = 0; f < figures; ++f) {
            const float far = pick(5) == 0 ? 5000.0F : 130.0F;
            const Point a{length(far) - 20, length(60)};
            const float to = length(far) - 20;
            shape.BeginFigure(a);
            shape.LineTo(pick(2) == 0 ? Point{to, a.y} : Point{a.x, to});
            if (pick(10) == 0) {
                shape.LineTo({to, to});
            }
            pick(10) == 0 ? shape.EndFigureClose() : shape.EndFigure();
        }

        PlaneSink expected(visible, false), actual(visible, pick(2) == 0);
        const Rect clip{0, 0, static_cast<float>(area.right), static_cast<float>(area.bottom)};
        const Rect seen{static_cast<float>(visible.left), static_cast<float>(visible.top),
                        static_cast<float>(visible.right), static_cast<float>(visible.bottom)};
        boxes.Begin(clip, visible, adjust);
        FeedStroke(shape, m, style, width, adjust, storage, seen, boxes);
        boxes.Finish(actual);
        outlines.Begin(clip, visible, adjust);
        OutlinesOnly hidden(outlines);
        FeedStroke(shape, m, style, width, adjust, storage, seen, hidden);
        outlines.Finish(expected);
        ASSERT_EQ(expected.grid.value, actual.grid.value) << "round " << round;
        ASSERT_EQ(expected.rectangles.size(), actual.rectangles.size()) << "round " << round;
        for (size_t i = 0; i < expected.rectangles.size(); ++i) {
            ASSERT_TRUE(expected.rectangles[i] == actual.rectangles[i]) << "round " << round;
        }
        ASSERT_EQ(expected.subs, actual.subs) << "round " << round;
        taken += actual.taken != 0 ? 1 : 0;
    }
    EXPECT_GT(taken, 300);
}
