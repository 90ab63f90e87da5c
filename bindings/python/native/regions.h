// SPDX-License-Identifier: MIT
// Regions from and to arrays of rectangles: left, top, right, bottom.
#ifndef GXPY_REGIONS_H
#define GXPY_REGIONS_H

#include <GX/GX.h>

// The union of `count` rectangles. Halves are joined, so that each rectangle takes part in about log2(count) unions.
GXResult gxpy_region_of(const int32_t* rects, size_t count, GXRegion* outRegion);

// Counts the rectangles of a region, and writes as many of them as `room` allows.
typedef struct {
    int32_t* rects;
    size_t room, count;
} gxpy_rect_list;
GXResult gxpy_read_region(GXRegion region, gxpy_rect_list* list);

#endif
