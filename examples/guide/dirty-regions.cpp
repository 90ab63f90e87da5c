// SPDX-License-Identifier: MIT
// Sets of whole pixels: what has to be painted again after windows have moved.
#include "Guide.h"

namespace {

Owned<GXRegion> Combined(GXRegion region, const GXIntRect& rect, uint32_t mode) {
    Owned<GXRegion> result;
    CHECK(GXRegionCombineRect(region, &rect, mode, result.Out()));
    return result;
}

// Called for every rectangle, band by band from the top: no two of them overlap.
void DrawRect(void* context, const GXIntRect* rect) {
    const auto page = static_cast<GXRenderTarget>(context);
    const GXRect box = {static_cast<float>(rect->left), static_cast<float>(rect->top), static_cast<float>(rect->right),
                        static_cast<float>(rect->bottom)};
    CHECK(GXRenderTargetFillRect(page, &box, Solid(0xFFF4C9B8)));
    const GXRect inside = {box.left + 0.5f, box.top + 0.5f, box.right - 0.5f, box.bottom - 0.5f};
    CHECK(GXRenderTargetStrokeRect(page, &inside, Solid(0xFFE76F51), 1, nullptr));
}

} // namespace

int main() {
    // Two windows were closed, a third one stayed in front of them.
    Owned<GXRegion> none;
    CHECK(GXCreateRegion(none.Out()));
    const auto first = Combined(none, {20, 20, 180, 110}, GXCombineUnion);
    const auto both = Combined(first, {120, 60, 320, 180}, GXCombineUnion);
    const GXIntRect front = {90, 80, 210, 130};
    const auto dirty = Combined(both, front, GXCombineDifference);

    // Questions that a host asks before it draws anything.
    GXIntRect bound;
    const GXIntRect icon = {340, 40, 380, 80};
    uint8_t touched = 1, inFront = 1;
    CHECK(GXRegionGetBound(dirty, &bound));
    CHECK(GXRegionHasIntersectionWithRect(dirty, &icon, &touched));
    CHECK(GXRegionHasIntersectionWithRect(dirty, &front, &inFront));
    if (bound.left != 20 || bound.top != 20 || bound.right != 320 || bound.bottom != 180 || touched || inFront)
        return 1;

    Page page(400, 200);
    CHECK(GXRegionEnumRects(dirty, DrawRect, static_cast<GXRenderTarget>(page)));
    const auto ink = Solid(0xFF264653);
    for (const GXIntRect& rect : {front, icon}) {
        const GXRect box = {static_cast<float>(rect.left), static_cast<float>(rect.top), static_cast<float>(rect.right),
                            static_cast<float>(rect.bottom)};
        CHECK(GXRenderTargetStrokeRect(page, &box, ink, 2, nullptr));
    }
    page.Save(L"dirty-regions.png");
}
