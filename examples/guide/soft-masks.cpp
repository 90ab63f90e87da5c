// SPDX-License-Identifier: MIT
// Soft masks: drawing fades out where a brush says so.
#include "Guide.h"

namespace {

// Stripes in many colours, so that it shows what is left of them.
void Stripes(GXRenderTarget page) {
    const uint32_t colors[] = {0xFFE63946, 0xFFF4A261, 0xFFE9C46A, 0xFF2A9D8F, 0xFF457B9D, 0xFF6D597A};
    for (int i = 0; i < 12; ++i) {
        const float y = 10 * static_cast<float>(i);
        const GXPoint from = {-10, y + 20}, to = {130, y - 10};
        CHECK(GXRenderTargetStrokeLine(page, &from, &to, Solid(colors[i % 6]), 7, nullptr));
    }
}

Owned<GXBrush> Radial(uint32_t inner, uint32_t outer) {
    const GXGradientStop stops[] = {{0.3f, inner}, {1, outer}};
    const GXRadialGradientDesc desc = {.stops = stops,
                                       .stopCount = 2,
                                       .startCenter = {60, 60},
                                       .startRadius = 0,
                                       .endCenter = {60, 60},
                                       .endRadius = 56,
                                       .extendStart = 1,
                                       .extendEnd = 1};
    Owned<GXGradient> gradient;
    Owned<GXBrush> brush;
    CHECK(GXCreateGradientRadial(&desc, gradient.Out()));
    CHECK(GXCreateBrushGradient(gradient, 1, nullptr, brush.Out()));
    return brush;
}

// What was drawn elsewhere: white figures on black, whose lightness is the mask.
Owned<GXBrush> Drawn() {
    Page drawing(120, 120, 0xFF000000);
    const auto white = Solid(0xFFFFFFFF), grey = Solid(0xFF808080);
    const GXRect ring = {20, 20, 100, 100}, dot = {48, 48, 72, 72};
    CHECK(GXRenderTargetStrokeEllipse(drawing, &ring, white, 16, nullptr));
    CHECK(GXRenderTargetFillEllipse(drawing, &dot, grey));
    Owned<GXBrush> brush; // keeps the bitmap
    CHECK(GXCreateBrushBitmap(drawing.Finish(), 1, nullptr, nullptr, brush.Out()));
    return brush;
}

} // namespace

int main() {
    Page page(420, 140, 0xFFF8F4EC);
    const auto fade = Radial(0xFF000000, 0x00000000), drawn = Drawn();
    const struct {
        uint32_t type;
        GXBrush brush;
    } masks[] = {{GXMaskTypeAlpha, fade}, {GXMaskTypeInverseAlpha, fade}, {GXMaskTypeLuminosity, drawn}};

    CHECK(GXRenderTargetTranslateCTM(page, 15, 10));
    for (const auto& mask : masks) {
        const GXRect cell = {0, 0, 120, 120};
        CHECK(GXRenderTargetPushState(page));
        CHECK(GXRenderTargetClipRect(page, &cell));
        // Placed by the matrix of this moment; everything drawn until the state is popped goes through it.
        CHECK(GXRenderTargetSetOpacityMask(page, mask.type, mask.brush));
        Stripes(page);
        CHECK(GXRenderTargetPopState(page));
        CHECK(GXRenderTargetTranslateCTM(page, 135, 0));
    }
    page.Save(L"soft-masks.png");
}
