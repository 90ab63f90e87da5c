// SPDX-License-Identifier: MIT
/* A disc and a line on white paper, written as first-picture.png. */
#include <GX/GX.h>
#include <stdio.h>
#include <stdlib.h>

static void check(GXResult result, const char* call) {
    if (result != GXResultSuccess) {
        fprintf(stderr, "%s: result %u\n", call, (unsigned)result);
        exit(1);
    }
}
#define CHECK(call) check((call), #call)

int main(void) {
    const GXBitmapDesc desc = {320, 160, GXPixelFormatBGRX32, 96.0f, 96.0f};
    const GXRect sun = {110.0f, 20.0f, 210.0f, 120.0f};
    const GXPoint left = {20.0f, 130.0f}, right = {300.0f, 110.0f};
    GXBitmap bitmap;
    GXRenderTarget target;
    GXBrush orange, blue;

    CHECK(GXCreateBitmap(&desc, &bitmap));
    CHECK(GXCreateRenderTargetBitmap(bitmap, &target));
    CHECK(GXCreateBrushSolidARGB(0xFFF4A261u, &orange));
    CHECK(GXCreateBrushSolidARGB(0xB0264653u, &blue)); /* alpha first: this one lets the sun shine through */

    CHECK(GXRenderTargetBeginPaint(target));
    CHECK(GXRenderTargetClear(target, 0xFFFFFFFFu));
    CHECK(GXRenderTargetFillEllipse(target, &sun, orange));
    CHECK(GXRenderTargetStrokeLine(target, &left, &right, blue, 12.0f, NULL));
    CHECK(GXRenderTargetEndPaint(target));
    CHECK(GXBitmapSaveToFile(bitmap, L"first-picture.png"));

    CHECK(GXObjectRelease(blue));
    CHECK(GXObjectRelease(orange));
    CHECK(GXObjectRelease(target));
    CHECK(GXObjectRelease(bitmap));
    return 0;
}
