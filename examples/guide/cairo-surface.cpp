// SPDX-License-Identifier: MIT
// Draws into the memory of a Cairo image surface, between two drawings of Cairo's: one buffer, no copy.
#include "Guide.h"

#include <cairo.h>

int main() {
    // CAIRO_FORMAT_ARGB32 is premultiplied and lies in memory as blue, green, red, alpha: GXPixelFormatPBGRA32.
    // CAIRO_FORMAT_RGB24 would be GXPixelFormatBGRX32, CAIRO_FORMAT_A8 is not drawn into.
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 240, 140);
    cairo_t* cr = cairo_create(surface);
    cairo_set_source_rgb(cr, 0.95, 0.93, 0.85);
    cairo_paint(cr);
    cairo_set_source_rgb(cr, 0.16, 0.62, 0.56);
    for (int i = 0; i < 12; ++i)
        cairo_rectangle(cr, 20 * i, 0, 10, 140);
    cairo_fill(cr);

    // What Cairo has not written yet is written; then the memory is ours.
    cairo_surface_flush(surface);
    const GXExtBufLayout layout = {static_cast<float>(cairo_image_surface_get_width(surface)),
                                   static_cast<float>(cairo_image_surface_get_height(surface)),
                                   static_cast<float>(cairo_image_surface_get_stride(surface)), 96, 96};
    Owned<GXRenderTarget> target;
    CHECK(
        GXCreateRenderTargetExtBuf(cairo_image_surface_get_data(surface), GXPixelFormatPBGRA32, &layout, target.Out()));
    CHECK(GXRenderTargetBeginPaint(target));
    const GXRect disc = {60, 10, 180, 130};
    CHECK(GXRenderTargetSetBlendMode(target, GXBlendModeHardLight));
    CHECK(GXRenderTargetFillEllipse(target, &disc, Solid(0xFFE76F51)));
    CHECK(GXRenderTargetEndPaint(target));

    // And Cairo's again, once it knows that its pixels have changed.
    cairo_surface_mark_dirty(surface);
    cairo_set_source_rgba(cr, 0.15, 0.27, 0.33, 0.8);
    cairo_rectangle(cr, 0, 60, 240, 20);
    cairo_fill(cr);
    cairo_destroy(cr);
    const bool written = cairo_surface_write_to_png(surface, "cairo-surface.png") == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy(surface);
    return written ? 0 : 1;
}
