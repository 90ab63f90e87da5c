// SPDX-License-Identifier: MIT
// The region family of the C interface.
#include "Guard.h"
#include "Handles.h"
#include "Regions/Region.h"

using namespace Graphics;

namespace {

GXResult CreateRegion(const Region& region, GXRegion* out) noexcept {
    return Create(out, [&] { return region; });
}

GXResult Combined(const Region& a, const Region& b, uint32_t mode, GXRegion* out) noexcept {
    if (mode > GXCombineDifference) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return Region::Combine(a, b, static_cast<RegionOp>(mode)); });
}

/// Writes the answer of a query that needs memory.
template <class Question> GXResult Answer(uint8_t* out, const Question& question) noexcept {
    return Guard([&] { *out = question() ? 1 : 0; });
}

} // namespace

extern "C" {

GXResult GXCreateRegion(GXRegion* out) GX_NOEXCEPT {
    if (AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return CreateRegion(Region(), out);
}

GXResult GXCreateRegionFromRect(const GXIntRect* rect, GXRegion* out) GX_NOEXCEPT {
    if (AnyNull(rect) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return CreateRegion(Region(*rect), out);
}

GXResult GXRegionIsAreaEmpty(GXRegion region, uint8_t* out) GX_NOEXCEPT {
    if (AnyNull(region) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    *out = region->region.IsAreaEmpty() ? 1 : 0;
    return GXResultSuccess;
}

GXResult GXRegionGetBound(GXRegion region, GXIntRect* out) GX_NOEXCEPT {
    if (AnyNull(region) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    *out = region->region.Bound();
    return GXResultSuccess;
}

GXResult GXRegionContainsPoint(GXRegion region, const GXIntPoint* point, uint8_t* out) GX_NOEXCEPT {
    if (AnyNull(region) || AnyNull(point) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    *out = region->region.Contains(*point) ? 1 : 0;
    return GXResultSuccess;
}

GXResult GXRegionContainsRect(GXRegion region, const GXIntRect* rect, uint8_t* out) GX_NOEXCEPT {
    if (AnyNull(region) || AnyNull(rect) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return Answer(out, [&] { return region->region.Contains(Region(*rect)); });
}

GXResult GXRegionContains(GXRegion region, GXRegion other, uint8_t* out) GX_NOEXCEPT {
    if (AnyNull(region, other) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return Answer(out, [&] { return region->region.Contains(other->region); });
}

GXResult GXRegionHasIntersection(GXRegion region, GXRegion other, uint8_t* out) GX_NOEXCEPT {
    if (AnyNull(region, other) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return Answer(out, [&] { return region->region.HasIntersection(other->region); });
}

GXResult GXRegionHasIntersectionWithRect(GXRegion region, const GXIntRect* rect, uint8_t* out) GX_NOEXCEPT {
    if (AnyNull(region) || AnyNull(rect) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return Answer(out, [&] { return region->region.HasIntersection(Region(*rect)); });
}

GXResult GXRegionOffset(GXRegion region, int32_t dx, int32_t dy) GX_NOEXCEPT {
    if (AnyNull(region)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { region->region.Offset(dx, dy); });
}

GXResult GXRegionCombine(GXRegion region, GXRegion other, uint32_t mode, GXRegion* out) GX_NOEXCEPT {
    if (AnyNull(region, other) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return Combined(region->region, other->region, mode, out);
}

GXResult GXRegionCombineRect(GXRegion region, const GXIntRect* rect, uint32_t mode, GXRegion* out) GX_NOEXCEPT {
    if (AnyNull(region) || AnyNull(rect) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return Combined(region->region, Region(*rect), mode, out);
}

GXResult GXRegionEnumRects(GXRegion region, GXRegionRectProc proc, void* context) GX_NOEXCEPT {
    if (AnyNull(region) || proc == nullptr) {
        return GXResultInvalidArgument;
    }
    return Guard([&] {
        const Region held = region->region; // a copy, since the callback may release the handle
        held.EnumRects([&](const GXIntRect& rect) { proc(context, &rect); });
    });
}

} // extern "C"
