// SPDX-License-Identifier: MIT
// The process-wide bitmap cache.
#include "BitmapCache.h"
#include "Bitmaps/Bitmap.h"
#include "Guard.h"
#include "Handles.h"

using namespace Graphics;

GXResult GXBitmapCacheSetMemoryQuota(uint64_t bytes) noexcept {
    return Guard([&] { BitmapCache::Shared().SetQuota(bytes); });
}

GXResult GXBitmapCacheGetMemoryQuota(uint64_t* out) noexcept {
    if (out == nullptr) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { *out = BitmapCache::Shared().Quota(); });
}

GXResult GXBitmapCacheGetMemoryInUse(uint64_t* out) noexcept {
    if (out == nullptr) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { *out = BitmapCache::Shared().InUse(); });
}

GXResult GXBitmapCachePut(GXBitmap bitmap, uint32_t* ticket) noexcept {
    if (AnyNull(bitmap, ticket)) {
        return GXResultInvalidArgument;
    }
    return Guard(
        [&] { *ticket = BitmapCache::Shared().Put(bitmap, bitmap->object->GetSize(), bitmap->object->Format()); });
}

GXResult GXBitmapCacheGet(uint32_t ticket, GXBitmap* out) noexcept {
    if (out == nullptr) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { *out = BitmapCache::Shared().Get(ticket); });
}

GXResult GXBitmapCacheRemove(uint32_t ticket) noexcept {
    return Guard([&] { BitmapCache::Shared().Remove(ticket); });
}
