// SPDX-License-Identifier: MIT
// The codecs of a Windows build: our own for Windows bitmaps, which every platform reads and writes alike, and GDI+ for
// everything else.
#include "../BmpCodec.h"
#include "GdipCodec.h"

namespace Graphics {

std::span<const ImageCodec* const> PlatformCodecs() noexcept {
    static const BmpCodec bmp;
    static const GdipCodec gdiplus;
    static const ImageCodec* const all[] = {&bmp, &gdiplus};
    return all;
}

} // namespace Graphics
