// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <random>

#include "Geometry/Figures.h"
#include "Geometry/Geometry.h"
#include "Geometry/StripClipper.h"
#include "Winding.h"

using namespace Graphics;

TEST(StripClipper, CutsFiguresAtTheBounds) {
    Geometry out;
    StripClipper<Geometry> x(out, ClipAxis::X, 32535, -32535, 0.25F); // swapped
    AddRectangle(x, {-100000, 0, 100, 100});
    Geometry expected;
    AddRectangle(expected, {-32535, 0, 100, 100});
    EXPECT_EQ(out.ControlBox().left, -32535);
    for (const double at : {-32534.0, -5.0, 99.0}) {
        EXPECT_EQ(Winding(out, at, 50), Winding(expected, at, 50));
    }

    Geometry nothing;
    StripClipper<Geometry> y(nothing, ClipAxis::Y, -10, 10, 0.25F);
    y.BeginFigure({0, 11});
    y.LineTo({5, 20});
    y.CubicTo({5, 30}, {6, 40}, {9, 12});
    y.EndFigureClose();
    EXPECT_TRUE(nothing.Empty());

    Geometry across;
    StripClipper<Geometry> band(across, ClipAxis::Y, -10, 10, 0.25F);
    band.BeginFigure({-40, -40});
    band.LineTo({40, 40});
    band.LineTo({-40, -40});
    band.EndFigure();
    ASSERT_EQ(across.Figures().size(), 1U);
    const auto points = across.Figures().front().Points();
    EXPECT_EQ(points[0].x, -10);
    EXPECT_EQ(points[0].y, -10);
    EXPECT_EQ(points[1].x, 10);
    EXPECT_EQ(points[1].y, 10);
}

TEST(StripClipper, KeepsTheWindingInsideTheBand) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> place(-30, 30);
    for (int round = 0; round < 500; ++round) {
        Geometry plain, out;
        const ClipAxis axis = round % 2 ? ClipAxis::X : ClipAxis::Y;
        StripClipper<Geometry> clipper(out, axis, -10, 12, 0.25F);
        const bool close = round % 3 == 0;
        const auto send = [&](auto& sink) {
            std::mt19937 points(static_cast<uint32_t>(round));
            sink.BeginFigure({place(points), place(points)});
            for (int i = 0; i < 3 + round % 9; ++i) {
                const float px = place(points), py = place(points);
                sink.LineTo({px, py});
            }
            close ? sink.EndFigureClose() : sink.EndFigure();
        };
        send(plain);
        send(clipper);
        for (int i = 0; i < 40; ++i) {
            const double along = place(random), within = -9.9 + 21.8 * static_cast<double>(random() % 1000) / 1000.0;
            const double x = axis == ClipAxis::X ? within : along, y = axis == ClipAxis::X ? along : within;
            ASSERT_EQ(Winding(out, x, y), Winding(plain, x, y)) << round << " at " << x << ", " << y;
        }
    }
}

TEST(StripClipper, SurvivesPlacesThatDoNotExist) {
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    Geometry out;
    StripClipper<Geometry> x(out, ClipAxis::X, -10, 10, 0.25F);
    x.BeginFigure({0, 0});
    x.LineTo({nan, 3});
    x.LineTo({inf, 5});
    x.LineTo({-inf, 6});
    x.CubicTo({inf, nan}, {nan, nan}, {3, 3});
    x.EndFigureClose();
    x.BeginFigure({0, 0});
    x.CubicTo({1, 1}, {nan, 2}, {3, 3}); // it seems to be inside
    x.EndFigureClose();
    for (const Figure& f : out.Figures()) {
        for (const Point& p : f.Points()) {
            EXPECT_LE(std::fabs(p.x), 10);
        }
    }
}
