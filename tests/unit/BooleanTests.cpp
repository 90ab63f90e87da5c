// SPDX-License-Identifier: MIT
// Combination of areas: random pairs against the definition, against each other and, where it is installed, against the
// Clipper library; and the cases that are hard by construction.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "Boolean/EdgeCollector.h"
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
    Shape shape, lines;

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
    Shape results[4];
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
    for (int i = 0; i < 30; ++i) {
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
    const Shape nothing;
    Shape cleanA, cleanB;
    Boolean::Combine(a.shape, nothing, GXCombineUnion, kTolerance, cleanA);
    Boolean::Combine(nothing, b.shape, GXCombineUnion, kTolerance, cleanB);
    EXPECT_NEAR(areas[GXCombineUnion], AreaOf(cleanA) + AreaOf(cleanB) - both, margin);
    EXPECT_NEAR(areas[GXCombineDifference], AreaOf(cleanA) - both, margin);
#ifdef GX_TEST_HAS_CLIPPER
    for (const uint32_t mode : kModes) {
        // Clipper errs now and then where many edges coincide: what it denies is judged by the plain integral.
        const double theirs = ClipperArea(a.lines, b.lines, mode, 64 / UnitOf(a.lines, b.lines));
        if (!(std::fabs(areas[mode] - theirs) <= margin)) {
            EXPECT_NEAR(areas[mode], PlainArea(a.lines, b.lines, mode), margin + 1e-6) << "mode " << mode;
        }
    }
#endif
}

/// GX_BOOLEAN_PAIRS=100000 makes it the long run; GX_BOOLEAN_SEED repeats one pair.
TEST(Boolean, RandomPairsAreWhatTheirWindingNumbersSay) {
    const char* wanted = std::getenv("GX_BOOLEAN_PAIRS");
    const char* only = std::getenv("GX_BOOLEAN_SEED");
    const uint32_t first = only != nullptr ? static_cast<uint32_t>(std::atoi(only)) : 1;
    const uint32_t count = only != nullptr ? 1 : wanted != nullptr ? static_cast<uint32_t>(std::atoi(wanted)) : 3600;
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

} // namespace
} // namespace Graphics
