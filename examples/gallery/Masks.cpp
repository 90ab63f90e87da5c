// SPDX-License-Identifier: MIT
// Soft masks and group opacity. Above: a landscape through a radial luminosity mask, and through the alpha of a dotted
// bitmap as a shape mask. Below: overlapping shapes each half transparent, and the same as one half transparent group.
#include "Pictures.h"

namespace Gallery {
namespace {

/// A tile with a soft dot in its middle.
Picture DotTile() {
    Canvas tile(20, 20, 0, GXPixelFormatPBGRA32);
    tile.FillEllipse({10, 10}, 10,
                     Radial({{0.0f, 0xFFFFFFFFu}, {0.75f, 0xFFFFFFFFu}, {1.0f, 0x00FFFFFFu}}, {10, 10}, 10));
    return tile.Finish();
}

void DrawChecks(Canvas& canvas, const GXRect& area) {
    const Brush grey = Solid(0xFFE2E2E2u);
    for (float y = area.top; y < area.bottom; y += 10) {
        for (float x = area.left; x < area.right; x += 10) {
            if ((static_cast<int>((x - area.left) / 10) + static_cast<int>((y - area.top) / 10)) % 2 == 0) {
                canvas.FillRect({x, y, x + 10, y + 10}, grey);
            }
        }
    }
}

} // namespace

void DrawMasks(Canvas& canvas) {
    DrawChecks(canvas, {0, 0, canvas.Width(), canvas.Height()});
    const float w = canvas.Width() / 2, h = canvas.Height() / 2;
    const GXRect left = {6, 6, w - 6, h - 6}, right = {w + 6, 6, canvas.Width() - 6, h - 6};
    for (const bool shape : {false, true}) {
        const GXRect& cell = shape ? right : left;
        canvas.Push();
        if (shape) {
            const Brush dots = Tiles(DotTile(), GXExtendRepeat, {1, 0, 0, 1, cell.left, cell.top});
            GALLERY_CHECK(GXRenderTargetSetShapeMask(canvas.Target(), GXMaskTypeAlpha, dots.Get()));
        } else {
            const Brush glow = Radial({{0.0f, 0xFFFFFFFFu}, {0.35f, 0xFFFFFFFFu}, {1.0f, 0xFF000000u}},
                                      {(cell.left + cell.right) / 2, (cell.top + cell.bottom) / 2}, w / 2);
            GALLERY_CHECK(GXRenderTargetSetOpacityMask(canvas.Target(), GXMaskTypeLuminosity, glow.Get()));
        }
        canvas.BeginLayer(true, false);
        DrawLandscape(canvas, cell);
        canvas.EndLayer();
        canvas.Pop();
    }
    for (const bool group : {false, true}) {
        const float x = group ? w : 0, alpha = group ? 1.0f : 0.5f;
        const auto color = [&](uint32_t rgb) { return Solid((static_cast<uint32_t>(alpha * 255.0f) << 24) | rgb); };
        if (group) {
            canvas.BeginLayer(true, false, 0.5f);
        }
        canvas.FillEllipse({x + 80, 1.5f * h}, 46, color(0xD6336Cu));
        canvas.FillEllipse({x + 120, 1.5f * h}, 46, color(0x1C7ED6u));
        canvas.Fill(Star({x + 100, 1.5f * h}, 42, 0.45f, 5), color(0xF59F00u));
        if (group) {
            canvas.EndLayer();
        }
    }
}

} // namespace Gallery
