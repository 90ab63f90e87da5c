// SPDX-License-Identifier: MIT
// Bitmaps in files and in native objects.
#include "Guard.h"

using namespace Graphics;

GXResult GXCreateBitmapFromFile(const wchar_t* path, GXBitmap* out) noexcept {
    if (AnyNull(path, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Bitmap::LoadFromFile", "Not implemented");
}

GXResult GXCreateBitmapFromFileFrame(const wchar_t* path, uint32_t, uint32_t*, GXBitmap* out) noexcept {
    if (AnyNull(path, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Bitmap::LoadFromFileEx", "Not implemented");
}

GXResult GXCreateBitmapFromMemory(const void* data, size_t, GXBitmap* out) noexcept {
    if (AnyNull(data, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Bitmap::LoadFromMemory", "Not implemented");
}

GXResult GXCreateBitmapFromHBITMAP(GXNativeBitmap nativeBitmap, GXBitmap* out) noexcept {
    if (AnyNull(nativeBitmap, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Bitmap::FromNative", "Not supported on this platform");
}

GXResult GXBitmapSaveToFile(GXBitmap bitmap, const wchar_t* path) noexcept {
    if (AnyNull(bitmap, path)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Bitmap::SaveToFile", "Not implemented");
}

GXResult GXBitmapSaveToHBITMAP(GXBitmap bitmap, GXNativeBitmap* out) noexcept {
    if (AnyNull(bitmap, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Bitmap::ToNative", "Not supported on this platform");
}
