// SPDX-License-Identifier: MIT
// Regions.
#include "Guard.h"

using namespace Graphics;

GXResult GXCreateRegion(GXRegion* out) noexcept {
    if (out == nullptr) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Region::Region", "Not implemented");
}

GXResult GXCreateRegionFromRect(const GXIntRect* rect, GXRegion* out) noexcept {
    if (AnyNull(rect, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Region::Region", "Not implemented");
}

GXResult GXRegionIsAreaEmpty(GXRegion region, uint8_t* out) noexcept {
    if (AnyNull(region, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Region::IsAreaEmpty", "Not implemented");
}

GXResult GXRegionGetBound(GXRegion region, GXIntRect* out) noexcept {
    if (AnyNull(region, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Region::Bound", "Not implemented");
}

GXResult GXRegionContainsPoint(GXRegion region, const GXIntPoint* point, uint8_t* out) noexcept {
    if (AnyNull(region, point, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Region::Contains", "Not implemented");
}

GXResult GXRegionContainsRect(GXRegion region, const GXIntRect* rect, uint8_t* out) noexcept {
    if (AnyNull(region, rect, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Region::Contains", "Not implemented");
}

GXResult GXRegionContains(GXRegion region, GXRegion other, uint8_t* out) noexcept {
    if (AnyNull(region, other, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Region::Contains", "Not implemented");
}

GXResult GXRegionHasIntersection(GXRegion region, GXRegion other, uint8_t* out) noexcept {
    if (AnyNull(region, other, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Region::HasIntersection", "Not implemented");
}

GXResult GXRegionHasIntersectionWithRect(GXRegion region, const GXIntRect* rect, uint8_t* out) noexcept {
    if (AnyNull(region, rect, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Region::HasIntersection", "Not implemented");
}

GXResult GXRegionOffset(GXRegion region, int32_t, int32_t) noexcept {
    if (region == nullptr) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Region::Offset", "Not implemented");
}

GXResult GXRegionCombine(GXRegion region, GXRegion other, uint32_t, GXRegion* out) noexcept {
    if (AnyNull(region, other, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Region::Combine", "Not implemented");
}

GXResult GXRegionCombineRect(GXRegion region, const GXIntRect* rect, uint32_t, GXRegion* out) noexcept {
    if (AnyNull(region, rect, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Region::Combine", "Not implemented");
}

GXResult GXRegionEnumRects(GXRegion region, GXRegionRectProc proc, void*) noexcept {
    if (region == nullptr || proc == nullptr) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Region::EnumRects", "Not implemented");
}
