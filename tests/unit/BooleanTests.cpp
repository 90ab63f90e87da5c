// SPDX-License-Identifier: MIT
// Combination of areas: random pairs against the definition, against each other and, where it is installed, against the
// Clipper library; and the cases that are hard by construction.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "Boolean/EdgeCollector.h"
#include "Boolean/PairwiseWinder.h"
#include "BooleanSupport.h"
#include "Exception.h"
#include "Geometry/CurveFlattener.h"
#include "Geometry/Figures.h"

#ifdef GX_TEST_HAS_CLIPPER
#include <polyclipping/clipper.hpp>
#endif

namespace Graphics {
namespace {

constexpr uint32_t kModes[] = {GXCombineIntersection, GXCombineUnion, GXCombineExclusiveOr, GXCombineDifference};

/// A random operand: as it is combined, and as lines for the oracles.
struct Operand {
    Geometry shape, lines;

    void SetFillRule(uint32_t rule) {
        shape.SetFillRule(rule);
        lines.SetFillRule(rule);
    }
    void Add(const Ring& ring) {
        AddRing(shape, ring);
        AddRing(lines, ring);
    }
    void AddCurves(const Ring& ring) { // control points of cubics, the first point being the start
        shape.BeginFigure(ring[0]);
        lines.BeginFigure(ring[0]);
        for (size_t i = 0; i + 3 < ring.size(); i += 3) {
            shape.CubicTo(ring[i + 1], ring[i + 2], ring[i + 3]);
            FlattenBounded(
                WideCurve(ring[i], ring[i + 1], ring[i + 2], ring[i + 3]), 1e-3F, 16,
                [](const WideCurve&) { return CurvePlace::Mixed; }, [&](const Point& p) { lines.LineTo(p); });
        }
        shape.EndFigure();
        lines.EndFigure();
    }
};

class Maker {
public:
    static constexpr int kKinds = 9;

    explicit Maker(uint32_t seed) : m_random(seed) {}

    [[nodiscard]] int Whole(int n) { return static_cast<int>(m_random() % static_cast<uint32_t>(n)); }
    [[nodiscard]] float Real(float low, float high) {
        return low + (high - low) * static_cast<float>(m_random() >> 8) / 16777216.0F;
    }

    void Make(int kind, Operand& to) {
        to.SetFillRule(m_random() % 2);
        for (int figures = 1 + Whole(3); figures > 0; --figures) {
            Ring ring;
            const int count = 3 + Whole(10);
            switch (kind) {
            case 0: // few grid points: everything coincides
                for (int i = 0; i < count; ++i) {
                    ring.push_back({static_cast<float>(Whole(5)), static_cast<float>(Whole(5))});
                }
                break;
            case 1: // a star
                for (int i = 0; i < count; ++i) {
                    const float angle = 6.2831853F * static_cast<float>(i * (count / 2)) / static_cast<float>(count);
                    const float radius = Real(20, 50);
                    ring.push_back({50 + radius * std::cos(angle), 50 + radius * std::sin(angle)});
                }
                break;
            case 2: // nearly parallel
                for (int i = 0; i < count; ++i) {
                    ring.push_back(
                        {(i % 2) * 1000.0F + Real(0, 1), Real(-0.001F, 0.001F) * static_cast<float>(Whole(2))});
                }
                break;
            case 3: // spikes: forth and back again
                for (int i = 0; i < count; ++i) {
                    const Point p{static_cast<float>(Whole(9)), static_cast<float>(Whole(9))};
                    ring.push_back(p);
                    ring.push_back({static_cast<float>(Whole(9)), Real(0, 9)});
                    ring.push_back(p);
                }
                break;
            case 4: // chords
                for (int i = 0; i < count * 3; ++i) {
                    ring.push_back({Real(0, 100), Real(0, 100)});
                }
                break;
            case 5: // curves
                for (int i = 0; i < 3 * (1 + count / 3) + 1; ++i) {
                    ring.push_back({Real(0, 100), Real(0, 100)});
                }
                to.AddCurves(ring);
                continue;
            case 6: { // boxes with common borders
                const auto l = static_cast<float>(Whole(6)), t = static_cast<float>(Whole(6));
                const auto r = static_cast<float>(Whole(6)), b = static_cast<float>(Whole(6));
                ring = {{l, t}, {r, t}, {r, b}, {l, b}};
                break;
            }
            case 7: // lines of three units' width on the finest grid: roundings are as large as the shapes
                for (int i = 0; i < count * 2; ++i) {
                    ring.push_back({16777000.0F + static_cast<float>(Whole(24)), static_cast<float>(Whole(24))});
                }
                break;
            default: // long and almost parallel on the finest grid: far crossings, bends everywhere
                for (int i = 0; i < count * 2; ++i) {
                    ring.push_back(
                        {(i % 2) * 16000000.0F + static_cast<float>(Whole(3)), static_cast<float>(Whole(40))});
                }
                break;
            }
            to.Add(ring);
        }
    }

private:
    std::mt19937 m_random;
};

double UnitOf(const Shape& a, const Shape& b) {
    double most = 0;
    for (const Shape* s : {&a, &b}) {
        const Rect box = s->ControlBox();
        most = std::max<double>(
            {most, std::fabs(box.left), std::fabs(box.right), std::fabs(box.top), std::fabs(box.bottom)});
    }
    return PointGrid(most).Unit();
}

std::string Text(const Shape& shape) {
    std::ostringstream out;
    out.precision(9);
    out << "rule " << shape.FillRule();
    for (const Figure& f : shape.Figures()) {
        out << "\n ";
        for (const Point& p : f.Points()) {
            out << " {" << p.x << ", " << p.y << "},";
        }
    }
    return out.str();
}

#ifdef GX_TEST_HAS_CLIPPER
/// The area by the Clipper library, with coordinates of 2^30 steps.
double ClipperArea(const Shape& a, const Shape& b, uint32_t mode, double scale) {
    using namespace ClipperLib;
    Clipper clipper;
    for (const Shape* s : {&a, &b}) {
        for (const Figure& f : s->Figures()) {
            Path path;
            for (const Point& p : f.Points()) {
                path.push_back({std::llround(p.x * scale), std::llround(p.y * scale)});
            }
            clipper.AddPath(path, s == &a ? ptSubject : ptClip, true);
        }
    }
    constexpr ClipType kTypes[] = {ctIntersection, ctUnion, ctXor, ctDifference};
    const auto rule = [](const Shape& s) { return s.FillRule() == GXFillRuleNonZero ? pftNonZero : pftEvenOdd; };
    Paths result;
    clipper.Execute(kTypes[mode], result, rule(a), rule(b));
    double area = 0;
    for (const Path& path : result) {
        area += Area(path);
    }
    return std::fabs(area) / scale / scale;
}
#endif

/// Everything that must hold of the four combinations of a pair.
void CheckPair(const Operand& a, const Operand& b, Maker& maker, double slack) {
    constexpr float kTolerance = 0.01F;
    Geometry results[4];
    double areas[4];
    for (const uint32_t mode : kModes) {
        Boolean::Combine(a.shape, b.shape, mode, kTolerance, results[mode]);
        ASSERT_EQ(Faults(results[mode]), "") << "mode " << mode;
        areas[mode] = AreaOf(results[mode]);
    }
    std::vector<Segment> edges = SegmentsOf(a.lines);
    const std::vector<Segment> more = SegmentsOf(b.lines);
    edges.insert(edges.end(), more.begin(), more.end());
    const Rect box = a.lines.ControlBox(), other = b.lines.ControlBox();
    for (int i = 0; i < 8; ++i) {
        const double x = maker.Real(std::min(box.left, other.left), std::max(box.right, other.right));
        const double y = maker.Real(std::min(box.top, other.top), std::max(box.bottom, other.bottom));
        const bool close =
            std::any_of(edges.begin(), edges.end(), [&](const Segment& s) { return DistanceTo(s, x, y) <= slack; });
        for (const uint32_t mode : kModes) {
            const int winding = Winding(results[mode], x, y);
            ASSERT_TRUE(winding == 0 || winding == 1) << winding << " at " << x << ' ' << y << " mode " << mode;
            if (!close) {
                ASSERT_EQ(winding == 1, InsideOf(mode, InsideOf(a.lines, x, y), InsideOf(b.lines, x, y)))
                    << "at " << x << ' ' << y << " mode " << mode;
            }
        }
    }
    const double margin = slack * (LengthOf(a.lines) + LengthOf(b.lines)) + 1e-9;
    const double both = areas[GXCombineIntersection];
    EXPECT_NEAR(areas[GXCombineUnion] - both, areas[GXCombineExclusiveOr], margin);
    if (maker.Whole(4) == 0) {
        const Geometry nothing;
        Geometry cleanA, cleanB;
        Boolean::Combine(a.shape, nothing, GXCombineUnion, kTolerance, cleanA);
        Boolean::Combine(nothing, b.shape, GXCombineUnion, kTolerance, cleanB);
        EXPECT_NEAR(areas[GXCombineUnion], AreaOf(cleanA) + AreaOf(cleanB) - both, margin);
        EXPECT_NEAR(areas[GXCombineDifference], AreaOf(cleanA) - both, margin);
    }
#ifdef GX_TEST_HAS_CLIPPER
    // Clipper errs now and then where many edges coincide: what it denies is judged by the plain integral.
    const auto mode = static_cast<uint32_t>(maker.Whole(4));
    const double theirs = ClipperArea(a.lines, b.lines, mode, 64 / UnitOf(a.lines, b.lines));
    if (!(std::fabs(areas[mode] - theirs) <= margin)) {
        EXPECT_NEAR(areas[mode], PlainArea(a.lines, b.lines, mode), margin + 1e-6) << "mode " << mode;
    }
#endif
}

/// GX_BOOLEAN_PAIRS=100000 makes it the long run; GX_BOOLEAN_SEED repeats one pair, or is where the long run begins.
TEST(Boolean, RandomPairsAreWhatTheirWindingNumbersSay) {
    const char* wanted = std::getenv("GX_BOOLEAN_PAIRS");
    const char* only = std::getenv("GX_BOOLEAN_SEED");
    const uint32_t first = only != nullptr ? static_cast<uint32_t>(std::atoi(only)) : 1;
    const uint32_t count = wanted != nullptr ? static_cast<uint32_t>(std::atoi(wanted)) : only != nullptr ? 1 : 2000;
    for (uint32_t seed = first; seed < first + count; ++seed) {
        Maker maker(seed);
        const int kind = static_cast<int>(seed) % Maker::kKinds;
        Operand a, b;
        maker.Make(kind, a);
        maker.Make(maker.Whole(4) == 0 && kind < 7 ? maker.Whole(7) : kind, b);
        const double slack =
            3 * UnitOf(a.shape, b.shape) + (a.shape.Equals(a.lines) && b.shape.Equals(b.lines) ? 0 : 0.02);
        CheckPair(a, b, maker, slack);
        if (HasFailure()) {
            FAIL() << "GX_BOOLEAN_SEED=" << seed << "\nA: " << Text(a.lines) << "\nB: " << Text(b.lines);
        }
    }
}

Ring Box(float l, float t, float r, float b) { return {{l, t}, {r, t}, {r, b}, {l, b}}; }

/// What the winder takes for the border, of edges on a lattice: they coincide, touch each other's ends and lie level.
TEST(Boolean, BordersFromPairsAreWhatWindingNumbersSay) {
    constexpr int32_t kStep = 1 << 20;
    for (uint32_t seed = 1; seed <= 400; ++seed) {
        Maker maker(seed);
        EdgePieces edges;
        std::vector<std::array<GridPoint, 2>> lines[2];
        const int side = 3 + maker.Whole(4);
        for (int ring = 2 + maker.Whole(4); ring > 0; --ring) {
            std::vector<GridPoint> points;
            for (int count = 3 + maker.Whole(8); count > 0; --count) {
                points.push_back({maker.Whole(side) * kStep, maker.Whole(side) * kStep});
            }
            const bool ofB = ring % 2 != 0;
            for (size_t i = 0; i < points.size(); ++i) {
                const GridPoint &from = points[i], &to = points[(i + 1) % points.size()];
                edges.Add(from, to, ofB);
                lines[ofB ? 1 : 0].push_back({from, to});
            }
        }
        const WindingTest test(static_cast<uint32_t>(maker.Whole(4)), maker.Whole(2), maker.Whole(2));
        HeapArray<GridEdge> border;
        ASSERT_TRUE(PairwiseWinder(edges.All(), test).Run(border));
        // By the ray towards smaller x; false for points that roundings may have moved to the other side of a line.
        const auto crosses = [](const GridPoint& from, const GridPoint& to, const GridPoint& p, int32_t& winding) {
            const bool up = Before(from, to);
            const GridPoint &lo = up ? from : to, &hi = up ? to : from;
            if (p.y >= lo.y && p.y < hi.y && Side(lo, hi, p) > 0) {
                winding += up ? 1 : -1;
            }
            return std::abs(Side(lo, hi, p)) > 4 * Reach(lo, hi);
        };
        for (int i = 0; i < 40; ++i) {
            const GridPoint p{maker.Whole(side * kStep), maker.Whole(side * kStep)};
            int32_t windings[2] = {0, 0}, found = 0;
            bool clear = true;
            for (int operand = 0; operand < 2; ++operand) {
                for (const auto& [from, to] : lines[operand]) {
                    clear &= crosses(from, to, p, windings[operand]);
                }
            }
            for (const GridEdge& e : border) {
                int32_t once = 0;
                static_cast<void>(crosses(e.lo, e.hi, p, once));
                found += once * e.a;
            }
            if (clear) {
                ASSERT_EQ(-found, test.Inside(windings[0], windings[1]) ? 1 : 0) << seed << ": " << p.x << ' ' << p.y;
            }
        }
    }
}

TEST(Boolean, CombsMakeEverySquareOfAGrid) {
    constexpr int kTeeth = 60;
    Geometry across, down;
    for (int i = 0; i < kTeeth; ++i) {
        const auto at = static_cast<float>(3 * i + 1);
        AddRing(across, Box(0, at, 3 * kTeeth, at + 1));
        AddRing(down, Box(at, 0, at + 1, 3 * kTeeth));
    }
    Geometry squares, holes, both;
    Boolean::Combine(across, down, GXCombineIntersection, 0, squares);
    EXPECT_EQ(squares.Figures().size(), static_cast<size_t>(kTeeth * kTeeth));
    EXPECT_EQ(AreaOf(squares), kTeeth * kTeeth);
    Boolean::Combine(across, down, GXCombineUnion, 0, holes);
    EXPECT_EQ(holes.Figures().size(), static_cast<size_t>((kTeeth - 1) * (kTeeth - 1) + 1));
    // Corners touch everywhere, and still every figure is simple.
    Boolean::Combine(across, down, GXCombineExclusiveOr, 0, both);
    EXPECT_EQ(AreaOf(both), AreaOf(holes) - AreaOf(squares));
    Geometry small, some;
    AddRing(small, Box(0, 0, 20, 20));
    Boolean::Combine(both, small, GXCombineIntersection, 0, some);
    EXPECT_EQ(Faults(some), "");
}

TEST(Boolean, CoincidentAndEmptyOperands) {
    Operand star;
    Maker maker(11);
    maker.Make(5, star);
    maker.Make(3, star);
    const Shape& s = star.shape;
    Geometry box, same, inner, nothing, result[8];
    AddRing(box, Box(10, 10, 20, 30));
    AddRing(same, Box(20, 30, 10, 10)); // from the other corner
    AddRing(inner, Box(10, 10, 20, 20));
    Boolean::Combine(s, s, GXCombineExclusiveOr, 0.1F, result[0]);
    EXPECT_TRUE(result[0].Empty());
    Boolean::Combine(box, same, GXCombineDifference, 0, result[1]);
    EXPECT_TRUE(result[1].Empty());
    Boolean::Combine(box, same, GXCombineUnion, 0, result[2]);
    ASSERT_EQ(result[2].Figures().size(), 1U);
    EXPECT_EQ(result[2].Figures().front().Points().size(), 4U);
    EXPECT_EQ(AreaOf(result[2]), 200);
    Boolean::Combine(box, inner, GXCombineDifference, 0, result[3]);
    EXPECT_EQ(AreaOf(result[3]), 100);
    EXPECT_EQ(result[3].Figures().front().Points().size(), 4U);
    Boolean::Combine(nothing, box, GXCombineDifference, 0, result[4]);
    Boolean::Combine(nothing, box, GXCombineIntersection, 0, result[5]);
    EXPECT_TRUE(result[4].Empty() && result[5].Empty());
    Boolean::Combine(nothing, box, GXCombineUnion, 0, result[6]);
    EXPECT_EQ(AreaOf(result[6]), 200);
    Geometry flat;
    AddRing(flat, {{0, 0}, {50, 50}, {100, 100}, {20, 20}});
    Boolean::Combine(flat, box, GXCombineUnion, 0, result[7]);
    EXPECT_EQ(AreaOf(result[7]), 200);
    EXPECT_EQ(result[7].Figures().size(), 1U);
}

TEST(Boolean, ExtremeCoordinates) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity(), kMost = std::numeric_limits<float>::max();
    Geometry broken, fine, vast, tiny;
    AddRing(broken, {{0, 0}, {kInfinity, 5}, {10, 10}});
    AddRing(broken, {{0, 0}, {std::nanf(""), 5}, {10, 10}});
    AddRing(broken, Box(0, 0, 10, 10));
    AddRing(fine, Box(0.125F, 0.25F, 3.000001F, 4));
    AddRing(vast, Box(-kMost, -kMost, kMost, kMost));
    Geometry result[5];
    Boolean::Combine(broken, fine, GXCombineIntersection, 0, result[0]);
    // What is far away neither coarsens an intersection nor a difference from something near.
    Boolean::Combine(vast, fine, GXCombineIntersection, 0, result[1]);
    for (int i = 0; i < 2; ++i) {
        EXPECT_NEAR(AreaOf(result[i]), AreaOf(fine), 1e-6);
        EXPECT_EQ(Faults(result[i]), "");
    }
    Boolean::Combine(fine, vast, GXCombineDifference, 0, result[2]);
    EXPECT_TRUE(result[2].Empty());
    Boolean::Combine(vast, fine, GXCombineUnion, 0, result[3]);
    ASSERT_EQ(result[3].Figures().size(), 1U);
    EXPECT_GT(result[3].ControlBox().right, 0.999F * kMost);
    const float unit = std::numeric_limits<float>::denorm_min();
    AddRing(tiny, Box(0, 0, 3 * unit, 2 * unit));
    Boolean::Combine(tiny, tiny, GXCombineUnion, 0, result[4]);
    EXPECT_TRUE(result[4].Figures().size() == 1 && result[4].ControlBox().right == 3 * unit);

    Geometry curves; // a curve to the ends of the float range and back: little work, and no more than its box
    curves.BeginFigure({0, 0});
    curves.CubicTo({kMost, kMost}, {-kMost, kMost}, {10, 0});
    curves.EndFigureClose();
    for (const uint32_t mode : kModes) {
        Geometry out;
        Boolean::Combine(curves, fine, mode, 1e-20F, out);
        EXPECT_EQ(Faults(out), "") << mode;
    }
}

TEST(Boolean, CurvesKeepToTheTolerance) {
    Geometry disc, nothing;
    AddEllipse(disc, {-100, -100, 100, 100});
    for (const float tolerance : {0.001F, 0.01F, 0.25F, 2.0F, -1.0F, std::nanf("")}) {
        Geometry out;
        Boolean::Combine(disc, nothing, GXCombineUnion, tolerance, out);
        ASSERT_EQ(out.Figures().size(), 1U);
        const double allowed = tolerance > 0 ? tolerance : 0.25;
        for (const Segment& s : SegmentsOf(out)) {
            EXPECT_NEAR(std::hypot((s.a.x + s.b.x) / 2.0, (s.a.y + s.b.y) / 2.0), 100, 1.2 * allowed + 0.03)
                << tolerance;
        }
    }
}

TEST(Boolean, EveryRefusedAllocationIsAnError) {
    for (const int kind : {5, 4}) { // curves, of which few cross, and chords
        Operand a, b;
        Maker maker(7);
        maker.Make(kind, a);
        maker.Make(4, b);
        Geometry expected;
        Boolean::Combine(a.shape, b.shape, GXCombineUnion, 0.01F, expected);
        bool passed = false;
        for (int64_t n = 0; !passed && n < 5000; ++n) {
            Geometry out;
            ProcessHeap::FailAfter(n);
            try {
                Boolean::Combine(a.shape, b.shape, GXCombineUnion, 0.01F, out);
                passed = true;
            } catch (const Exception& e) {
                EXPECT_STREQ(e.what(), "Not enough memory");
            }
            ProcessHeap::FailAfter(-1);
            if (passed) {
                EXPECT_TRUE(out.Equals(expected));
                EXPECT_GT(n, 10);
            }
        }
        EXPECT_TRUE(passed);
    }
}

} // namespace
} // namespace Graphics
