// SPDX-License-Identifier: MIT
// The codecs based on free libraries, and the engine's own for Windows bitmaps.
#include "BmpCodec.h"
#include "FreeCodecs.h"

namespace Graphics {
namespace {

// Like all codecs not created on first use, because a program may load and save while its static objects end.
const BmpCodec g_bmp;

} // namespace

std::span<const ImageCodec* const> PlatformCodecs() noexcept {
    static const ImageCodec* const all[] = {&PngFiles(), &JpegFiles(), &TiffFiles(), &GifFiles(), &g_bmp};
    return all;
}

} // namespace Graphics
