// SPDX-License-Identifier: MIT
// Two areas combined in four ways, and an outline that is made by widening a path.
#include "Guide.h"

namespace {

Owned<GXGeometry> Combined(GXGeometry a, GXGeometry b, uint32_t mode) {
    Owned<GXGeometry> result;
    CHECK(GXGeometryCombine(a, b, mode, 0.05f, result.Out())); // curves to within a twentieth of a unit
    return result;
}

} // namespace

int main() {
    Page page(440, 220);
    const auto fill = Solid(0xFFBFDDD4), line = Solid(0xFF264653), pale = Solid(0xFFE9C46A);
    Owned<GXGeometry> disc, bar;
    CHECK(GXCreateGeometry(disc.Out()));
    CHECK(GXCreateGeometry(bar.Out()));
    const GXRect round = {8, 8, 78, 78}, box = {40, 30, 100, 95};
    CHECK(GXGeometryEllipse(disc, &round));
    CHECK(GXGeometryRoundRectangle(bar, &box, 14, 14));

    // One geometry comes out, with outlines and holes: it can be filled, stroked, clipped to and combined again.
    for (const uint32_t mode : {GXCombineUnion, GXCombineIntersection, GXCombineExclusiveOr, GXCombineDifference}) {
        const auto result = Combined(disc, bar, mode);
        CHECK(GXRenderTargetFillGeometry(page, result, fill));
        CHECK(GXRenderTargetStrokeGeometry(page, result, line, 2, nullptr));
        CHECK(GXRenderTargetTranslateCTM(page, 110, 0));
    }

    // A wide stroke as an area; without the disc in the middle; and its own outline in a thin line.
    CHECK(GXRenderTargetSetCTM(page, nullptr));
    const GXPoint start = {30, 190}, c1 = {140, 60}, c2 = {280, 300}, end = {410, 130};
    Owned<GXGeometry> path, wide, hole;
    CHECK(GXCreateGeometry(path.Out()));
    CHECK(GXGeometryBeginFigure(path, &start));
    CHECK(GXGeometryCubicCurveTo(path, &c1, &c2, &end));
    CHECK(GXGeometryEndFigure(path));
    const GXStrokeStyle style = {.join = GXLineJoinRound, .cap = GXLineCapRound, .miterLimit = 10};
    CHECK(GXGeometryWiden(path, 34, &style, wide.Out()));
    CHECK(GXCreateGeometry(hole.Out()));
    const GXRect middle = {185, 130, 255, 200};
    CHECK(GXGeometryEllipse(hole, &middle));
    const auto cut = Combined(wide, hole, GXCombineDifference);
    CHECK(GXRenderTargetFillGeometry(page, cut, pale));
    CHECK(GXRenderTargetStrokeGeometry(page, cut, line, 2, nullptr));
    page.Save(L"combined-areas.png");
}
