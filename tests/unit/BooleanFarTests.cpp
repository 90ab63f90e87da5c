// SPDX-License-Identifier: MIT
// Combination of what is far with what is near: detail stays within the tolerance wherever floats are fine enough, and
// whatever floats a file may hold, the result is simple, right and bounded in work.
#include <gtest/gtest.h>

#include <random>

#include "Boolean/AxisCut.h"
#include "Boolean/Orientation.h"
#include "BooleanSupport.h"
#include "Geometry/Figures.h"

namespace Graphics {
namespace {

constexpr uint32_t kModes[] = {GXCombineIntersection, GXCombineUnion, GXCombineExclusiveOr, GXCombineDifference};

Ring BoxRing(float l, float t, float r, float b) { return {{l, t}, {r, t}, {r, b}, {l, b}}; }

/// The winding number of closed figures around a point of floats, without rounding.
int ExactWinding(const std::vector<Segment>& edges, const Point& p) {
    int winding = 0;
    for (const Segment& s : edges) {
        if ((s.a.y <= p.y) != (s.b.y <= p.y)) {
            const bool up = s.a.y <= p.y;
            const int side = OrientationSign(s.a, s.b, p);
            winding += up && side > 0 ? 1 : !up && side < 0 ? -1 : 0;
        }
    }
    return winding;
}

/// Whether an edge comes into a box.
bool Meets(const Segment& s, const Rect& box) {
    if (std::max(s.a.x, s.b.x) < box.left || std::min(s.a.x, s.b.x) > box.right || std::max(s.a.y, s.b.y) < box.top ||
        std::min(s.a.y, s.b.y) > box.bottom) {
        return false;
    }
    int sides = 0;
    for (const Point& corner : {Point{box.left, box.top}, Point{box.right, box.top}, Point{box.right, box.bottom},
                                Point{box.left, box.bottom}}) {
        sides += OrientationSign(s.a, s.b, corner);
    }
    return sides != 4 && sides != -4;
}

float Ulp(float v) { return std::nextafter(std::fabs(v), INFINITY) - std::fabs(v); }

/// Judges the four combinations at points: where no edge is within the tolerance or a few floats, inside is inside.
void CheckAt(const Shape& a, const Shape& b, const Geometry (&results)[4], const std::vector<Point>& points,
             float tolerance) {
    const std::vector<Segment> edgesA = SegmentsOf(a), edgesB = SegmentsOf(b);
    std::vector<Segment> edges[4];
    for (const uint32_t mode : kModes) {
        edges[mode] = SegmentsOf(results[mode]);
    }
    for (const Point& p : points) {
        const float dx = std::max(tolerance, 4 * Ulp(p.x)), dy = std::max(tolerance, 4 * Ulp(p.y));
        const Rect box{p.x - dx, p.y - dy, p.x + dx, p.y + dy};
        if (!std::isfinite(box.left + box.right + box.top + box.bottom)) {
            continue;
        }
        bool close = false;
        for (const auto* list : {&edgesA, &edgesB}) {
            close |= std::any_of(list->begin(), list->end(), [&](const Segment& s) { return Meets(s, box); });
        }
        const int windingA = ExactWinding(edgesA, p), windingB = ExactWinding(edgesB, p);
        const bool inA = a.FillRule() == GXFillRuleNonZero ? windingA != 0 : windingA % 2 != 0;
        const bool inB = b.FillRule() == GXFillRuleNonZero ? windingB != 0 : windingB % 2 != 0;
        for (const uint32_t mode : kModes) {
            const int winding = ExactWinding(edges[mode], p);
            ASSERT_TRUE(winding == 0 || winding == 1) << winding << " at " << p.x << ' ' << p.y << " mode " << mode;
            if (!close) {
                ASSERT_EQ(winding == 1, InsideOf(mode, inA, inB)) << "at " << p.x << ' ' << p.y << " mode " << mode;
            }
        }
    }
}

TEST(BooleanFar, NearDetailKeepsItsPlace) {
    Geometry far, page, disc, speck, strip, nothing;
    AddRing(far, BoxRing(-1e9F, -1e9F, 1e9F, 1e9F));
    AddRing(page, BoxRing(10.5F, 20.25F, 600.125F, 800.5F));
    AddEllipse(disc, {10, 10, 14, 14});
    AddRing(speck, BoxRing(1e8F, 1e8F, 1.0001e8F, 1.0001e8F));
    AddRing(strip, BoxRing(-1e30F, 10.5F, 1e9F, 800.5F));

    // The hole is the page, exactly.
    Geometry hole;
    Boolean::Combine(far, page, GXCombineDifference, 0.25F, hole);
    ASSERT_EQ(hole.Figures().size(), 2U);
    const auto holePoints = FigureAt(hole, hole.Figures().front().Points()[0].x == -1e9F ? 1 : 0).Points();
    ASSERT_EQ(holePoints.size(), 4U);
    for (const Point& p : holePoints) {
        EXPECT_TRUE(p.x == 10.5F || p.x == 600.125F) << p.x;
        EXPECT_TRUE(p.y == 20.25F || p.y == 800.5F) << p.y;
    }
    // The disc is as without the speck.
    Geometry alone;
    Boolean::Combine(disc, nothing, GXCombineUnion, 0.25F, alone);
    for (const uint32_t mode : {GXCombineUnion, GXCombineExclusiveOr, GXCombineDifference}) {
        Geometry out, near, clip;
        Boolean::Combine(disc, speck, mode, 0.25F, out);
        EXPECT_EQ(out.Figures().size(), mode == GXCombineDifference ? 1U : 2U);
        AddRing(clip, BoxRing(0, 0, 20, 20));
        Boolean::Combine(out, clip, GXCombineIntersection, 0.25F, near);
        EXPECT_NEAR(AreaOf(near), AreaOf(alone), 1e-5) << mode;
    }
    // A strip from far left to far right has its sides where they were.
    Geometry joined;
    Boolean::Combine(strip, disc, GXCombineUnion, 0.25F, joined);
    ASSERT_EQ(Faults(joined), "");
    for (const Figure& f : joined.Figures()) {
        for (const Point& p : f.Points()) {
            EXPECT_TRUE(std::fabs(p.x) <= 20 || p.y == 10.5F || p.y == 800.5F) << p.x << ' ' << p.y;
        }
    }
    // A line from far to far passes the page where its two ends say, however far they are.
    for (const float size : {1e7F, 1e9F, 1e15F, 1e30F, 3e38F}) {
        Geometry half, out;
        AddRing(half, {{-size, -size}, {size, size}, {size, -size}});
        Boolean::Combine(half, page, GXCombineUnion, 0.01F, out);
        ASSERT_EQ(Faults(out), "") << size;
        const std::vector<Segment> edges = SegmentsOf(out);
        for (float x = -500; x < 1000; x += 50) {
            const bool inPage = x > 10.5F && x < 600.125F;
            EXPECT_EQ(ExactWinding(edges, {x, x + 0.02F}), inPage && x > 20 ? 1 : 0) << size << ' ' << x;
            EXPECT_EQ(ExactWinding(edges, {x, x - 0.02F}), 1) << size << ' ' << x;
        }
    }
}

TEST(BooleanFar, CutsAreExactHoweverFarTheEndsAre) {
    EXPECT_EQ(CutAcross({-1e30F, -1e30F}, {1e30F, 1e30F}, PlaneAxis::X, 1024, 0.125), 1024);
    EXPECT_EQ(CutAcross({3e38F, 3e38F}, {-3e38F, -3e38F}, PlaneAxis::Y, -3, 0.125), -3);
    EXPECT_EQ(CutAcross({-1e38F, 7}, {1e38F, 7}, PlaneAxis::X, 5, 0.125), 7);
    const float tiny = std::numeric_limits<float>::denorm_min();
    EXPECT_EQ(CutAcross({0, 0}, {4 * tiny, 8 * tiny}, PlaneAxis::X, tiny, tiny), 2 * tiny);
}

/// Rings of floats that meet where they should not: near and far, special values, grids, tiny and huge.
class HostileMaker {
public:
    explicit HostileMaker(uint32_t seed) : m_random(seed) {}

    uint32_t Whole(uint32_t n) { return static_cast<uint32_t>(m_random()) % n; }
    float Share() { return static_cast<float>(m_random() >> 8) / 16777216.0F; }
    float Number() {
        constexpr float kSpecial[] = {0,      -0.0F,  1,        -1,      1e30F, -1e30F,     1e-30F,   -1e-30F, 3.4e38F,
                                      -3e38F, 1e-45F, 16777216, 8388607, 0.25F, 2147483648, -1048576, 131072,  0.1F};
        switch (m_kind) {
        case 0: // near
            return Share() * 600;
        case 1: // far and near
            return Whole(2) == 0 ? Share() * 600 : std::ldexp(2 * Share() - 1, static_cast<int>(Whole(100)));
        case 2:
            return kSpecial[Whole(std::size(kSpecial))];
        case 3: // everything
            return Whole(3) == 0 ? kSpecial[Whole(std::size(kSpecial))]
                                 : std::ldexp(2 * Share() - 1, static_cast<int>(Whole(140)) - 60);
        default: // floats side by side, beyond the even grid
            return 33554432.0F + 4 * static_cast<float>(Whole(12)) - (Whole(8) == 0 ? 33554432.0F : 0);
        }
    }
    void Make(Geometry& to, uint32_t kind) {
        m_kind = kind;
        to.SetFillRule(Whole(2));
        for (uint32_t figures = 1 + Whole(3); figures > 0; --figures) {
            Ring ring;
            if (Whole(3) == 0) {
                const float l = Number(), t = Number(), r = Number(), b = Number();
                ring = BoxRing(l, t, r, b);
            } else {
                for (uint32_t count = 3 + Whole(6); count > 0; --count) {
                    const float x = Number();
                    ring.push_back({x, Number()});
                }
            }
            AddRing(to, ring);
        }
    }

private:
    std::mt19937 m_random;
    uint32_t m_kind = 0;
};

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(GX_TEST_EMULATED)
constexpr uint32_t kHostilePairs = 1000;
#else
constexpr uint32_t kHostilePairs = 12500; // four combinations each
#endif

/// GX_BOOLEAN_HOSTILE sets the number of pairs, GX_BOOLEAN_SEED the first of them.
TEST(BooleanFar, HostileFloatsGiveSimpleAreasWithinTheBudget) {
    const char* wanted = std::getenv("GX_BOOLEAN_HOSTILE");
    const char* from = std::getenv("GX_BOOLEAN_SEED");
    const uint32_t first = from != nullptr ? static_cast<uint32_t>(std::atoi(from)) : 1;
    const uint32_t count = wanted != nullptr ? static_cast<uint32_t>(std::atoi(wanted)) : kHostilePairs;
    for (uint32_t seed = first; seed < first + count; ++seed) {
        HostileMaker maker(seed);
        Geometry a, b, results[4];
        maker.Make(a, seed % 5);
        maker.Make(b, maker.Whole(3) == 0 ? maker.Whole(5) : seed % 5);
        constexpr float kTolerances[] = {0.25F, 0.25F, 0.01F, 1e-6F};
        const float tolerance = kTolerances[maker.Whole(4)];
        for (const uint32_t mode : kModes) {
            CellCombiner::Counts work;
            Boolean::Combine(a, b, mode, tolerance, results[mode], &work);
            ASSERT_EQ(Faults(results[mode]), "") << "GX_BOOLEAN_SEED=" << seed << " mode " << mode;
            ASSERT_LE(work.sweep.sweeps, 8U) << seed;
            ASSERT_LE(work.pieces, 40000U) << seed;
            ASSERT_LE(work.sweep.points, 20000U) << seed;
        }
        // Points beside the operands' own, and between them.
        std::vector<Point> ends, points;
        for (const Shape* s : {&a, &b}) {
            for (const Segment& e : SegmentsOf(*s)) {
                ends.push_back(e.a);
            }
        }
        for (int i = 0; i < 12; ++i) {
            const Point p = ends[maker.Whole(static_cast<uint32_t>(ends.size()))];
            const Point q = ends[maker.Whole(static_cast<uint32_t>(ends.size()))];
            const float t = maker.Share();
            points.push_back({p.x + t * (q.x - p.x), p.y + t * (q.y - p.y)});
            points.push_back({p.x + (maker.Share() - 0.5F) * 4, p.y + (maker.Share() - 0.5F) * 4});
        }
        CheckAt(a, b, results, points, tolerance);
        if (HasFatalFailure()) {
            FAIL() << "GX_BOOLEAN_SEED=" << seed;
        }
    }
}

} // namespace
} // namespace Graphics
