// SPDX-License-Identifier: MIT
// The codecs on the free libraries, and our own for Windows bitmaps.
#include "BmpCodec.h"
#include "FreeCodecs.h"

namespace Graphics {
namespace {

// Not made on first use, like all codecs: a program may load and save while its static objects end.
const BmpCodec g_bmp;

} // namespace

std::span<const ImageCodec* const> PlatformCodecs() noexcept {
    static const ImageCodec* const all[] = {&PngFiles(), &JpegFiles(), &TiffFiles(), &GifFiles(), &g_bmp};
    return all;
}

} // namespace Graphics
