// SPDX-License-Identifier: MIT
/* The smallest host: paints one pixel red and reads it back. Also built without any run-time library, for Microsoft's
 * linker, so it calls nothing but the library. */
#include <GX/GX.h>

int main(void) {
    const GXBitmapDesc desc = {1, 1, GXPixelFormatPBGRA32, 96.0f, 96.0f};
    const GXRect all = {0.0f, 0.0f, 1.0f, 1.0f};
    uint32_t pixel = 0;
    const GXBitmapData data = {&pixel, 4, 4};
    GXBitmap bitmap;
    GXRenderTarget target;
    GXBrush red;
    int failed = GXCreateBitmap(&desc, &bitmap) != GXResultSuccess ||
                 GXCreateRenderTargetBitmap(bitmap, &target) != GXResultSuccess ||
                 GXCreateBrushSolidARGB(0xFFFF0000u, &red) != GXResultSuccess;
    if (failed) {
        return 1;
    }
    failed |= GXRenderTargetBeginPaint(target) != GXResultSuccess;
    failed |= GXRenderTargetFillRect(target, &all, red) != GXResultSuccess;
    failed |= GXRenderTargetEndPaint(target) != GXResultSuccess;
    failed |= GXBitmapCopyToMemory(bitmap, 0, &data) != GXResultSuccess || pixel != 0xFFFF0000u;
    failed |= GXObjectRelease(red) != GXResultSuccess || GXObjectRelease(target) != GXResultSuccess;
    failed |= GXObjectRelease(bitmap) != GXResultSuccess;
    return failed ? 2 : 0;
}
