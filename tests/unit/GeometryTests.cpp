// SPDX-License-Identifier: MIT
// Stored paths, curves as lines, and the chain that brings a shape to the device.
#include <gtest/gtest.h>

#include <atomic>
#include <list>
#include <map>
#include <optional>
#include <random>
#include <sstream>
#include <thread>

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

/// All that a shape says, read in full.
std::string Text(const Shape& shape) {
    std::ostringstream text;
    const Rect box = shape.ControlBox();
    text << shape.FillRule() << " [" << box.left << ' ' << box.right << "] " << shape.Figures().size();
    for (const Figure& f : shape.Figures()) {
        text << (f.Closed() ? " closed" : " open");
        for (const Point& p : f.Points()) {
            text << ' ' << p.x << ',' << p.y;
        }
    }
    return text.str();
}

/// The nth figure of a path that many hold.
void Grow(Geometry& geometry, int n) {
    const auto at = static_cast<float>(n);
    geometry.AddClosed([&](auto& sink) { AddRectangle(sink, {at, at, at + 2, at + 1}); });
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
    Geometry shape;
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
    const Figure& figure = shape.Figures().front();
    ASSERT_EQ(figure.Points().size(), points.size());
    for (size_t i = 0; i < points.size(); ++i) {
        ASSERT_EQ(figure.Points()[i].x, points[i].x) << i;
        ASSERT_EQ(figure.Points()[i].y, points[i].y) << i;
    }
    for (uint32_t i = 0; i < kinds.size(); ++i) {
        ASSERT_EQ(figure.Kind(i), kinds[i]) << i;
    }
    Geometry copy;
    shape.Replay(copy);
    EXPECT_TRUE(copy.Equals(shape));
}

TEST(Shape, CopiesStayAsTheyWereWhateverBecomesOfTheGeometry) {
    struct Copy {
        Shape shape;
        std::string text;
        uint64_t identity;
    };
    std::mt19937 random(17);
    std::list<Copy> copies;
    std::map<uint64_t, std::string> known; // what each identity has ever stood for
    for (int round = 0; round < 10; ++round) {
        std::optional<Geometry> geometry(std::in_place);
        for (int step = 0; step < 200; ++step) {
            const Point p{static_cast<float>(random() % 100), static_cast<float>(random() % 100)};
            switch (random() % 12) {
            case 0:
                geometry->SetFillRule(random() % 2);
                break;
            case 1:
                geometry->EndFigure();
                break;
            case 2:
                geometry->EndFigureClose();
                break;
            case 3:
            case 4:
                geometry->BeginFigure(p);
                break;
            case 5:
            case 6:
                geometry->LineTo(p);
                break;
            case 7:
                geometry->CubicTo(p, {1, 2}, {3, 4});
                break;
            case 8:
            case 9:
                Grow(*geometry, step);
                break;
            case 10:
                if (random() % 20 == 0) {
                    geometry->Clear();
                }
                break;
            default:
                copies.push_back({*geometry, Text(*geometry), geometry->Identity()});
                ASSERT_EQ(known.try_emplace(copies.back().identity, copies.back().text).first->second,
                          copies.back().text);
            }
            if (!copies.empty() && random() % 25 == 0) {
                copies.erase(std::next(copies.begin(), static_cast<int>(random() % copies.size())));
            }
        }
        geometry.reset();
        for (const Copy& copy : copies) {
            ASSERT_EQ(Text(copy.shape), copy.text) << round;
            ASSERT_EQ(copy.shape.Identity(), copy.identity) << round;
        }
    }
}

/// As when a host draws or clips with a path after each figure, and what it draws is kept for later.
TEST(Shape, APathGrowsAtTheSameCostWhileCopiesAreHeld) {
    const auto allocations = [](bool holds) {
        constexpr int kFigures = 3000;
        std::list<Shape> held;
        Geometry geometry;
        const int64_t before = ProcessHeap::FailAfter(-1);
        for (int i = 0; i < kFigures; ++i) {
            Grow(geometry, i);
            if (holds) {
                held.emplace_back(geometry);
            }
        }
        const int64_t taken = ProcessHeap::FailAfter(-1) - before;
        EXPECT_LE(taken, kFigures + 20) << "a block for each figure, and few for the list";
        EXPECT_EQ(held.empty() ? size_t{kFigures} : held.back().Figures().size(), size_t{kFigures});
        return taken;
    };
    EXPECT_EQ(allocations(true), allocations(false));
}

TEST(Shape, ThreadsReadCopiesWhileTheGeometryGrows) {
    constexpr int kSteps = 400;
    Geometry geometry;
    std::atomic<int> next{0};
    std::vector<std::optional<Shape>> copies(kSteps);
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&, t] {
            for (int step = t; step < kSteps; step += 3) {
                while (next.load(std::memory_order_acquire) <= step) {
                    std::this_thread::yield();
                }
                std::optional<Shape>& copy = copies[static_cast<size_t>(step)];
                EXPECT_EQ(copy->Figures().size(), static_cast<size_t>(step) + 1);
                EXPECT_EQ(copy->ControlBox().right, static_cast<float>(step) + 2);
                float sum = 0;
                for (const Point& p : PointsOf(*copy)) {
                    sum += p.x;
                }
                EXPECT_EQ(sum, static_cast<float>(2 * (step + 1) * (step + 2)));
                copy.reset();
            }
        });
    }
    for (int step = 0; step < kSteps; ++step) {
        Grow(geometry, step);
        copies[static_cast<size_t>(step)].emplace(geometry);
        next.store(step + 1, std::memory_order_release);
    }
    geometry.Clear(); // a copy may be given back meanwhile, and the blocks be taken again
    Grow(geometry, 7);
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(PointsOf(geometry).size(), 4U);
}

TEST(Shape, AFailedAllocationKeepsWhatWasThere) {
    Geometry shape;
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
    EXPECT_EQ(shape.Figures().front().SegmentCount(), static_cast<uint32_t>(added));
}

TEST(Shape, ClearedShapesTakeNoMemory) {
    Geometry shape;
    AddEllipse(shape, {0, 0, 10, 10});
    shape.Clear();
    EXPECT_TRUE(shape.Empty());
    const int64_t before = ProcessHeap::FailAfter(-1);
    AddEllipse(shape, {0, 0, 10, 10});
    EXPECT_EQ(ProcessHeap::FailAfter(-1), before);
    EXPECT_EQ(shape.ControlBox().right, 10);
    const Shape held = shape;
    shape.Clear();
    AddEllipse(shape, {0, 0, 20, 20});
    EXPECT_EQ(held.ControlBox().right, 10);
    EXPECT_EQ(held.Figures().front().Points()[0].y, 10) << "the memory of a held figure was taken";
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
    Geometry shape;
    shape.SetFillRule(1);
    AddRectangle(shape, {0, 0, 5, 5});
    AddRectangle(shape, {std::numeric_limits<float>::quiet_NaN(), 0, 5, 5});
    AddRectangle(shape, {10, 0, 1e38F, 5});
    AddRectangle(shape, {20, 0, 25, 5});
    Geometry out;
    FeedFill(shape, {10, 0, 0, 10, 0, 0}, out);
    EXPECT_EQ(out.FillRule(), 1U);
    ASSERT_EQ(out.Figures().size(), 2U);
    EXPECT_EQ(out.ControlBox().right, 250);
}

TEST(FeedFill, PassesShapesInsideTheBandUnchanged) {
    Geometry shape;
    AddEllipse(shape, {0, 0, 50, 30});
    Geometry out;
    FeedFill(shape, kIdentity, out);
    EXPECT_TRUE(out.Equals(shape));
}

TEST(FeedFill, BoundsTheWorkOfHugeCurves) {
    for (const float size : {1e6F, 1e9F, 1e15F, 1e30F}) {
        Geometry shape;
        shape.BeginFigure({0, 0});
        shape.CubicTo({size, -size}, {-size, -size * 0.7F}, {100, 50});
        shape.CubicTo({size, 30}, {-size, 20}, {0, 10});
        shape.EndFigureClose();
        Geometry out;
        FeedFill(shape, kIdentity, out);
        EXPECT_LT(PointsOf(out).size(), 5000U) << size;
        // Turned over and stretched as no target is wide.
        Geometry disc, wide;
        AddEllipse(disc, {0, 0, 50, 30});
        FeedFill(disc, {-size, 0, 0, 1, 0, 0}, wide);
        EXPECT_LT(PointsOf(wide).size(), 50000U) << size;
        for (const Point& p : PointsOf(out)) {
            ASSERT_LE(std::fabs(p.x), 32535.0F);
            ASSERT_LE(std::fabs(p.y), 32535.0F);
        }
    }
}
