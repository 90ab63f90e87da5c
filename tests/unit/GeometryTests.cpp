// SPDX-License-Identifier: MIT
// Stored paths, curves as lines, and the chain that brings a shape to the device.
#include <gtest/gtest.h>

#include <random>

#include "Exception.h"
#include "Geometry/DeviceFeed.h"
#include "Geometry/Figures.h"
#include "Geometry/Geometry.h"
#include "Winding.h"

using namespace Graphics;

namespace {

std::vector<Point> PointsOf(const Shape& shape) {
    std::vector<Point> all;
    for (const Figure& f : shape.Figures()) {
        all.insert(all.end(), f.Points().begin(), f.Points().end());
    }
    return all;
}

std::vector<Point> Flatten(float tolerance, const Point (&c)[4]) {
    CurveFlattener flattener(tolerance, c[0], c[1], c[2], c[3]);
    std::vector<Point> out;
    for (Point p{}; flattener.Next(p);) {
        out.push_back(p);
    }
    return out;
}

} // namespace

TEST(Shape, KeepsPointsAndKindsWhileTheStoreGrows) {
    std::mt19937 random(5);
    Shape shape;
    std::vector<Point> points;
    std::vector<uint8_t> kinds;
    const auto next = [&] {
        points.push_back({static_cast<float>(random() % 1000), static_cast<float>(random() % 1000)});
        return points.back();
    };
    shape.BeginFigure(next());
    for (int i = 0; i < 5000; ++i) {
        kinds.push_back(random() % 2 ? Figure::kCubic : Figure::kLine);
        if (kinds.back() == Figure::kLine) {
            shape.LineTo(next());
        } else {
            const Point a = next(), b = next(), c = next();
            shape.CubicTo(a, b, c);
        }
    }
    shape.EndFigure();
    const Figure& figure = shape.Figures()[0];
    ASSERT_EQ(figure.Points().size(), points.size());
    for (size_t i = 0; i < points.size(); ++i) {
        ASSERT_EQ(figure.Points()[i].x, points[i].x) << i;
        ASSERT_EQ(figure.Points()[i].y, points[i].y) << i;
    }
    for (uint32_t i = 0; i < kinds.size(); ++i) {
        ASSERT_EQ(figure.Kind(i), kinds[i]) << i;
    }
    Shape copy;
    shape.Replay(copy);
    EXPECT_TRUE(copy.Equals(shape));
}

TEST(Shape, AFailedAllocationKeepsWhatWasThere) {
    Shape shape;
    shape.BeginFigure({0, 0});
    ProcessHeap::FailAfter(0);
    int added = 0;
    EXPECT_THROW(
        for (; added < 1000; ++added) {
            shape.LineTo({static_cast<float>(added), 1});
        },
        Exception);
    ProcessHeap::FailAfter(-1);
    shape.EndFigure();
    ASSERT_EQ(shape.Figures().size(), 1U);
    EXPECT_EQ(shape.Figures()[0].SegmentCount(), static_cast<uint32_t>(added));
}

TEST(Shape, ClearedShapesTakeNoMemory) {
    Shape shape;
    AddEllipse(shape, {0, 0, 10, 10});
    shape.Clear();
    EXPECT_TRUE(shape.Empty());
    const int64_t before = ProcessHeap::FailAfter(-1);
    AddEllipse(shape, {0, 0, 10, 10});
    EXPECT_EQ(ProcessHeap::FailAfter(-1), before);
    EXPECT_EQ(shape.ControlBox().right, 10);
}

TEST(CurveFlattener, StraightAndPointCurvesHaveOnlyTheirEnd) {
    EXPECT_TRUE(Flatten(0.25F, {{0, 0}, {10, 5}, {20, 10}, {30, 15}}).empty());
    EXPECT_TRUE(Flatten(0.25F, {{7, 7}, {7, 7}, {7, 7}, {7, 7}}).empty());
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(Flatten(0.25F, {{0, 0}, {nan, nan}, {nan, nan}, {1, 1}}).empty());
}

TEST(CurveFlattener, StaysWithinTheToleranceOfTheCurve) {
    std::mt19937 random(11);
    std::uniform_real_distribution<float> place(-300, 300);
    for (int round = 0; round < 200; ++round) {
        const Point c[4] = {{place(random), place(random)},
                            {place(random), place(random)},
                            {place(random), place(random)},
                            {place(random), place(random)}};
        std::vector<Point> points = Flatten(0.25F, c);
        ASSERT_LT(points.size(), Flatten(0.01F, c).size());
        points.insert(points.begin(), c[0]);
        points.push_back(c[3]);
        for (int i = 0; i <= 300; ++i) {
            const double t = i / 300.0, s = 1 - t;
            const double x = s * s * s * c[0].x + 3 * s * s * t * c[1].x + 3 * s * t * t * c[2].x + t * t * t * c[3].x;
            const double y = s * s * s * c[0].y + 3 * s * s * t * c[1].y + 3 * s * t * t * c[2].y + t * t * t * c[3].y;
            double nearest = 1e9;
            for (size_t k = 0; k + 1 < points.size(); ++k) {
                nearest = std::min(nearest, DistanceTo({points[k], points[k + 1]}, x, y));
            }
            ASSERT_LT(nearest, 0.26) << "round " << round << " t " << t;
        }
    }
}

/// Floats at 1e20 are 8.8e12 apart: what a finer tolerance asks for is rounding noise, and took millions of steps.
TEST(CurveFlattener, StepsAreBoundedByWhatFloatsResolve) {
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        const float size = std::ldexp(1.0F, 20 + static_cast<int>(random() % 100));
        const auto place = [&] { return size * (static_cast<float>(random() >> 8) / 8388608.0F - 1); };
        Point c[4];
        for (Point& p : c) {
            p = {round % 3 == 0 ? size : place(), round % 5 == 0 ? 7 : place()};
        }
        EXPECT_LE(Flatten(0.25F, c).size(), 20000U) << round << ' ' << size;
    }
}

TEST(FeedFill, DropsOnlyFiguresThatAreNotFinite) {
    Shape shape;
    shape.SetFillRule(1);
    AddRectangle(shape, {0, 0, 5, 5});
    AddRectangle(shape, {std::numeric_limits<float>::quiet_NaN(), 0, 5, 5});
    AddRectangle(shape, {10, 0, 1e38F, 5});
    AddRectangle(shape, {20, 0, 25, 5});
    Shape out;
    FeedFill(shape, {10, 0, 0, 10, 0, 0}, out);
    EXPECT_EQ(out.FillRule(), 1U);
    ASSERT_EQ(out.Figures().size(), 2U);
    EXPECT_EQ(out.ControlBox().right, 250);
}

TEST(FeedFill, PassesShapesInsideTheBandUnchanged) {
    Shape shape;
    AddEllipse(shape, {0, 0, 50, 30});
    Shape out;
    FeedFill(shape, kIdentity, out);
    EXPECT_TRUE(out.Equals(shape));
}

TEST(FeedFill, BoundsTheWorkOfHugeCurves) {
    for (const float size : {1e6F, 1e9F, 1e15F, 1e30F}) {
        Shape shape;
        shape.BeginFigure({0, 0});
        shape.CubicTo({size, -size}, {-size, -size * 0.7F}, {100, 50});
        shape.CubicTo({size, 30}, {-size, 20}, {0, 10});
        shape.EndFigureClose();
        Shape out;
        FeedFill(shape, kIdentity, out);
        EXPECT_LT(PointsOf(out).size(), 5000U) << size;
        // Turned over and stretched as no target is wide.
        Shape disc, wide;
        AddEllipse(disc, {0, 0, 50, 30});
        FeedFill(disc, {-size, 0, 0, 1, 0, 0}, wide);
        EXPECT_LT(PointsOf(wide).size(), 50000U) << size;
        for (const Point& p : PointsOf(out)) {
            ASSERT_LE(std::fabs(p.x), 32535.0F);
            ASSERT_LE(std::fabs(p.y), 32535.0F);
        }
    }
}
