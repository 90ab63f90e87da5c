// SPDX-License-Identifier: MIT
// Bitmap brushes: one tile repeated, turned, mirrored, and clamped at its edges.
#include "Pictures.h"

namespace Gallery {
namespace {

Picture Tile() {
    Canvas tile(32, 32, 0xFFFFF4E0u, GXPixelFormatPBGRA32);
    tile.FillRect({0, 0, 16, 16}, Solid(0xFFE07A5Fu));
    tile.Fill(Polygon({{32, 0}, {32, 32}, {0, 32}}), Solid(0xFF3D405Bu));
    tile.FillEllipse({16, 16}, 7, Solid(0xFF81B29Au));
    return tile.Finish();
}

} // namespace

void DrawTilings(Canvas& canvas) {
    const Picture tile = Tile();
    const float w = canvas.Width() / 2, h = canvas.Height() / 2;
    const struct {
        uint32_t extend;
        GXMatrix matrix;
    } kinds[] = {
        {GXExtendRepeat, {1, 0, 0, 1, 8, 8}},
        {GXExtendRepeat, {0.866f, 0.5f, -0.5f, 0.866f, w, 0}},
        {GXExtendMirror, {1, 0, 0, 1, 8, h + 8}},
        {GXExtendClamp, {2, 0, 0, 2, 1.5f * w - 32, 1.5f * h - 32}},
    };
    for (int i = 0; i < 4; ++i) {
        const float x = w * static_cast<float>(i % 2), y = h * static_cast<float>(i / 2);
        const GXRect rect = {x + 8, y + 8, x + w - 8, y + h - 8};
        Path path;
        GALLERY_CHECK(GXCreateGeometry(path.Out()));
        GALLERY_CHECK(GXGeometryRoundRectangle(path.Get(), &rect, 18, 18));
        canvas.Fill(path, Tiles(tile, kinds[i].extend, kinds[i].matrix));
    }
}

} // namespace Gallery
