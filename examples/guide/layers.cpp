// SPDX-License-Identifier: MIT
// The four kinds of transparency group, and a group that fades as one object. Writes one picture each.
#include "Guide.h"

namespace {

// Cream on the left, sea green on the right: what the groups lie on.
void Backdrop(GXRenderTarget page) {
    const auto cream = Solid(0xFFFFF1C9), green = Solid(0xFF9AD1C5);
    const GXRect left = {0, 0, 80, 140}, right = {80, 0, 160, 140};
    CHECK(GXRenderTargetFillRect(page, &left, cream));
    CHECK(GXRenderTargetFillRect(page, &right, green));
}

void Discs(GXRenderTarget page, GXBlendMode mode) {
    const GXRect places[] = {{45, 10, 115, 80}, {20, 55, 90, 125}, {70, 55, 140, 125}};
    const uint32_t colors[] = {0xFF4FC3E8, 0xFFF0609E, 0xFFF7D64A};
    CHECK(GXRenderTargetSetBlendMode(page, mode));
    for (int i = 0; i < 3; ++i)
        CHECK(GXRenderTargetFillEllipse(page, &places[i], Solid(colors[i])));
    CHECK(GXRenderTargetSetBlendMode(page, GXBlendModeNormal));
}

void Group(const GXLayerDesc& layer, GXBlendMode mode, const wchar_t* file) {
    Page page(160, 140);
    Backdrop(page);
    CHECK(GXRenderTargetBeginLayer(page, &layer));
    Discs(page, mode);
    CHECK(GXRenderTargetEndLayer(page));
    page.Save(file);
}

} // namespace

int main() {
    const GXRect everywhere = {0, 0, 0, 0}; // an empty rectangle: the clip alone bounds the group
    const GXLayerDesc plain = {.bounds = everywhere, .opacity = 1};
    GXLayerDesc isolated = plain, knockout = plain, both = plain, faded = plain;
    isolated.isolated = both.isolated = 1;
    knockout.knockout = both.knockout = 1;
    faded.opacity = 0.5f;
    Group(plain, GXBlendModeMultiply, L"layers-plain.png");
    Group(isolated, GXBlendModeMultiply, L"layers-isolated.png");
    Group(knockout, GXBlendModeMultiply, L"layers-knockout.png");
    Group(both, GXBlendModeMultiply, L"layers-isolated-knockout.png");

    // As one object, the group is opaque inside and half transparent as a whole.
    Group(faded, GXBlendModeNormal, L"layers-faded.png");
}
