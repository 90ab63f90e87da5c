// SPDX-License-Identifier: MIT
// Conversion of bitmaps to and from GDI.
#pragma once

#include <memory>

#include "../../Windows/DCHandle.h"

namespace Graphics {

class Bitmap;

class NativeBitmapWrapper {
public:
    /// A 32-bit DIB section with the premultiplied pixels; opaque pixels have 255 as the fourth byte. Raises
    /// "CreateDIBSection fail".
    [[nodiscard]] static GdiBitmap CreateBitmap(const Bitmap& bitmap);

    /// 1 and 8 bits become Indexed1 and Indexed8 with the palette, 24 bits BGR24, other depths 32 bits. GDI does not
    /// say whether a fourth byte is alpha. It is taken as alpha (PBGRA32) if no colour exceeds it and some pixel has
    /// neither 0 nor 255; else the bitmap is BGRX32. Raises "Failed to load".
    [[nodiscard]] static std::shared_ptr<Bitmap> Load(HBITMAP native);
};

} // namespace Graphics
