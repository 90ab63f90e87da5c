// SPDX-License-Identifier: MIT
// Two regions, a disc and a grid of bars, under the four operations; every rectangle of the result in a colour of its
// own.
#include <cmath>

#include "Pictures.h"

namespace Gallery {
namespace {

using Region = Handle<GXRegion>;

void Add(Region& region, const GXIntRect& rect) {
    Region grown;
    GALLERY_CHECK(GXRegionCombineRect(region.Get(), &rect, GXCombineUnion, grown.Out()));
    region = std::move(grown);
}

} // namespace

void DrawRegions(Canvas& canvas) {
    Region disc, bars;
    GALLERY_CHECK(GXCreateRegion(disc.Out()));
    GALLERY_CHECK(GXCreateRegion(bars.Out()));
    for (int y = -50; y < 50; y += 4) {
        const int half = static_cast<int>(std::sqrt(2500.0f - static_cast<float>((y + 2) * (y + 2))));
        Add(disc, {-half, y, half, y + 4});
    }
    for (int i = -3; i < 3; ++i) {
        Add(bars, {20 * i + 4, -60, 20 * i + 14, 60});
    }
    Add(bars, {-80, -6, 80, 6});
    const int w = kWidth / 2, h = kHeight / 2;
    for (uint32_t mode = GXCombineIntersection; mode <= GXCombineDifference; ++mode) {
        Region result;
        GALLERY_CHECK(GXRegionCombine(disc.Get(), bars.Get(), mode, result.Out()));
        GALLERY_CHECK(GXRegionOffset(result.Get(), w / 2 + w * static_cast<int>(mode % 2),
                                     h / 2 + h * static_cast<int>(mode / 2)));
        struct Context {
            Canvas& canvas;
            uint32_t count;
        } context = {canvas, 0};
        GALLERY_CHECK(GXRegionEnumRects(
            result.Get(),
            [](void* c, const GXIntRect* r) {
                auto& told = *static_cast<Context*>(c);
                const uint32_t colors[] = {0xFF4361EEu, 0xFFF72585u, 0xFF4CC9F0u, 0xFFFFB703u,
                                           0xFF2A9D8Fu, 0xFF7209B7u, 0xFFFB8500u};
                const GXRect rect = {static_cast<float>(r->left), static_cast<float>(r->top),
                                     static_cast<float>(r->right) - 1.0f, static_cast<float>(r->bottom) - 1.0f};
                told.canvas.FillRect(rect, Solid(colors[told.count++ % 7]));
            },
            &context));
    }
}

} // namespace Gallery
