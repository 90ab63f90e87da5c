// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <vector>

#include "Exception.h"
#include "Geometry/Dasher.h"
#include "Geometry/Geometry.h"
#include "Winding.h"

using namespace Graphics;

namespace {

StrokeStyle Dashes(std::initializer_list<float> lengths, float phase = 0) {
    StrokeStyle style;
    style.dashPhase = phase;
    for (const float v : lengths) {
        style.dashes[style.dashCount++] = v;
    }
    return style;
}

/// The dashes of a horizontal line from 0, as start and end; of a line 2 wide, where something is out of sight.
std::vector<float> Cut(const StrokeStyle& style, float length, const Rect* visible = nullptr) {
    Geometry out;
    const DashSequence sequence(style);
    Dasher<Geometry> dasher(out, sequence, 0.25F);
    StrokeStyle squares = style; // so that dashes without length are seen
    squares.cap = GXLineCapSquare;
    const Rect target = visible != nullptr ? *visible : Rect{0, 0, 1, 1};
    const StrokePlan plan({0, 0, length, 0}, kIdentity, squares, 2, {target, target});
    const DashSight sight(plan, squares, sequence);
    if (visible != nullptr) {
        dasher.SetSight(&sight);
    }
    dasher.BeginFigure({0, 0});
    dasher.LineTo({length, 0});
    dasher.EndFigure();
    std::vector<float> ends;
    for (const Figure& f : out.Figures()) {
        ends.push_back(f.Points().front().x);
        ends.push_back(f.Points().back().x);
    }
    return ends;
}

using Ends = std::vector<float>;

} // namespace

TEST(Dasher, RepeatsThePattern) {
    EXPECT_EQ(Cut(Dashes({3}), 14), (Ends{0, 3, 6, 9, 12, 14}));
    EXPECT_EQ(Cut(Dashes({2, 1, 1}), 10), (Ends{0, 2, 3, 4, 6, 7, 8, 10}));
    EXPECT_EQ(DashSequence(Dashes({2, 1, 1})).Period(), 8);
}

TEST(Dasher, StartsAtThePhase) {
    EXPECT_EQ(Cut(Dashes({4, 2}, -1), 8), (Ends{1, 5, 7, 8}));
    EXPECT_EQ(Cut(Dashes({4, 2}, 5), 8), (Ends{1, 5, 7, 8}));
    EXPECT_EQ(Cut(Dashes({4, 2}, 12 + 1), 8), (Ends{0, 3, 5, 8}));
    EXPECT_EQ(Cut(Dashes({4, 2}, 3.999995F), 3).size(), 2U); // in the gap at once
    EXPECT_TRUE(DashSequence(Dashes({4, 2}, 3.999995F)).InGap());
    EXPECT_FALSE(DashSequence(Dashes({0, 2}, 0)).InGap());
    for (const float phase :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), 3e38F, -3e38F}) {
        EXPECT_LT(Cut(Dashes({4, 2}, phase), 100).size(), 40U) << phase;
    }
    // The sum is beyond the floats, and with it the way back from its end.
    EXPECT_EQ(Cut(Dashes({3e38F, 3e38F, 1}, -1), 100), (Ends{0, 100}));
}

TEST(Dasher, RefusesBadPatterns) {
    const auto message = [](const StrokeStyle& style) -> std::string {
        try {
            DashSequence sequence(style);
        } catch (const Exception& e) {
            return e.what();
        }
        return "";
    };
    EXPECT_EQ(message(Dashes({1, -1})), "Dash pattern has a negative element");
    EXPECT_EQ(message(Dashes({0, 0})), "Dash pattern has zero length");
    EXPECT_EQ(message(Dashes({std::numeric_limits<float>::quiet_NaN()})), "");
}

TEST(Dasher, ZeroDashesAreFiguresWithoutLength) { EXPECT_EQ(Cut(Dashes({0, 3}), 7), (Ends{0, 0, 3, 3, 6, 6})); }

TEST(Dasher, RestartsPerFigureAndRunsOnAroundCorners) {
    Geometry out;
    Dasher<Geometry> dasher(out, DashSequence(Dashes({3, 2})), 0.25F);
    for (int i = 0; i < 2; ++i) {
        dasher.BeginFigure({0, 0});
        dasher.LineTo({2, 0});
        dasher.LineTo({2, 2});
        dasher.LineTo({0, 2});
        dasher.EndFigureClose(); // lengths 2 each: dashes [0, 3], [5, 8]
    }
    ASSERT_EQ(out.Figures().size(), 4U);
    for (size_t i = 0; i < 4; i += 2) {
        EXPECT_EQ(FigureAt(out, i).Points().size(), 3U);
        EXPECT_EQ(FigureAt(out, i).Points()[2].y, 1);
        EXPECT_EQ(FigureAt(out, i + 1).Points().front().x, 1);
        EXPECT_EQ(FigureAt(out, i + 1).Points().back().y, 0);
        EXPECT_FALSE(FigureAt(out, i).Closed());
    }
}

TEST(Dasher, SkipsWhatIsOutOfSightAndKeepsThePattern) {
    const Rect visible{500, -1, 520, 1};
    for (const auto& style : {Dashes({3, 2}), Dashes({2, 1, 1}, 0.5F), Dashes({0, 7}, 3)}) {
        Ends all, some;
        for (const bool cull : {false, true}) {
            const Ends ends = Cut(style, 1000, cull ? &visible : nullptr);
            EXPECT_TRUE(!cull || ends.size() < 60);
            for (size_t i = 0; i < ends.size(); i += 2) {
                if (ends[i + 1] >= 500 && ends[i] < 520) {
                    (cull ? some : all).insert((cull ? some : all).end(), {ends[i], ends[i + 1]});
                }
            }
        }
        ASSERT_EQ(all.size(), some.size());
        for (size_t i = 0; i < all.size(); ++i) {
            EXPECT_NEAR(all[i], some[i], 1e-3);
        }
    }
}

TEST(Dasher, AbsurdLengthsEnd) {
    const Rect visible{0, -1, 100, 1};
    for (const float length : {1e9F, 1e20F, 3e38F}) {
        EXPECT_LT(Cut(Dashes({1, 1}), length, &visible).size(), 200U) << length;
        EXPECT_THROW(Cut(Dashes({1e-30F, 1e-3F}), length), Exception) << length;
        EXPECT_LT(Cut(Dashes({1e-38F, 1e-38F, 1e-40F}), length, &visible).size(), 2000U) << length;
    }
}
