// SPDX-License-Identifier: MIT
#include "regions.h"

GXResult gxpy_region_of(const int32_t* rects, size_t count, GXRegion* outRegion) {
    if (count == 0) {
        return GXCreateRegion(outRegion);
    }
    if (count == 1) {
        const GXIntRect rect = {rects[0], rects[1], rects[2], rects[3]};
        return GXCreateRegionFromRect(&rect, outRegion);
    }
    GXRegion first, second;
    GXResult result = gxpy_region_of(rects, count / 2, &first);
    if (result != GXResultSuccess) {
        return result;
    }
    result = gxpy_region_of(rects + count / 2 * 4, count - count / 2, &second);
    if (result == GXResultSuccess) {
        result = GXRegionCombine(first, second, GXCombineUnion, outRegion);
        GXObjectRelease(second);
    }
    GXObjectRelease(first);
    return result;
}

static void OnRect(void* context, const GXIntRect* rect) {
    gxpy_rect_list* const list = context;
    if (list->count < list->room) {
        int32_t* const out = list->rects + 4 * list->count;
        out[0] = rect->left;
        out[1] = rect->top;
        out[2] = rect->right;
        out[3] = rect->bottom;
    }
    ++list->count;
}

GXResult gxpy_read_region(GXRegion region, gxpy_rect_list* list) {
    list->count = 0;
    return GXRegionEnumRects(region, OnRect, list);
}
