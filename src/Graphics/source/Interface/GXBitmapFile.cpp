// SPDX-License-Identifier: MIT
// Bitmaps in files and in native objects.
#include "Bitmaps/Bitmap.h"
#include "Bitmaps/Codecs/ImageFile.h"
#include "Bitmaps/NativeBitmap.h"
#include "Guard.h"
#include "Handles.h"

using namespace Graphics;

GXResult GXCreateBitmapFromFile(const wchar_t* path, GXBitmap* out) noexcept {
    if (AnyNull(path, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return ImageFile::Load(path); });
}

GXResult GXCreateBitmapFromFileFrame(const wchar_t* path, uint32_t frame, uint32_t* frameCount,
                                     GXBitmap* out) noexcept {
    if (AnyNull(path, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return ImageFile::LoadFrame(path, frame, frameCount); });
}

GXResult GXCreateBitmapFromMemory(const void* data, size_t size, GXBitmap* out) noexcept {
    if (AnyNull(data, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return ImageFile::LoadFromMemory(data, size); });
}

GXResult GXCreateBitmapFromHBITMAP(GXNativeBitmap nativeBitmap, GXBitmap* out) noexcept {
    if (AnyNull(nativeBitmap, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return BitmapFromNative(nativeBitmap); });
}

GXResult GXBitmapSaveToFile(GXBitmap bitmap, const wchar_t* path) noexcept {
    if (AnyNull(bitmap, path)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { ImageFile::Save(*bitmap->object, path); });
}

GXResult GXBitmapSaveToHBITMAP(GXBitmap bitmap, GXNativeBitmap* out) noexcept {
    if (AnyNull(bitmap, out)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { *out = BitmapToNative(*bitmap->object); });
}
