// SPDX-License-Identifier: MIT
// What lies under a point: asked at every fourth pixel, and shown as dots.
#include "Guide.h"

#include <vector>

namespace {

struct Shape {
    Owned<GXGeometry> path;
    GXMatrix matrix; // how it is drawn, and how it is asked
    float reach;     // how near counts as a hit, in pixels
    uint32_t color;
};

} // namespace

int main() {
    std::vector<Shape> shapes(3);
    for (const size_t i : {0, 1})
        CHECK(GXCreateGeometry(shapes[i].path.Out()));

    // A turned ring: an ellipse with a hole, which is not hit.
    const GXRect outer = {-70, -40, 70, 40}, hole = {-40, -18, 40, 18};
    CHECK(GXGeometrySetFillRule(shapes[0].path, GXFillRuleEvenOdd));
    CHECK(GXGeometryEllipse(shapes[0].path, &outer));
    CHECK(GXGeometryEllipse(shapes[0].path, &hole));
    shapes[0].matrix = {0.8f, 0.5f, -0.5f, 0.8f, 100, 95};
    shapes[0].reach = 0;
    shapes[0].color = 0xFF2A9D8F;

    // A thin curve, open: its own line is hit from six pixels away. The area that a fill would close is hit, too.
    const GXPoint start = {200, 150}, c1 = {220, 10}, c2 = {290, 10}, end = {310, 150};
    CHECK(GXGeometryBeginFigure(shapes[1].path, &start));
    CHECK(GXGeometryCubicCurveTo(shapes[1].path, &c1, &c2, &end));
    CHECK(GXGeometryEndFigure(shapes[1].path));
    shapes[1].matrix = {1, 0, 0, 1, 0, 0};
    shapes[1].reach = 6;
    shapes[1].color = 0xFFE76F51;

    // A line that only its stroke fills: widen it, and ask the outline.
    const GXPoint from = {330, 40}, to = {410, 150};
    Owned<GXGeometry> line;
    CHECK(GXCreateGeometry(line.Out()));
    CHECK(GXGeometryBeginFigure(line, &from));
    CHECK(GXGeometryLineTo(line, &to));
    CHECK(GXGeometryEndFigure(line));
    const GXStrokeStyle round = {.join = GXLineJoinRound, .cap = GXLineCapRound, .miterLimit = 10};
    shapes[2].matrix = {1, 0, 0, 1, 0, 0};
    shapes[2].reach = 0;
    shapes[2].color = 0xFF457B9D;
    CHECK(GXGeometryWiden(line, 24, &round, shapes[2].path.Out()));

    Page page(440, 190);
    for (const Shape& shape : shapes) {
        CHECK(GXRenderTargetSetCTM(page, &shape.matrix));
        CHECK(GXRenderTargetStrokeGeometry(page, shape.path, Solid(shape.color), 1, nullptr));
    }
    CHECK(GXRenderTargetSetCTM(page, nullptr));
    for (float y = 2; y < 190; y += 4) {
        for (float x = 2; x < 440; x += 4) {
            uint32_t color = 0xFFDDDDDD;
            for (const Shape& shape : shapes) {
                const GXPoint point = {x, y};
                uint8_t hit = 0;
                CHECK(GXGeometryHitTest(shape.path, &point, &shape.matrix, shape.reach, &hit));
                if (hit != 0)
                    color = shape.color;
            }
            const GXRect dot = {x - 0.5f, y - 0.5f, x + 0.5f, y + 0.5f};
            CHECK(GXRenderTargetFillRect(page, &dot, Solid(color)));
        }
    }
    page.Save(L"hit-tests.png");
}
