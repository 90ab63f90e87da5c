// SPDX-License-Identifier: MIT
// The sixteen blend modes, each over the same strip of colours.
#include "Guide.h"

int main() {
    Page page(440, 250);
    const GXGradientStop rainbow[] = {{0, 0xFFE63946},    {0.2f, 0xFFF4D35E}, {0.4f, 0xFF2A9D8F},
                                      {0.6f, 0xFF1D3557}, {0.8f, 0xFFFFFFFF}, {1, 0xFF000000}};
    const GXLinearGradientDesc strip = {.stops = rainbow, .stopCount = 6, .start = {0, 0}, .end = {100, 0}};
    Owned<GXGradient> gradient;
    Owned<GXBrush> backdrop;
    CHECK(GXCreateGradientLinear(&strip, gradient.Out()));
    CHECK(GXCreateBrushGradient(gradient, 1, nullptr, backdrop.Out()));
    const auto orange = Solid(0xFFE08E45), blue = Solid(0xFF5C80BC);

    // In the order of their numbers, four a row: Normal, Multiply, Screen, Overlay, ...
    for (uint32_t mode = GXBlendModeNormal; mode <= GXBlendModeLuminosity; ++mode) {
        const GXRect all = {0, 0, 100, 50}, upper = {4, 6, 96, 22}, lower = {4, 28, 96, 44};
        CHECK(GXRenderTargetPushState(page));
        CHECK(GXRenderTargetTranslateCTM(page, 8 + 108 * static_cast<float>(mode % 4),
                                         8 + 60 * static_cast<float>(mode / 4)));
        CHECK(GXRenderTargetFillRect(page, &all, backdrop));
        CHECK(GXRenderTargetSetBlendMode(page, mode));
        CHECK(GXRenderTargetFillRect(page, &upper, orange));
        CHECK(GXRenderTargetFillRect(page, &lower, blue));
        CHECK(GXRenderTargetPopState(page)); // the mode of before, which is Normal
    }
    page.Save(L"blending.png");
}
