// SPDX-License-Identifier: MIT
// The work of combining areas, counted: it grows with edges and crossings, whatever their order and place.
#include <gtest/gtest.h>

#include <random>

#include "Boolean/EdgeCollector.h"
#include "Boolean/PixelSnapper.h"
#include "BooleanSupport.h"
#include "Geometry/Figures.h"

namespace Graphics {
namespace {

constexpr uint32_t kModes[] = {GXCombineIntersection, GXCombineUnion, GXCombineExclusiveOr, GXCombineDifference};

Ring Box(float l, float t, float r, float b) { return {{l, t}, {r, t}, {r, b}, {l, b}}; }

class Random {
public:
    explicit Random(uint32_t seed) : m_random(seed) {}
    [[nodiscard]] uint32_t Whole(uint32_t n) { return static_cast<uint32_t>(m_random()) % n; }
    [[nodiscard]] float Real(float low, float high) {
        return low + (high - low) * static_cast<float>(m_random() >> 8) / 16777216.0F;
    }

private:
    std::mt19937 m_random;
};

/// The work of the sweep, of rings on whole coordinates, all of one operand.
Scanner::Counts WorkOf(const std::vector<Ring>& rings, double most) {
    const PointGrid grid(most);
    Scanner scanner(WindingTest(GXCombineUnion, GXFillRuleNonZero, GXFillRuleNonZero));
    EdgeCollector collector(scanner, grid, {-most, -most, most, most}, 0.25F, false);
    Geometry shape;
    for (const Ring& ring : rings) {
        AddRing(shape, ring);
    }
    shape.ReplayFigures(collector);
    scanner.Run();
    return scanner.Work();
}

TEST(BooleanWork, GrowsWithEdgesAndCrossingsOnly) {
    constexpr int kMany = 20000;
    const auto expectLinear = [](const Scanner::Counts& work, double edges, double factor) {
        EXPECT_LE(work.sweeps, 5U); // one, and four that begin anew without bends
        EXPECT_LE(static_cast<double>(work.points), factor * edges);
        EXPECT_LE(static_cast<double>(work.cuts), factor * edges);
        EXPECT_LE(static_cast<double>(work.comparisons), factor * edges * std::log2(edges));
    };
    std::mt19937 random(3);
    const auto whole = [&](int n) { return static_cast<float>(random() % static_cast<uint32_t>(n)); };

    // Every spoke passes through the middle: 20000 edges cross there, two hundred million pairs.
    Ring spokes;
    for (int i = 0; i < kMany; ++i) {
        const float angle = 3.1415926F * static_cast<float>(i) / kMany;
        const Point p{std::round(4e6F * std::cos(angle)), std::round(4e6F * std::sin(angle))};
        const Point q{-p.x, -p.y};
        spokes.push_back(i % 2 != 0 ? q : p);
        spokes.push_back(i % 2 != 0 ? p : q);
    }
    expectLinear(WorkOf({spokes}, 8388608), 2 * kMany, 8);

    // Boxes inside each other on one base line: all pairs of bases overlap.
    std::vector<Ring> nested;
    for (int i = 0; i < kMany; ++i) {
        const auto d = static_cast<float>(i);
        nested.push_back(Box(d, 0, 100000 - d, 50000 - d));
    }
    expectLinear(WorkOf(nested, 131072), 4 * kMany, 4);

    // The teeth of a comb, slanted: their boxes overlap, they do not touch.
    Ring comb;
    for (int i = 0; i < kMany; ++i) {
        comb.push_back({static_cast<float>(i * 10), 0});
        comb.push_back({static_cast<float>(i * 10 + 300005), 1000000});
    }
    comb.push_back({kMany * 10, -1});
    expectLinear(WorkOf({comb}, 1048576), 2 * kMany, 4);

    // 100000 edges of small boxes, each meeting a few others.
    std::vector<Ring> confetti;
    for (int i = 0; i < 25000; ++i) {
        const float x = whole(100000), y = whole(100000);
        confetti.push_back({{x, y}, {x + whole(900), y + whole(50)}, {x + whole(900), y + whole(900)}, {x, y + 400}});
    }
    expectLinear(WorkOf(confetti, 131072), 100000, 10);
}

TEST(BooleanWork, BendsThatPassNothingNeedNoSecondSweep) {
    // Two rough circles: a few crossings, none of which lies on the grid.
    Random maker(5);
    std::vector<Ring> coasts(2);
    for (int i = 0; i < 2000; ++i) {
        const float angle = 3.1415926F * static_cast<float>(i) / 1000, radius = maker.Real(5e6F, 5.05e6F);
        coasts[i % 2].push_back({std::round(radius * std::cos(angle)), std::round(radius * std::sin(angle))});
    }
    const Scanner::Counts few = WorkOf(coasts, 8388608);
    EXPECT_EQ(few.sweeps, 1U);
    EXPECT_GT(few.cuts, 100U);
    // Chords: nearly a quarter of all pairs cross, and the sweep sees the border alone.
    Ring chords;
    for (int i = 0; i < 300; ++i) {
        chords.push_back({std::round(maker.Real(-8e6F, 8e6F)), std::round(maker.Real(-8e6F, 8e6F))});
    }
    const Scanner::Counts dense = WorkOf({chords}, 8388608);
    EXPECT_EQ(dense.sweeps, 1U);
    EXPECT_LT(dense.points, 5000U); // of 10000 crossings
}

/// Buildings at random places and angles in a square, of which each operand has its own.
void AddBuildings(Geometry& shape, int count, uint32_t seed, float corner, float side) {
    Random random(seed);
    for (int i = 0; i < count; ++i) {
        const float x = corner + random.Real(0, side), y = corner + random.Real(0, side);
        const float w = random.Real(5, 30), h = random.Real(5, 30), turn = random.Real(0, 3.1415926F);
        const float c = std::cos(turn), s = std::sin(turn);
        AddRing(shape,
                {{x, y}, {x + w * c, y + w * s}, {x + w * c - h * s, y + w * s + h * c}, {x - h * s, y + h * c}});
    }
}

TEST(BooleanWork, BuildingsFarFromTheOriginTakeAsManyStopsAsNearIt) {
    // The square is 2 km wide; at 5e5 a float is 3 cm, which is where buildings that overlap at random get in each
    // other's way. Stops of all sweeps together, and sweeps.
    uint64_t points[2] = {0, 0};
    for (const float corner : {0.0F, 5e5F}) {
        Geometry a, b, out;
        AddBuildings(a, 3000, 1, corner, 1000);
        AddBuildings(b, 3000, 2, corner, 1000);
        CellCombiner::Counts work;
        Boolean::Combine(a, b, GXCombineUnion, 0.25F, out, &work);
        EXPECT_LE(work.sweep.sweeps, 8U) << corner;
        points[corner > 0 ? 1 : 0] = work.sweep.points;
        EXPECT_EQ(work.cells, 1U);
    }
    EXPECT_LE(points[1], 2 * points[0]);
}

TEST(BooleanWork, EdgesOfAUnitsLengthEndAfterAFewSweeps) {
    // On the finest grid, where each rounding is as large as the shapes.
    for (uint32_t seed = 1; seed <= 40; ++seed) {
        Random random(seed);
        Geometry a, b, out;
        for (Geometry* s : {&a, &b}) {
            for (int i = 0; i < 20; ++i) {
                Ring ring;
                for (int k = 0; k < 5; ++k) {
                    ring.push_back({16777000.0F + static_cast<float>(random.Whole(200)),
                                    16777000.0F + static_cast<float>(random.Whole(60))});
                }
                AddRing(*s, ring);
            }
        }
        CellCombiner::Counts work;
        Boolean::Combine(a, b, seed % 4, 4, out, &work);
        ASSERT_LE(work.sweep.sweeps, 8U) << seed;
        ASSERT_EQ(Faults(out), "") << seed;
    }
}

TEST(BooleanWork, SliversAcrossOneLongEdgeFindTheirPieces) {
    // Each sliver inside the one before: the long edge is cut from its far end to the near one, and events of all cuts
    // wait. The events know their pieces, so stops and comparisons are all there is.
    constexpr int kSlivers = 20000;
    Geometry edge, slivers, out;
    AddRing(edge, {{0, -10}, {10, 5 * kSlivers}, {-6e6F, 5 * kSlivers}});
    for (int i = 0; i < kSlivers; ++i) {
        const auto d = static_cast<float>(i), reach = static_cast<float>(kSlivers - i);
        AddRing(slivers, {{-reach, d}, {reach, 4.0F * kSlivers - 3 * d}, {0.5F - reach, d}});
    }
    CellCombiner::Counts work;
    Boolean::Combine(edge, slivers, GXCombineExclusiveOr, 1, out, &work);
    EXPECT_LE(work.sweep.sweeps, 8U);
    EXPECT_LE(work.sweep.points, 20U * kSlivers);
    EXPECT_LE(work.sweep.comparisons, 400U * kSlivers);
    EXPECT_FALSE(out.Empty());
}

TEST(BooleanWork, OrderOfFiguresDoesNotDecideTheRoad) {
    // Spokes through one point, which a sweep passes in a single stop, and every 250th figure a level edge, which
    // crosses them one by one: sixteen evenly spaced samples meet nothing else, or none of these, according to where
    // the list begins.
    constexpr int kFigures = 4000, kPeriod = 250;
    std::vector<Ring> rings;
    for (int i = 0; i < kFigures; ++i) {
        const float angle = 3.1415926F * static_cast<float>(i) / kFigures;
        const auto at = static_cast<float>(i * 100 + 900000);
        const Point p{std::round(4e6F * std::cos(angle)), std::round(4e6F * std::sin(angle))};
        rings.push_back(i % kPeriod == 0 ? Ring{{-4e6F, at}, {4e6F, at}, {-4e6F, at}} : Ring{p, {-p.x, -p.y}, p});
    }
    for (int turn = 0; turn < 4; ++turn) {
        const Scanner::Counts work = WorkOf(rings, 8388608);
        // Samples, and what may be compared before what was found says no: never all pairs of the 8000 edges.
        EXPECT_LE(work.pairs, 160U * 2 * kFigures) << turn;
        EXPECT_LE(work.sweeps, 8U) << turn;
        std::rotate(rings.begin(), rings.begin() + 1, rings.end());
    }
}

TEST(BooleanWork, HugeCurvesTakeFewEdges) {
    constexpr float kSizes[] = {1e20F, 3e38F};
    for (const float size : kSizes) {
        Geometry curves, page;
        for (int i = 0; i < 4; ++i) {
            const auto y = static_cast<float>(4 * i);
            curves.BeginFigure({0, y});
            curves.CubicTo({size, size * (y - 8) / 8}, {-size, -size * 0.7F}, {600, y * 37});
            curves.EndFigureClose();
        }
        AddRing(page, Box(0, 0, 612, 792));
        for (const uint32_t mode : kModes) {
            CellCombiner::Counts work;
            Geometry out;
            Boolean::Combine(page, curves, mode, 0.25F, out, &work);
            EXPECT_LE(work.pieces, mode == GXCombineIntersection || mode == GXCombineDifference ? 20000U : 3000000U)
                << size << ' ' << mode;
            EXPECT_LE(work.sweep.points, 1000000U) << size << ' ' << mode;
        }
    }
}

/// Chains of centres: what snapping makes of random edges does not cross, and stays within half a unit.
TEST(BooleanWork, SnappedEdgesMeetAtEndsOnly) {
    for (uint32_t seed = 1; seed <= 300; ++seed) {
        Random random(seed);
        HeapArray<GridEdge> edges, links;
        const uint32_t side = 4 + random.Whole(40);
        for (uint32_t i = 4 + random.Whole(30); i > 0; --i) {
            const auto coordinate = [&] { return static_cast<int32_t>(random.Whole(side)); };
            const GridPoint p{coordinate(), coordinate()}, q{coordinate(), coordinate()};
            if (!(p == q)) {
                GridEdge e;
                e.lo = Before(p, q) ? p : q;
                e.hi = Before(p, q) ? q : p;
                e.a = 1;
                e.line = static_cast<uint32_t>(edges.size());
                edges.push_back(e);
            }
        }
        PixelSnapper(edges).Snap(links);
        for (size_t i = 0; i < links.size(); ++i) {
            const GridEdge& e = links[i];
            const GridEdge& source = edges[e.line];
            for (const GridPoint& p : {e.lo, e.hi}) {
                ASSERT_LE(2 * std::abs(source.SideOf(p)), Reach(source.lo, source.hi)) << seed;
            }
            for (size_t k = 0; k < i; ++k) {
                const GridEdge& f = links[k];
                const int64_t a = e.SideOf(f.lo), b = e.SideOf(f.hi), c = f.SideOf(e.lo), d = f.SideOf(e.hi);
                const bool same = e.lo == f.lo && e.hi == f.hi;
                const auto within = [](const GridEdge& g, const GridPoint& p) {
                    return g.SideOf(p) == 0 && g.InBox(p) && !(p == g.lo) && !(p == g.hi);
                };
                ASSERT_FALSE((a > 0) != (b > 0) && (c > 0) != (d > 0) && a != 0 && b != 0 && c != 0 && d != 0) << seed;
                ASSERT_FALSE(!same && (within(e, f.lo) || within(e, f.hi) || within(f, e.lo) || within(f, e.hi)))
                    << seed;
            }
        }
    }
}

} // namespace
} // namespace Graphics
