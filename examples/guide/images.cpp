// SPDX-License-Identifier: MIT
// A bitmap of the host's pixels, enlarged, reduced, repeated, and used as a stencil.
#include "Guide.h"

namespace {

// 16 x 16 pixels, written where they lie: a fruit with a leaf, transparent around it.
Owned<GXBitmap> Fruit() {
    auto bitmap = Guide::MakeBitmap(16, 16, GXPixelFormatBGRA32);
    GXBitmapData pixels;
    CHECK(GXBitmapLock(bitmap, nullptr, GXLockWrite, &pixels));
    for (int y = 0; y < 16; ++y) {
        uint8_t* row = static_cast<uint8_t*>(pixels.data) + y * static_cast<int>(pixels.stride);
        for (int x = 0; x < 16; ++x) {
            const int dx = 2 * x - 15, dy = 2 * y - 18, shine = (x - 5) * (x - 5) + (y - 7) * (y - 7);
            const bool leaf = y < 4 && x > 7 && x < 13 && x + y > 9 && x + y < 14, body = dx * dx + dy * dy <= 144;
            const uint32_t argb = leaf ? 0xFF4C956C : !body ? 0 : shine < 3 ? 0xFFFFE8D6 : 0xFFE76F51;
            for (int byte = 0; byte < 4; ++byte) // blue, green, red, alpha
                row[4 * x + byte] = static_cast<uint8_t>(argb >> 8 * byte);
        }
    }
    CHECK(GXBitmapUnlock(bitmap));
    return bitmap;
}

// Thin rings, which show what reducing does to them.
void Rings(GXRenderTarget page) {
    const auto ink = Solid(0xFF264653);
    for (float r = 4; r < 110; r += 5) {
        const GXRect ring = {80 - r, 80 - r, 80 + r, 80 + r};
        CHECK(GXRenderTargetStrokeEllipse(page, &ring, ink, 1.5f, nullptr));
    }
}

} // namespace

int main() {
    Page page(440, 226);
    const auto fruit = Fruit();

    // Enlarged six times: nearest shows the pixels, linear mixes neighbours. Then at its own size, at a point.
    const GXRect first = {8, 8, 104, 104}, second = {112, 8, 208, 104};
    const GXPoint origin = {216, 88};
    CHECK(GXRenderTargetStretchBitmap(page, fruit, &first, nullptr, 1, GXInterpolationNearest));
    CHECK(GXRenderTargetStretchBitmap(page, fruit, &second, nullptr, 1, GXInterpolationLinear));
    CHECK(GXRenderTargetDrawBitmap(page, fruit, &origin, 1, GXInterpolationNearest));

    // A part of it, mirrored by a destination whose sides are exchanged, and half transparent.
    const GXIntRect top = {3, 0, 13, 10};
    const GXRect mirrored = {318, 8, 238, 88};
    CHECK(GXRenderTargetStretchBitmap(page, fruit, &mirrored, &top, 0.5f, GXInterpolationNearest));

    // Reduced to a third: nearest and linear look at some of the pixels, average at all of them.
    Page large(160, 160);
    Rings(large);
    const GXBitmap rings = large.Finish();
    const uint32_t ways[] = {GXInterpolationNearest, GXInterpolationLinear, GXInterpolationAverage};
    for (int i = 0; i < 3; ++i) {
        const float y = 8 + 56 * static_cast<float>(i);
        const GXRect place = {360, y, 408, y + 48};
        CHECK(GXRenderTargetStretchBitmap(page, rings, &place, nullptr, 1, ways[i]));
    }

    // A brush repeats the bitmap; its matrix says how large and how turned.
    const GXBitmapBrushOptions repeat = {GXInterpolationLinear, GXExtendRepeat, GXExtendRepeat};
    const GXMatrix turned = {2, 0.5f, -0.5f, 2, 0, 0};
    Owned<GXBrush> pattern;
    CHECK(GXCreateBrushBitmap(fruit, 1, &repeat, &turned, pattern.Out()));
    const GXRect pill = {8, 122, 208, 218}, stencil = {232, 122, 328, 218};
    Owned<GXGeometry> shape;
    CHECK(GXCreateGeometry(shape.Out()));
    CHECK(GXGeometryRoundRectangle(shape, &pill, 48, 48));
    CHECK(GXRenderTargetFillGeometry(page, shape, pattern));

    // The bitmap's alpha as a stencil through which another brush paints.
    CHECK(GXRenderTargetFillMask(page, fruit, Solid(0xFF457B9D), &stencil, GXInterpolationLinear));
    page.Save(L"images.png");
}
