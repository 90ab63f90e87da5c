// SPDX-License-Identifier: MIT
// The process-wide bitmap cache.
#include "Guard.h"

using namespace Graphics;

GXResult GXBitmapCacheSetMemoryQuota(uint64_t) noexcept {
    return Unavailable("Graphics::BitmapCache::SetMemoryQuota", "Not implemented");
}

GXResult GXBitmapCacheGetMemoryQuota(uint64_t* out) noexcept {
    if (out == nullptr) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::BitmapCache::MemoryQuota", "Not implemented");
}

GXResult GXBitmapCacheGetMemoryInUse(uint64_t* out) noexcept {
    if (out == nullptr) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::BitmapCache::MemoryInUse", "Not implemented");
}

GXResult GXBitmapCachePut(GXBitmap bitmap, uint32_t* ticket) noexcept {
    if (AnyNull(bitmap, ticket)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::BitmapCache::Put", "Not implemented");
}

GXResult GXBitmapCacheGet(uint32_t, GXBitmap* out) noexcept {
    if (out == nullptr) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::BitmapCache::Get", "Not implemented");
}

GXResult GXBitmapCacheRemove(uint32_t) noexcept {
    return Unavailable("Graphics::BitmapCache::Remove", "Not implemented");
}
