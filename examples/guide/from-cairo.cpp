// SPDX-License-Identifier: MIT
// One drawing, once with Cairo's calls and once with this library's. They differ by less than a level in the mean.
#include "Guide.h"

#include <cairo.h>

#include <cmath>

namespace {

constexpr int kWidth = 240, kHeight = 160;

void DrawWithCairo(cairo_t* cr) {
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_paint(cr);

    cairo_pattern_t* sky = cairo_pattern_create_linear(0, 0, 0, 160);
    cairo_pattern_add_color_stop_rgb(sky, 0, 0.2, 0.4, 0.8);
    cairo_pattern_add_color_stop_rgb(sky, 1, 1, 0.8, 0.6);
    cairo_set_source(cr, sky);
    cairo_rectangle(cr, 10, 10, 220, 140);
    cairo_fill(cr);
    cairo_pattern_destroy(sky);

    cairo_save(cr);
    cairo_rectangle(cr, 10, 10, 220, 140);
    cairo_clip(cr);
    cairo_translate(cr, 120, 80);
    cairo_rotate(cr, 0.3);
    cairo_move_to(cr, -150, 40);
    cairo_curve_to(cr, -40, -60, 40, 90, 150, -10);
    cairo_line_to(cr, 150, 150);
    cairo_line_to(cr, -150, 150);
    cairo_close_path(cr);
    cairo_set_source_rgba(cr, 0.1, 0.4, 0.3, 0.8);
    cairo_fill_preserve(cr);
    const double dashes[] = {12, 8};
    cairo_set_dash(cr, dashes, 2, 0);
    cairo_set_line_width(cr, 4);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_stroke(cr);
    cairo_restore(cr);

    cairo_push_group(cr);
    cairo_set_source_rgb(cr, 0.9, 0.3, 0.2);
    cairo_arc(cr, 80, 60, 30, 0, 6.283185307179586);
    cairo_fill(cr);
    cairo_set_source_rgb(cr, 1, 0.85, 0.3);
    cairo_arc(cr, 110, 60, 30, 0, 6.283185307179586);
    cairo_fill(cr);
    cairo_pop_group_to_source(cr);
    cairo_paint_with_alpha(cr, 0.7);
}

void DrawWithGX(GXRenderTarget target) {
    CHECK(GXRenderTargetSetStrokeAdjustment(target, 0)); // as Cairo, which leaves all edges where they are
    CHECK(GXRenderTargetClear(target, 0xFFFFFFFF));

    const GXGradientStop stops[] = {{0, 0xFF3366CC}, {1, 0xFFFFCC99}};
    const GXLinearGradientDesc desc = {.stops = stops, .stopCount = 2, .start = {0, 0}, .end = {0, 160}};
    const GXRect area = {10, 10, 230, 150};
    Owned<GXGradient> gradient;
    Owned<GXBrush> sky;
    CHECK(GXCreateGradientLinear(&desc, gradient.Out()));
    CHECK(GXCreateBrushGradient(gradient, 1, nullptr, sky.Out()));
    CHECK(GXRenderTargetFillRect(target, &area, sky));

    CHECK(GXRenderTargetPushState(target));
    CHECK(GXRenderTargetClipRect(target, &area));
    CHECK(GXRenderTargetTranslateCTM(target, 120, 80));
    CHECK(GXRenderTargetRotateCTM(target, 0.3f));
    Owned<GXGeometry> hill; // an object of its own: it is there to be filled, stroked and used again
    CHECK(GXCreateGeometry(hill.Out()));
    const GXPoint start = {-150, 40}, c1 = {-40, -60}, c2 = {40, 90}, end = {150, -10};
    const GXPoint right = {150, 150}, left = {-150, 150};
    CHECK(GXGeometryBeginFigure(hill, &start));
    CHECK(GXGeometryCubicCurveTo(hill, &c1, &c2, &end));
    CHECK(GXGeometryLineTo(hill, &right));
    CHECK(GXGeometryLineTo(hill, &left));
    CHECK(GXGeometryEndFigureClose(hill));
    CHECK(GXRenderTargetFillGeometry(target, hill, Solid(0xCC1A664D)));
    const GXStrokeStyle style = {
        .join = GXLineJoinRound, .cap = GXLineCapRound, .miterLimit = 10, .dashes = {12, 8}, .dashCount = 2};
    CHECK(GXRenderTargetStrokeGeometry(target, hill, Solid(0xFFFFFFFF), 4, &style));
    CHECK(GXRenderTargetPopState(target));

    const GXLayerDesc group = {.bounds = {}, .opacity = 0.7f, .isolated = 1};
    const GXRect red = {50, 30, 110, 90}, yellow = {80, 30, 140, 90};
    CHECK(GXRenderTargetBeginLayer(target, &group));
    CHECK(GXRenderTargetFillEllipse(target, &red, Solid(0xFFE64D33)));
    CHECK(GXRenderTargetFillEllipse(target, &yellow, Solid(0xFFFFD94D)));
    CHECK(GXRenderTargetEndLayer(target));
}

} // namespace

int main() {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
    cairo_t* cr = cairo_create(surface);
    DrawWithCairo(cr);
    cairo_surface_flush(surface);

    Page page(kWidth, kHeight);
    DrawWithGX(page);
    const GXBitmap bitmap = page.Finish();

    // Both formats have the bytes blue, green, red in this order.
    GXBitmapData ours;
    CHECK(GXBitmapLock(bitmap, nullptr, GXLockRead, &ours));
    double difference = 0;
    for (int y = 0; y < kHeight; ++y) {
        const uint8_t* a = static_cast<const uint8_t*>(ours.data) + y * static_cast<int>(ours.stride);
        const uint8_t* b = cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface);
        for (int i = 0; i < 4 * kWidth; ++i)
            difference += i % 4 == 3 ? 0 : std::abs(a[i] - b[i]);
    }
    CHECK(GXBitmapUnlock(bitmap));
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
    CHECK(GXBitmapSaveToFile(bitmap, L"from-cairo.png"));
    return difference / (3.0 * kWidth * kHeight) < 1 ? 0 : 1;
}
