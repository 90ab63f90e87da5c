// SPDX-License-Identifier: MIT
// The codecs on the free libraries, and our own for Windows bitmaps.
#include "../BmpCodec.h"
#include "GifCodec.h"
#include "JpegCodec.h"
#include "PngCodec.h"
#include "TiffCodec.h"

namespace Graphics {

std::span<const ImageCodec* const> PlatformCodecs() noexcept {
    static const PngCodec png;
    static const JpegCodec jpeg;
    static const TiffCodec tiff;
    static const GifCodec gif;
    static const BmpCodec bmp;
    static const ImageCodec* const all[] = {&png, &jpeg, &tiff, &gif, &bmp};
    return all;
}

} // namespace Graphics
