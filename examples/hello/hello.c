// SPDX-License-Identifier: MIT
/* The smallest useful host: draws a few shapes into a bitmap and writes it as a binary PPM. Pixels, y down. */
#include <GX/GX.h>
#include <stdio.h>
#include <stdlib.h>

#define CHECK(call)                                                                                                    \
    do {                                                                                                               \
        if ((call) != GXResultSuccess) {                                                                               \
            fprintf(stderr, "failed: %s\n", #call);                                                                    \
            exit(1);                                                                                                   \
        }                                                                                                              \
    } while (0)

int main(int argc, char** argv) {
    const GXBitmapDesc desc = {320, 200, GXPixelFormatBGRX32, 96.0f, 96.0f};
    const GXGradientStop stops[] = {{0.0f, 0xFF203A8Cu}, {0.6f, 0xFFE86A5Cu}, {1.0f, 0xFFFFE08Au}};
    const GXLinearGradientDesc sky = {stops, 3, {0.0f, 0.0f}, {0.0f, 200.0f}, 1, 1, 0};
    const GXStrokeStyle style = {GXLineJoinRound, GXLineCapRound, 10.0f, 0, 0.0f, {0.0f}, 0};
    const GXRect page = {0.0f, 0.0f, 320.0f, 200.0f}, sun = {210.0f, 60.0f, 270.0f, 120.0f};
    const GXPoint from = {0.0f, 150.0f}, c1 = {110.0f, 60.0f}, c2 = {200.0f, 230.0f}, to = {320.0f, 130.0f};
    GXBitmap bitmap;
    GXRenderTarget target;
    GXGradient gradient;
    GXBrush skyBrush, white;
    GXGeometry hill;
    GXBitmapData data;
    FILE* file = argc > 1 ? fopen(argv[1], "wb") : NULL;
    if (!file) {
        fprintf(stderr, "usage: hello out.ppm (a file that can be written)\n");
        return 2;
    }

    CHECK(GXCreateBitmap(&desc, &bitmap));
    CHECK(GXCreateRenderTargetBitmap(bitmap, &target));
    CHECK(GXCreateGradientLinear(&sky, &gradient));
    CHECK(GXCreateBrushGradient(gradient, 1.0f, NULL, &skyBrush));
    CHECK(GXCreateBrushSolidARGB(0xD0FFFFFFu, &white));
    CHECK(GXCreateGeometry(&hill));
    CHECK(GXGeometryBeginFigure(hill, &from));
    CHECK(GXGeometryCubicCurveTo(hill, &c1, &c2, &to));
    CHECK(GXGeometryEndFigure(hill));
    CHECK(GXRenderTargetBeginPaint(target));
    CHECK(GXRenderTargetFillRect(target, &page, skyBrush));
    CHECK(GXRenderTargetFillEllipse(target, &sun, white));
    CHECK(GXRenderTargetStrokeGeometry(target, hill, white, 6.0f, &style));
    CHECK(GXRenderTargetEndPaint(target));

    CHECK(GXBitmapLock(bitmap, NULL, GXLockRead, &data));
    int failed = fprintf(file, "P6\n%u %u\n255\n", desc.width, desc.height) < 0;
    for (uint32_t i = 0; i < desc.width * desc.height; ++i) {
        const uint8_t* p = (const uint8_t*)data.data + (size_t)(i / desc.width) * data.stride + i % desc.width * 4u;
        const uint8_t rgb[3] = {p[2], p[1], p[0]};
        failed |= fwrite(rgb, 1, 3, file) != 3;
    }
    CHECK(GXBitmapUnlock(bitmap));
    void* const objects[] = {hill, white, skyBrush, gradient, target, bitmap};
    for (size_t i = 0; i < sizeof objects / sizeof *objects; ++i)
        CHECK(GXObjectRelease(objects[i]));
    return fclose(file) != 0 || failed;
}
