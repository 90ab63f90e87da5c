// SPDX-License-Identifier: MIT
// The geometry calls as a host sees them.
#include <GX/GX.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

class GeometryInterface : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(GXCreateGeometry(&g), GXResultSuccess); }
    void TearDown() override { GXObjectRelease(g); }
    void Begin(float x, float y) {
        const GXPoint p{x, y};
        EXPECT_EQ(GXGeometryBeginFigure(g, &p), GXResultSuccess);
    }
    void Line(float x, float y) {
        const GXPoint p{x, y};
        EXPECT_EQ(GXGeometryLineTo(g, &p), GXResultSuccess);
    }
    static std::string Record(GXGeometry geometry) {
        std::string text;
        const GXGeometrySinkCallbacks table{
            &text,
            [](void* c, uint32_t rule) { *static_cast<std::string*>(c) += "r" + std::to_string(rule); },
            [](void* c, const GXPoint* p) { Add(c, " b", p); },
            [](void* c) { *static_cast<std::string*>(c) += " e"; },
            [](void* c) { *static_cast<std::string*>(c) += " z"; },
            [](void* c, const GXPoint* p) { Add(c, " l", p); },
            [](void* c, const GXPoint* a, const GXPoint* b, const GXPoint* p) {
                Add(c, " c", a);
                Add(c, ",", b);
                Add(c, ",", p);
            }};
        EXPECT_EQ(GXGeometrySendToSink(geometry, &table), GXResultSuccess);
        return text;
    }
    static void Add(void* c, const char* what, const GXPoint* p) {
        *static_cast<std::string*>(c) +=
            what + std::to_string(std::lround(p->x)) + ":" + std::to_string(std::lround(p->y));
    }

    GXGeometry g = nullptr;
};

} // namespace

TEST_F(GeometryInterface, CurrentPointAndUnfinishedFigures) {
    GXPoint p{};
    uint8_t empty = 0;
    Line(5, 5);
    EXPECT_EQ(GXGeometryGetCurrentPoint(g, &p), GXResultFalse);
    Begin(1, 2);
    GXGeometryEndFigure(g);
    GXGeometryEmpty(g, &empty);
    EXPECT_EQ(empty, 1);
    EXPECT_EQ(GXGeometryGetCurrentPoint(g, &p), GXResultSuccess);
    EXPECT_EQ(p.x, 1);
    Begin(3, 4);
    GXGeometryEndFigureClose(g);
    GXGeometryEmpty(g, &empty);
    EXPECT_EQ(empty, 0);
    Begin(10, 0);
    Line(20, 0);
    GXGeometryGetCurrentPoint(g, &p);
    EXPECT_EQ(p.x, 20);
    GXGeometryEndFigureClose(g);
    GXGeometryGetCurrentPoint(g, &p);
    EXPECT_EQ(p.x, 10);
    Begin(0, 0);
    Line(-7, 0); // replayed only once it is finished, but in the bound
    EXPECT_EQ(Record(g), "r0 b3:4 z b10:0 l20:0 z");
    GXRect bound{};
    GXGeometryGetBound(g, nullptr, &bound);
    EXPECT_EQ(bound.left, -7);
}

TEST_F(GeometryInterface, ReadyMadeFiguresAndCurves) {
    GXGeometrySetFillRule(g, 5);
    const GXRect r{0, 0, 10, 20}, thin{3, 0, 3, 9};
    GXGeometryRectangle(g, &r);
    GXGeometryEllipse(g, &r);
    GXGeometryEllipse(g, &thin);
    GXGeometryRoundRectangle(g, &thin, 1, 1);
    Begin(1, 1);
    const GXPoint c2{4, 5}, end{6, 7};
    GXGeometryConicCurveTo(g, &c2, &end);
    GXGeometryEndFigure(g);
    EXPECT_EQ(Record(g), "r5 b0:0 l10:0 l10:20 l0:20 z "
                         "b5:20 c2:20,0:16,0:10 c0:4,2:0,5:0 c8:0,10:4,10:10 c10:16,8:20,5:20 z "
                         "b1:1 c1:1,4:5,6:7 e");
    GXGeometry round = nullptr;
    GXCreateGeometry(&round);
    GXGeometryRoundRectangle(round, &r, 100, 4);
    GXRect bound{};
    const GXMatrix turn{0, 1, -1, 0, 0, 0};
    GXGeometryGetBound(round, &turn, &bound);
    EXPECT_EQ(bound.left, -20);
    EXPECT_EQ(bound.right, 0);
    EXPECT_EQ(bound.bottom, 10);
    GXObjectRelease(round);
}

TEST_F(GeometryInterface, RoundRectanglesAreLimitedBySidesThatMayBeNegative) {
    const auto rounded = [](GXRect rect, float x, float y) {
        GXGeometry geometry = nullptr;
        GXCreateGeometry(&geometry);
        GXGeometryRoundRectangle(geometry, &rect, x, y);
        const std::string calls = Record(geometry);
        GXObjectRelease(geometry);
        return calls.substr(0, calls.find('c')); // to the first corner
    };
    EXPECT_EQ(rounded({0, 0, 10, 20}, 2, 3), "r0 b2:0 l8:0 ");
    EXPECT_EQ(rounded({0, 0, 10, 20}, 100, 100), "r0 b5:0 l5:0 ");
    EXPECT_EQ(rounded({10, 20, 0, 0}, 2, 3), "r0 b5:20 l5:20 "); // half of -10
    EXPECT_EQ(rounded({0, 0, 10, 20}, -2, 3), "r0 b-2:0 l12:0 ");
    for (const float radius : {0.0F, -0.0F}) {
        EXPECT_EQ(rounded({0, 0, 10, 20}, radius, 3), "r0 b0:0 l10:0 l10:20 l0:20 z");
    }
}

TEST_F(GeometryInterface, CopiesAreEqualOtherStartsAreNot) {
    uint8_t equal = 1;
    GXGeometry other = nullptr, copy = nullptr, moved = nullptr;
    EXPECT_EQ(GXGeometryPointsEqual(g, g, &equal), GXResultSuccess);
    EXPECT_EQ(equal, 0); // nothing in it
    Begin(0, 0);
    Line(5, 0);
    Line(5, 5);
    GXGeometryEndFigureClose(g);
    GXGeometryCopy(g, &copy);
    GXGeometryPointsEqual(g, copy, &equal);
    EXPECT_EQ(equal, 1);
    // A figure that is still open counts on neither side.
    Begin(1, 1);
    Line(8, 2);
    GXGeometryPointsEqual(g, copy, &equal);
    EXPECT_EQ(equal, 1);
    GXGeometryPointsEqual(copy, g, &equal);
    EXPECT_EQ(equal, 1);
    GXGeometry again = nullptr;
    GXGeometryCopy(g, &again);
    GXGeometryPointsEqual(g, again, &equal);
    EXPECT_EQ(equal, 1);
    GXGeometryEndFigure(g);
    GXGeometryPointsEqual(g, again, &equal);
    EXPECT_EQ(equal, 0);
    GXObjectRelease(again);
    GXObjectRelease(copy);
    GXGeometryCopy(g, &copy);
    GXCreateGeometry(&other);
    const GXPoint points[3]{{5, 0}, {5, 5}, {0, 0}};
    GXGeometryBeginFigure(other, &points[0]);
    GXGeometryLineTo(other, &points[1]);
    GXGeometryLineTo(other, &points[2]);
    GXGeometryEndFigureClose(other);
    GXGeometryPointsEqual(g, other, &equal);
    EXPECT_EQ(equal, 0);
    const GXMatrix m{2, 0, 0, 2, 10, 20};
    GXGeometryTransform(g, &m, &moved);
    EXPECT_EQ(Record(moved), "r0 b10:20 l20:20 l20:30 z b12:22 l26:24 e");
    for (GXGeometry h : {other, copy, moved}) {
        GXObjectRelease(h);
    }
}

// A sink may go on with the geometry that it is being sent: what is sent is the path as it was at the call.
TEST_F(GeometryInterface, ASinkMayChangeAndReleaseTheGeometry) {
    struct Host {
        GXGeometry geometry;
        std::string text;
        bool releases;
    };
    const auto take = [](void* c, const char* what, const GXPoint* p) {
        auto& host = *static_cast<Host*>(c);
        Add(&host.text, what, p);
        if (host.geometry == nullptr) {
            return;
        }
        const GXRect more{50, 50, 60, 60};
        EXPECT_EQ(GXGeometryRectangle(host.geometry, &more), GXResultSuccess);
        EXPECT_EQ(GXGeometrySetFillRule(host.geometry, 1), GXResultSuccess);
        if (host.releases) {
            GXObjectRelease(host.geometry);
            host.geometry = nullptr;
        }
    };
    static const auto s_take = take;
    GXGeometrySinkCallbacks table{};
    table.BeginFigure = [](void* c, const GXPoint* p) { s_take(c, " b", p); };
    table.LineTo = [](void* c, const GXPoint* p) { s_take(c, " l", p); };
    table.EndFigure = [](void* c) { static_cast<Host*>(c)->text += " e"; };
    for (const bool releases : {false, true}) {
        Host host{nullptr, "", releases};
        ASSERT_EQ(GXCreateGeometry(&host.geometry), GXResultSuccess);
        for (const float x : {0.0F, 3.0F, 6.0F}) {
            const GXPoint from{x, 1}, to{x, 2};
            ASSERT_EQ(GXGeometryBeginFigure(host.geometry, &from), GXResultSuccess);
            ASSERT_EQ(GXGeometryLineTo(host.geometry, &to), GXResultSuccess);
            ASSERT_EQ(GXGeometryEndFigure(host.geometry), GXResultSuccess);
        }
        table.context = &host;
        EXPECT_EQ(GXGeometrySendToSink(host.geometry, &table), GXResultSuccess);
        EXPECT_EQ(host.text, " b0:1 l0:2 e b3:1 l3:2 e b6:1 l6:2 e");
        if (!releases) {
            EXPECT_EQ(Record(host.geometry).substr(0, 12), "r1 b0:1 l0:2");
            GXObjectRelease(host.geometry);
        }
    }
}

TEST_F(GeometryInterface, WidenMakesOutlinesAndReportsBadDashes) {
    Begin(0, 0);
    Line(10, 0);
    GXGeometryEndFigure(g);
    Begin(std::numeric_limits<float>::quiet_NaN(), 0);
    Line(10, 50);
    GXGeometryEndFigure(g);
    GXGeometrySetFillRule(g, 1);
    GXGeometry out = nullptr;
    ASSERT_EQ(GXGeometryWiden(g, 4, nullptr, &out), GXResultSuccess);
    EXPECT_EQ(Record(out), "r0 b0:-2 l10:-2 l10:2 l0:2 z");
    GXObjectRelease(out);

    GXStrokeStyle style{};
    style.miterLimit = 10;
    style.cap = GXLineCapSquare;
    style.dashes[0] = 4;
    style.dashCount = 1;
    out = nullptr;
    ASSERT_EQ(GXGeometryWiden(g, 2, &style, &out), GXResultSuccess);
    EXPECT_EQ(Record(out), "r0 b-1:-1 l5:-1 l5:1 l-1:1 z b7:-1 l11:-1 l11:1 l7:1 z");
    GXObjectRelease(out);

    out = nullptr;
    style.dashes[0] = -1;
    EXPECT_EQ(GXGeometryWiden(g, 2, &style, &out), GXResultEngineError);
    EXPECT_EQ(out, nullptr);
}
