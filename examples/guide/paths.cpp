// SPDX-License-Identifier: MIT
// Paths of lines and curves, the two fill rules, and what a stroke can look like.
#include "Guide.h"

namespace {

Owned<GXGeometry> Star(GXFillRule rule) {
    const GXPoint corners[] = {{50, 4}, {77, 88}, {5, 36}, {95, 36}, {23, 88}};
    Owned<GXGeometry> star;
    CHECK(GXCreateGeometry(star.Out()));
    CHECK(GXGeometrySetFillRule(star, rule));
    CHECK(GXGeometryBeginFigure(star, &corners[0]));
    for (int i = 1; i < 5; ++i)
        CHECK(GXGeometryLineTo(star, &corners[i]));
    CHECK(GXGeometryEndFigureClose(star));
    return star;
}

Owned<GXGeometry> Wave() {
    const GXPoint start = {10, 70}, c1 = {40, -30}, c2 = {60, 150}, end = {90, 30}, corner = {60, 20};
    Owned<GXGeometry> wave;
    CHECK(GXCreateGeometry(wave.Out()));
    CHECK(GXGeometryBeginFigure(wave, &start));
    CHECK(GXGeometryCubicCurveTo(wave, &c1, &c2, &end));
    CHECK(GXGeometryLineTo(wave, &corner));
    CHECK(GXGeometryEndFigure(wave)); // left open: its ends get caps
    return wave;
}

} // namespace

int main() {
    Page page(420, 220);
    const auto ink = Solid(0xFF264653), gold = Solid(0xFFE9C46A), red = Solid(0xFFE76F51);

    // Fill rules: five overlapping arms, with and without the middle; around both a line of one device pixel.
    for (const GXFillRule rule : {GXFillRuleNonZero, GXFillRuleEvenOdd}) {
        const auto star = Star(rule);
        CHECK(GXRenderTargetFillGeometry(page, star, gold));
        CHECK(GXRenderTargetStrokeGeometry(page, star, ink, 0, nullptr));
        CHECK(GXRenderTargetTranslateCTM(page, 105, 0));
    }

    // A wide open path: what its corner and its ends look like.
    const auto wave = Wave();
    for (const GXStrokeStyle& style : {
             GXStrokeStyle{.join = GXLineJoinMiter, .cap = GXLineCapFlat, .miterLimit = 10},
             GXStrokeStyle{.join = GXLineJoinRound, .cap = GXLineCapRound, .miterLimit = 10},
         }) {
        CHECK(GXRenderTargetStrokeGeometry(page, wave, ink, 14, &style));
        CHECK(GXRenderTargetStrokeGeometry(page, wave, gold, 1, nullptr));
        CHECK(GXRenderTargetTranslateCTM(page, 105, 0));
    }

    // Dashes: lengths in user units, dash and gap in turn. A dash of length 0 with round caps is a dot.
    CHECK(GXRenderTargetSetCTM(page, nullptr));
    CHECK(GXRenderTargetTranslateCTM(page, 0, 110));
    const GXStrokeStyle dashed = {.cap = GXLineCapFlat, .miterLimit = 10, .dashes = {12, 4, 3, 4}, .dashCount = 4};
    const GXStrokeStyle dotted = {.cap = GXLineCapRound, .miterLimit = 10, .dashes = {0, 9}, .dashCount = 2};
    CHECK(GXRenderTargetStrokeGeometry(page, wave, red, 4, &dashed));
    CHECK(GXRenderTargetTranslateCTM(page, 105, 0));
    CHECK(GXRenderTargetStrokeGeometry(page, wave, red, 5, &dotted));
    CHECK(GXRenderTargetTranslateCTM(page, 105, 0));

    // The pen lives in user space: under unequal scales it is an ellipse.
    const GXRect ring = {4, 20, 24, 80};
    CHECK(GXRenderTargetPushState(page));
    CHECK(GXRenderTargetScaleCTM(page, 3.2f, 1));
    CHECK(GXRenderTargetStrokeEllipse(page, &ring, ink, 6, nullptr));
    CHECK(GXRenderTargetPopState(page));
    CHECK(GXRenderTargetTranslateCTM(page, 105, 0));

    // Stroke adjustment: with it, which is how painting begins, level and upright lines cover whole pixels.
    for (int i = 0; i < 8; ++i) {
        const float at = 12.3f * static_cast<float>(i);
        const GXRect bar = {8 + at / 2.2f, 8 + at / 2.2f, 92 - at / 2.2f, 92 - at / 2.2f};
        CHECK(GXRenderTargetSetStrokeAdjustment(page, i % 2 == 0));
        CHECK(GXRenderTargetStrokeRect(page, &bar, i % 2 == 0 ? ink : red, 1.4f, nullptr));
    }
    page.Save(L"paths.png");
}
