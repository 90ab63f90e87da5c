// SPDX-License-Identifier: MIT
// Hit tests against the plain answer: everything flattened into thousands of chords in long double, the winding number
// and the least distance taken over all of them.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "Boolean/HitTester.h"
#include "Boolean/Orientation.h"
#include "Geometry/Figures.h"
#include "Geometry/Geometry.h"
#include "Geometry/Transformer.h"

namespace Graphics {
namespace {

using Real = long double;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// The winding number around a point, and how far outline and undrawn closing lines are.
class Oracle {
public:
    Oracle(const Point& p, int chords) : m_x(p.x), m_y(p.y), m_chords(chords) {}
    void SetFillRule(uint32_t r) { rule = r; }
    void BeginFigure(const Point& p) { m_start = m_at = p; }
    void EndFigure() { Chord(m_at.x, m_at.y, m_start.x, m_start.y, closing); }
    void EndFigureClose() { LineTo(m_start); }
    void LineTo(const Point& p) {
        Chord(m_at.x, m_at.y, p.x, p.y, outline);
        m_at = p;
    }
    void CubicTo(const Point& c1, const Point& c2, const Point& end) {
        Real x = m_at.x, y = m_at.y;
        for (int i = 1; i <= m_chords; ++i) {
            const Real t = static_cast<Real>(i) / m_chords, s = 1 - t;
            const auto at = [&](Real a, Real b, Real c, Real d) {
                return i == m_chords ? d : s * s * s * a + 3 * s * s * t * b + 3 * s * t * t * c + t * t * t * d;
            };
            const Real nextX = at(m_at.x, c1.x, c2.x, end.x), nextY = at(m_at.y, c1.y, c2.y, end.y);
            Chord(x, y, nextX, nextY, outline);
            x = nextX, y = nextY;
        }
        m_at = end;
    }
    [[nodiscard]] bool Inside() const { return (rule == 0 ? winding : winding % 2) != 0; }

    uint32_t rule = 0;
    int winding = 0;
    Real outline = 1e30L, closing = 1e30L;

private:
    void Chord(Real ax, Real ay, Real bx, Real by, Real& least) {
        const Real dx = bx - ax, dy = by - ay, length = dx * dx + dy * dy;
        const Real t = length > 0 ? ((m_x - ax) * dx + (m_y - ay) * dy) / length : 0, k = t < 0 ? 0 : t > 1 ? 1 : t;
        const Real x = ax + k * dx - m_x, y = ay + k * dy - m_y;
        if (const Real squared = x * x + y * y; squared < least * least) {
            least = std::sqrt(squared);
        }
        if ((ay <= m_y) != (by <= m_y) && ax + (m_y - ay) / dy * dx > m_x) {
            winding += by > ay ? 1 : -1;
        }
    }

    Real m_x, m_y;
    int m_chords;
    Point m_start{}, m_at{};
};

class Random {
public:
    explicit Random(uint32_t seed) : m_engine(seed) {}
    int Int(int from, int to) { return std::uniform_int_distribution<int>(from, to)(m_engine); }
    float Real(float from, float to) { return std::uniform_real_distribution<float>(from, to)(m_engine); }
    /// On a coarse grid half the time: shared heights, upright and level lines, points on the outline.
    Point Place() {
        return Int(0, 1) == 0 ? Point{static_cast<float>(Int(0, 10)) * 10, static_cast<float>(Int(0, 10)) * 10}
                              : Point{Real(0, 100), Real(0, 100)};
    }
    void Fill(Geometry& shape) {
        shape.SetFillRule(static_cast<uint32_t>(Int(0, 1)));
        for (int figure = Int(1, 3); figure > 0; --figure) {
            const int kind = Int(0, 7);
            const Point a = Place(), b = Place();
            if (kind == 0) {
                AddEllipse(shape, {a.x, a.y, b.x, b.y});
                continue;
            }
            if (kind == 1) {
                AddRoundRectangle(shape, {a.x, a.y, a.x + 40, a.y + 30}, 12, 9);
                continue;
            }
            shape.BeginFigure(a);
            for (int i = Int(1, 6); i > 0; --i) {
                const Point c1 = Place(), c2 = Place(), end = Place();
                if (Int(0, 2) == 0) {
                    shape.LineTo(end);
                } else {
                    shape.CubicTo(Int(0, 5) == 0 ? c2 : c1, c2, end);
                }
            }
            Int(0, 1) == 0 ? shape.EndFigure() : shape.EndFigureClose();
        }
    }

private:
    std::mt19937 m_engine;
};

template <class Sink> void Send(const Shape& shape, const Matrix& m, Sink& sink) {
    Transformer<Sink> transformer(sink, m);
    sink.SetFillRule(shape.FillRule());
    shape.ReplayFigures(transformer);
}

TEST(HitTester, AgreesWithThePlainAnswerOnRandomShapes) {
    Random random(23);
    int hits = 0, asked = 0, rim = 0;
#ifdef GX_TEST_EMULATED // the oracle's long doubles are made by software there
    constexpr int kRounds = 50;
#else
    constexpr int kRounds = 500;
#endif
    for (int round = 0; round < kRounds; ++round) {
        Geometry shape;
        random.Fill(shape);
        Matrix m = kIdentity;
        if (random.Int(0, 1) == 0) {
            m = {random.Real(-2, 2), random.Real(-1, 1), random.Real(-1, 1),
                 random.Real(-2, 2), random.Real(-9, 9), random.Real(-9, 9)};
        }
        for (int i = 0; i < 8; ++i) {
            Point p = random.Place();
            p = i < 2 ? p : Map(m, p);
            const int kind = random.Int(0, 3);
            float tolerance = kind == 0 ? 0 : kind == 1 ? random.Real(0, 1) : random.Real(0, 40);
            Oracle oracle(p, 800);
            Send(shape, m, oracle);
            const auto outline = static_cast<float>(oracle.outline);
            if (kind == 3) { // just inside or outside the reach of the tolerance
                tolerance = std::max(0.0F, outline + static_cast<float>(random.Int(0, 1) * 2 - 1) * 1.5e-3F);
                ++rim;
            }
            // The chords stray from their curves by up to 5e-4 here.
            if (std::fabs(outline - tolerance) < 1e-3F || std::min(oracle.outline, oracle.closing) < 1e-3L) {
                continue;
            }
            const bool expected = oracle.Inside() || oracle.outline <= tolerance;
            ++asked;
            hits += expected ? 1 : 0;
            ASSERT_EQ(HitTester::Test(shape, p, m, tolerance), expected)
                << "round " << round << " point " << p.x << ", " << p.y << " tolerance " << tolerance << " distance "
                << outline << " winding " << oracle.winding << " rule " << oracle.rule;
        }
    }
    EXPECT_GT(asked, kRounds * 32 / 5);
    EXPECT_GT(rim, kRounds * 8 / 5);
    EXPECT_GT(hits, asked / 5);
    EXPECT_LT(hits, asked * 4 / 5);
}

/// Integer points up to 2^24: every sum of the plain test is exact in 64 bits, and most points lie on or beside a line.
TEST(HitTester, LinesAreJudgedWithoutRounding) {
    std::mt19937 random(5);
    int on = 0;
    for (int i = 0; i < 20000; ++i) {
        const auto number = [&](int32_t most) { return static_cast<int64_t>(random() % static_cast<uint32_t>(most)); };
        const int64_t stepX = number(4000) - 2000, stepY = number(4000) + 1, steps = number(4000) + 1;
        const int64_t ax = number(400000), ay = number(400000), k = number(4001) % (steps + 1);
        const int64_t bx = ax + stepX * steps, by = ay + stepY * steps;
        const int64_t px = ax + stepX * k + number(3) - 1, py = ay + stepY * k;
        const auto point = [](int64_t x, int64_t y) { return Point{static_cast<float>(x), static_cast<float>(y)}; };
        const int64_t cross = (ax - px) * (by - py) - (ay - py) * (bx - px);
        const int sign = cross > 0 ? 1 : cross < 0 ? -1 : 0;
        const Point a = point(ax, ay), b = point(bx, by), p = point(px, py);
        ASSERT_EQ(OrientationSign(a, b, p), sign);
        ASSERT_EQ(OrientationSign(b, a, p), -sign);
        // Scales far apart: where differences round, too.
        const auto scaled = [](const Point& q) { return Point{q.x * 0x1p90F, q.y * 0x1p-100F}; };
        ASSERT_EQ(OrientationSign(scaled(a), scaled(b), scaled(p)), sign);
        Geometry shape;
        shape.BeginFigure(a);
        shape.LineTo(b);
        shape.EndFigure();
        ASSERT_EQ(HitTester::Test(shape, p, kIdentity, 0), sign == 0);
        on += sign == 0 ? 1 : 0;
    }
    EXPECT_GT(on, 5000);
    // Points of y = 3 x whose sizes lie so far apart that their differences round.
    for (int i = 0; i < 2000; ++i) {
        const auto number = [&] { return static_cast<float>(1 + random() % 4000000U); };
        const float r = number(), s = number(), t = number() * 0x1p-45F;
        const Point a{r, 3 * r}, b{-s, -3 * s};
        ASSERT_EQ(OrientationSign(a, b, {t, 3 * t}), 0);
        ASSERT_EQ(OrientationSign(a, b, {t, std::nextafter(3 * t, 1.0F)}), -1);
        ASSERT_EQ(OrientationSign(a, b, {t, std::nextafter(3 * t, 0.0F)}), 1);
    }
    // 1 + 2^-60 and the like do not fit in a double: only the exact sum sees them.
    const Point tiny{0x1p-60F, 0x1p-60F};
    EXPECT_EQ(OrientationSign({1, 1}, {-1, -1}, tiny), 0);
    EXPECT_EQ(OrientationSign({1, 1}, {-1, -1}, {0x1p-60F, 0x1p-61F}), 1);
    EXPECT_EQ(OrientationSign({1, 1}, {-1, -1}, {0x1p-61F, 0x1p-60F}), -1);
}

TEST(HitTester, BordersOutlinesAndOpenFigures) {
    const auto hit = [](const Shape& s, float x, float y, float t) { return HitTester::Test(s, {x, y}, kIdentity, t); };
    Geometry open; // a bowl without a lid
    open.BeginFigure({0, 0});
    open.LineTo({0, 10});
    open.LineTo({10, 10});
    open.LineTo({10, 0});
    open.EndFigure();
    EXPECT_TRUE(hit(open, 5, 5, 0));
    EXPECT_TRUE(hit(open, 5, 0, 0)); // the border that nothing draws
    EXPECT_FALSE(hit(open, 5, -0.5F, 1));
    EXPECT_TRUE(hit(open, 0, -0.5F, 1));
    for (const Point p : {Point{0, 0}, Point{0, 5}, Point{10, 10}, Point{5, 10}, Point{10, 3}}) {
        EXPECT_TRUE(hit(open, p.x, p.y, 0));
        EXPECT_TRUE(hit(open, p.x, p.y, -3));
        EXPECT_TRUE(hit(open, p.x, p.y, kNaN));
    }
    EXPECT_FALSE(hit(open, std::nextafter(10.0F, 11.0F), 3, 0));
    EXPECT_FALSE(hit(open, -1, 3, kNaN));
    EXPECT_TRUE(hit(open, -1e30F, 3, kInfinity));

    Geometry dot;
    dot.BeginFigure({3, 4});
    dot.EndFigureClose();
    EXPECT_TRUE(hit(dot, 3, 4, 0));
    EXPECT_TRUE(hit(dot, 0, 0, 5));
    EXPECT_FALSE(hit(dot, 0, 0, 4.999F));

    Geometry ring;
    ring.SetFillRule(GXFillRuleEvenOdd);
    AddEllipse(ring, {-50, -50, 50, 50});
    AddEllipse(ring, {-30, -30, 30, 30});
    EXPECT_FALSE(hit(ring, 0, 0, 29));
    EXPECT_TRUE(hit(ring, 0, 0, 30));
    EXPECT_TRUE(hit(ring, 40, 0, 0));
    EXPECT_TRUE(hit(ring, 50, 0, 0)); // where two curves meet
    ring.SetFillRule(GXFillRuleNonZero);
    EXPECT_TRUE(hit(ring, 0, 0, 0));
    const Matrix flat{1, 0, 1, 0, 0, 0}; // all on one line
    EXPECT_TRUE(HitTester::Test(ring, {20, 0}, flat, 0));
    EXPECT_FALSE(HitTester::Test(ring, {20, 1}, flat, 0.5F));
    EXPECT_TRUE(HitTester::Test(ring, {20, 1}, flat, 1));

    Geometry unfinished;
    EXPECT_FALSE(hit(unfinished, 0, 0, kInfinity));
    unfinished.BeginFigure({0, 0});
    unfinished.LineTo({5, 5});
    EXPECT_FALSE(hit(unfinished, 0, 0, 1));
}

TEST(HitTester, CoordinatesWithoutSenseAndWithoutMeasure) {
    const float huge = 3e38F;
    Geometry shape;
    shape.BeginFigure({kNaN, 0});
    shape.LineTo({5, 5});
    shape.LineTo({0, 50});
    shape.EndFigureClose();
    shape.BeginFigure({0, 0});
    shape.CubicTo({kInfinity, 0}, {50, 50}, {0, 50});
    shape.EndFigureClose();
    EXPECT_FALSE(HitTester::Test(shape, {1, 20}, kIdentity, 100));
    AddRectangle(shape, {0, 0, 10, 10});
    EXPECT_TRUE(HitTester::Test(shape, {5, 5}, kIdentity, 0));
    EXPECT_FALSE(HitTester::Test(shape, {1, 20}, kIdentity, 9));
    for (const Point p : {Point{kNaN, 5}, Point{5, kNaN}, Point{kInfinity, 5}, Point{5, -kInfinity}}) {
        EXPECT_FALSE(HitTester::Test(shape, p, kIdentity, kInfinity));
    }
    for (const float bad : {kNaN, kInfinity}) {
        EXPECT_FALSE(HitTester::Test(shape, {5, 5}, {bad, 0, 0, 1, 0, 0}, kInfinity));
        EXPECT_FALSE(HitTester::Test(shape, {5, 5}, {1, 0, 0, 1, 0, bad}, kInfinity));
    }

    // A figure that is finite until it is mapped; its neighbour stays.
    Geometry far;
    AddRectangle(far, {0, 0, 1, 1});
    AddRectangle(far, {1e38F, -1, 2e38F, 1});
    EXPECT_TRUE(HitTester::Test(far, {5, 5}, {10, 0, 0, 10, 0, 0}, 0));
    EXPECT_FALSE(HitTester::Test(far, {huge, 5}, {10, 0, 0, 10, 0, 0}, 0));

    Geometry wide;
    AddEllipse(wide, {-huge / 2, -huge / 2, huge / 2, huge / 2});
    AddEllipse(wide, {5e8F, -1, 5e8F + 1000, 1});
    EXPECT_TRUE(HitTester::Test(wide, {0, 0}, kIdentity, 0));
    EXPECT_FALSE(HitTester::Test(wide, {huge / 2, huge / 2}, kIdentity, 0));
    EXPECT_TRUE(HitTester::Test(wide, {huge, huge}, kIdentity, huge));
    // A curve of a billion units passes a point that is a few units away.
    Geometry bow;
    bow.BeginFigure({0, 0});
    bow.CubicTo({3e8F, 100}, {6e8F, 100}, {9e8F, 0});
    bow.EndFigure();
    EXPECT_TRUE(HitTester::Test(bow, {4.5e8F, 80}, kIdentity, 5.5F)); // it is 75 units high
    EXPECT_FALSE(HitTester::Test(bow, {4.5e8F, 80}, kIdentity, 4.5F));
    EXPECT_TRUE(HitTester::Test(bow, {4.5e8F, 74}, kIdentity, 0));

    // A curve that keeps its distance all along is decided with bounded work.
    Geometry arc;
    arc.BeginFigure({100, 0});
    arc.CubicTo({100, 0}, {100, 0}, {100, 0});
    for (int i = 0; i < 50; ++i) {
        arc.CubicTo({100, 55.228477F}, {55.228477F, 100}, {0, 100});
        arc.CubicTo({55.228477F, 100}, {100, 55.228477F}, {100, 0});
    }
    arc.EndFigure();
    EXPECT_TRUE(HitTester::Test(arc, {0, 0}, kIdentity, 100));
    EXPECT_FALSE(HitTester::Test(arc, {0, 0}, kIdentity, 99.9999F));
    EXPECT_TRUE(HitTester::Test(arc, {0, 0}, kIdentity, 100.02F));
}

} // namespace
} // namespace Graphics
