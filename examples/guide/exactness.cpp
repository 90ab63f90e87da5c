// SPDX-License-Identifier: MIT
// One number for a picture that turns, strokes, blends, masks and samples: the same on every machine.
#include "Guide.h"

int main() {
    Page page(240, 160);
    const GXGradientStop stops[] = {{0, 0xFFE63946}, {0.35f, 0xFFF4D35E}, {0.7f, 0xFF2A9D8F}, {1, 0xFF1D3557}};
    const GXRadialGradientDesc desc = {.stops = stops,
                                       .stopCount = 4,
                                       .startCenter = {3, -2},
                                       .startRadius = 0,
                                       .endCenter = {0, 0},
                                       .endRadius = 40,
                                       .extendStart = 1,
                                       .extendEnd = 1};
    Owned<GXGradient> gradient;
    Owned<GXBrush> colors;
    CHECK(GXCreateGradientRadial(&desc, gradient.Out()));
    CHECK(GXCreateBrushGradient(gradient, 0.9f, nullptr, colors.Out()));
    const auto ink = Solid(0xB01D3557);
    const GXStrokeStyle dashed = {
        .join = GXLineJoinRound, .cap = GXLineCapRound, .miterLimit = 10, .dashes = {9.7f, 5.3f}, .dashCount = 2};
    const GXRect oval = {-64, -22, 64, 22};
    const GXLayerDesc half = {.bounds = {}, .opacity = 0.8f, .isolated = 1};
    CHECK(GXRenderTargetTranslateCTM(page, 120, 80));
    for (int i = 0; i < 9; ++i) {
        CHECK(GXRenderTargetRotateCTM(page, 0.698f));
        CHECK(GXRenderTargetSetBlendMode(page, i % 2 == 0 ? GXBlendModeMultiply : GXBlendModeNormal));
        CHECK(GXRenderTargetBeginLayer(page, &half));
        CHECK(GXRenderTargetFillEllipse(page, &oval, colors));
        CHECK(GXRenderTargetStrokeEllipse(page, &oval, ink, 2.3f, &dashed));
        CHECK(GXRenderTargetEndLayer(page));
    }
    const GXBitmap bitmap = page.Finish();

    // FNV-1a over all bytes of all rows.
    GXBitmapData pixels;
    CHECK(GXBitmapLock(bitmap, nullptr, GXLockRead, &pixels));
    unsigned long long sum = 0xCBF29CE484222325;
    for (uint32_t y = 0; y < 160; ++y) {
        const auto* row = static_cast<const uint8_t*>(pixels.data) + size_t{y} * pixels.stride;
        for (uint32_t x = 0; x < pixels.rowLength; ++x)
            sum = (sum ^ row[x]) * 0x100000001B3;
    }
    CHECK(GXBitmapUnlock(bitmap));
    std::printf("%016llx\n", sum);
    CHECK(GXBitmapSaveToFile(bitmap, L"exactness.png"));
}
