// SPDX-License-Identifier: MIT
// Bitmaps in memory: creation, queries and pixels.
#include "Bitmaps/Bitmap.h"
#include "Guard.h"
#include "Handles.h"

using namespace Graphics;

GXResult GXCreateBitmap(const GXBitmapDesc* desc, GXBitmap* out) noexcept {
    if (AnyNull(desc, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return Bitmap::Create(*desc); });
}

GXResult GXBitmapGetPixelFormat(GXBitmap bitmap, GXPixelFormat* out) noexcept {
    if (AnyNull(bitmap, out)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { *out = bitmap->object->Format(); });
}

GXResult GXBitmapGetSize(GXBitmap bitmap, GXSize* out) noexcept {
    if (AnyNull(bitmap, out)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { *out = bitmap->object->GetSize(); });
}

GXResult GXBitmapGetDpiX(GXBitmap bitmap, float* out) noexcept {
    if (AnyNull(bitmap, out)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { *out = bitmap->object->DpiX(); });
}

GXResult GXBitmapGetDpiY(GXBitmap bitmap, float* out) noexcept {
    if (AnyNull(bitmap, out)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { *out = bitmap->object->DpiY(); });
}

GXResult GXBitmapSetPalette(GXBitmap bitmap, GXPalette palette) noexcept {
    if (bitmap == nullptr) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { bitmap->object->SetPalette(palette != nullptr ? palette->object : nullptr); });
}

GXResult GXBitmapGetPalette(GXBitmap bitmap, GXPalette* out) noexcept {
    if (AnyNull(bitmap, out)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] {
        std::shared_ptr<const Palette> palette = bitmap->object->GetPalette();
        *out = palette == nullptr ? nullptr : std::make_unique<GXPaletteRec_>(std::move(palette)).release();
    });
}

GXResult GXBitmapLock(GXBitmap bitmap, const GXIntRect* rect, uint32_t mode, GXBitmapData* out) noexcept {
    if (AnyNull(bitmap, out)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { *out = bitmap->object->Lock(rect, mode); });
}

GXResult GXBitmapUnlock(GXBitmap bitmap) noexcept {
    if (bitmap == nullptr) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { bitmap->object->Unlock(); });
}

GXResult GXBitmapCopyFromBitmap(GXBitmap dest, const GXIntPoint* point, GXBitmap source,
                                const GXIntRect* rect) noexcept {
    if (AnyNull(dest, source)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { dest->object->CopyFromBitmap(point, *source->object, rect); });
}

GXResult GXBitmapCopyFromMemory(GXBitmap bitmap, const GXIntRect* rect, const GXBitmapData* data) noexcept {
    if (AnyNull(bitmap, data) || data->data == nullptr) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { bitmap->object->CopyFromMemory(rect, *data); });
}

GXResult GXBitmapCopyToMemory(GXBitmap bitmap, const GXIntRect* rect, const GXBitmapData* data) noexcept {
    if (AnyNull(bitmap, data) || data->data == nullptr) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { bitmap->object->CopyToMemory(rect, *data); });
}

GXResult GXBitmapColorFill(GXBitmap bitmap, const GXIntRect* rect, uint32_t argb) noexcept {
    if (bitmap == nullptr) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { bitmap->object->ColorFill(rect, UnpackColor(argb)); });
}

GXResult GXBitmapNotifyChanged(GXBitmap bitmap) noexcept {
    if (bitmap == nullptr) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { bitmap->object->NotifyChanged(); });
}

// No back end uses the mark.
GXResult GXBitmapSetOffscreenPainting(GXBitmap bitmap, uint8_t) noexcept {
    return bitmap == nullptr ? GXResultInvalidArgument : GXResultSuccess;
}
