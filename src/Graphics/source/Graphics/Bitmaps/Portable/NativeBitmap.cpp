// SPDX-License-Identifier: MIT
// This platform has no native bitmaps.
#include "../NativeBitmap.h"

#include "../../Exception.h"

namespace Graphics {

std::shared_ptr<Bitmap> BitmapFromNative(void*) {
    GX_RAISE("Graphics::BitmapFromNative", "Not supported on this platform");
}

void* BitmapToNative(const Bitmap&) { GX_RAISE("Graphics::BitmapToNative", "Not supported on this platform"); }

} // namespace Graphics
