// SPDX-License-Identifier: MIT
#include "SwSurface.h"

#include "../../Exception.h"

namespace Graphics {

GXPixelFormat SwSurface::GetCompatibleFormat(int bitsPerPixel) {
    switch (bitsPerPixel) {
    case 1:
        return GXPixelFormatBlackWhite1;
    case 8:
    case 16:
    case 32:
        return GXPixelFormatBGRX32;
    case 24:
        return GXPixelFormatBGR24;
    default:
        GX_RAISE("Graphics::SwSurface::GetCompatibleFormat", "Unsupported pixel format.");
    }
}

} // namespace Graphics
