// SPDX-License-Identifier: MIT
// Pixels on their way into and out of a bitmap of GDI.
#pragma once

#include <memory>

#include "../../Windows/DCHandle.h"

namespace Graphics {

class Bitmap;

class NativeBitmapWrapper {
public:
    /// A device-independent section of 32 bits with the premultiplied pixels; opaque ones have 255 as the fourth byte.
    /// Raises "CreateDIBSection fail".
    [[nodiscard]] static GdiBitmap CreateBitmap(const Bitmap& bitmap);

    /// 1 and 8 bits become Indexed1 and Indexed8 with the palette, 24 bits BGR24, others 32 bits. The fourth byte of
    /// those is an alpha only by custom: it counts, as that of PBGRA32, when it can be one and says something, that is
    /// when no colour lies above it and some pixel has neither 0 nor 255; else the bitmap is BGRX32. Raises "Failed to
    /// load".
    [[nodiscard]] static std::shared_ptr<Bitmap> Load(HBITMAP native);
};

} // namespace Graphics
