// SPDX-License-Identifier: MIT
// Colours along a line, between two circles, and across triangles.
#include "Guide.h"

#include <cmath>
#include <vector>

namespace {

Owned<GXBrush> Brush(GXGradient gradient, const GXMatrix* matrix = nullptr) {
    Owned<GXBrush> brush;
    CHECK(GXCreateBrushGradient(gradient, 1, matrix, brush.Out()));
    return brush;
}

} // namespace

int main() {
    Page page(440, 230);
    const GXGradientStop sunset[] = {{0, 0xFF264653}, {0.4f, 0xFF2A9D8F}, {0.7f, 0xFFE9C46A}, {1, 0xFFE76F51}};
    const GXGradientStop hard[] = {{0, 0xFF457B9D}, {0.5f, 0xFFA8DADC}, {0.5f, 0xFFE63946}, {1, 0xFFF1FAEE}};

    // Along a line, and carried on beyond its ends or not: without, the background shows (0: nothing).
    GXLinearGradientDesc line = {.stops = sunset, .stopCount = 4, .start = {60, 0}, .end = {160, 0}};
    line.extendStart = line.extendEnd = 1;
    for (const float top : {10.0f, 40.0f}) {
        Owned<GXGradient> gradient;
        CHECK(GXCreateGradientLinear(&line, gradient.Out()));
        const GXRect bar = {10, top, 210, top + 24};
        CHECK(GXRenderTargetFillRect(page, &bar, Brush(gradient)));
        line.extendStart = line.extendEnd = 0;
        line.background = 0xFFEEEEEE;
    }

    // Two stops at one offset make a hard edge; the brush's matrix turns the line.
    const GXLinearGradientDesc edge = {
        .stops = hard, .stopCount = 4, .start = {0, 0}, .end = {50, 0}, .extendStart = 1, .extendEnd = 1};
    Owned<GXGradient> edged;
    CHECK(GXCreateGradientLinear(&edge, edged.Out()));
    const GXMatrix turned = {1, 1, -1, 1, 85, 70};
    const GXRect square = {10, 74, 210, 124};
    CHECK(GXRenderTargetFillRect(page, &square, Brush(edged, &turned)));

    // Between two circles: a ball lit from one side, and a cone, where neither circle is inside the other.
    const GXGradientStop ball[] = {{0, 0xFFFFFFFF}, {0.3f, 0xFFF4A261}, {1, 0xFF7F2D1D}};
    const GXRadialGradientDesc lit = {.stops = ball,
                                      .stopCount = 3,
                                      .startCenter = {250, 42},
                                      .startRadius = 0,
                                      .endCenter = {270, 62},
                                      .endRadius = 52,
                                      .extendEnd = 1};
    const GXRadialGradientDesc cone = {.stops = sunset,
                                       .stopCount = 4,
                                       .startCenter = {345, 95},
                                       .startRadius = 6,
                                       .endCenter = {395, 45},
                                       .endRadius = 34};
    Owned<GXGradient> lightOnBall, alongCone;
    CHECK(GXCreateGradientRadial(&lit, lightOnBall.Out()));
    CHECK(GXCreateGradientRadial(&cone, alongCone.Out()));
    const GXRect disc = {220, 12, 320, 112};
    CHECK(GXRenderTargetFillEllipse(page, &disc, Brush(lightOnBall)));
    CHECK(GXRenderTargetDrawGradient(page, alongCone, 1, nullptr)); // everywhere that the clip leaves

    // Any brush paints any stroke.
    Owned<GXGradient> gradient;
    line.extendStart = line.extendEnd = 1;
    CHECK(GXCreateGradientLinear(&line, gradient.Out()));
    const GXStrokeStyle round = {.join = GXLineJoinRound, .cap = GXLineCapRound, .miterLimit = 10};
    const GXPoint start = {24, 200}, c1 = {80, 90}, c2 = {130, 300}, end = {196, 160};
    Owned<GXGeometry> wave;
    CHECK(GXCreateGeometry(wave.Out()));
    CHECK(GXGeometryBeginFigure(wave, &start));
    CHECK(GXGeometryCubicCurveTo(wave, &c1, &c2, &end));
    CHECK(GXGeometryEndFigure(wave));
    CHECK(GXRenderTargetStrokeGeometry(page, wave, Brush(gradient), 20, &round));

    // Triangles with a colour at each corner, three vertices each: a wheel of twelve.
    const uint32_t rim[] = {0xFFE63946, 0xFFF4A261, 0xFFE9C46A, 0xFF2A9D8F, 0xFF457B9D, 0xFF6D597A};
    std::vector<GXTriMeshVertex> wheel;
    for (int i = 0; i < 12; ++i) {
        for (const int corner : {i, i + 1}) {
            const float angle = 3.14159265f / 6 * static_cast<float>(corner);
            wheel.push_back({325 + 100 * std::cos(angle), 172 + 50 * std::sin(angle), rim[corner / 2 % 6]});
        }
        wheel.push_back({325, 172, 0xFFFFFFFF});
    }
    Owned<GXGradient> mesh;
    CHECK(GXCreateGradientTriMesh(wheel.data(), wheel.size(), 0, mesh.Out()));
    const GXRect hub = {230, 125, 420, 219};
    CHECK(GXRenderTargetFillEllipse(page, &hub, Brush(mesh)));
    page.Save(L"gradients-and-meshes.png");
}
