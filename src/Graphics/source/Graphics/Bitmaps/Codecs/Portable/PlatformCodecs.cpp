// SPDX-License-Identifier: MIT
// The codecs on the free libraries, and our own for Windows bitmaps.
#include "../BmpCodec.h"
#include "GifCodec.h"
#include "JpegCodec.h"
#include "PngCodec.h"
#include "TiffCodec.h"

namespace Graphics {
namespace {

// Not made on first use: a program may load and save while its static objects end.
const PngCodec g_png;
const JpegCodec g_jpeg;
const TiffCodec g_tiff;
const GifCodec g_gif;
const BmpCodec g_bmp;
const ImageCodec* const g_all[] = {&g_png, &g_jpeg, &g_tiff, &g_gif, &g_bmp};

} // namespace

std::span<const ImageCodec* const> PlatformCodecs() noexcept { return g_all; }

} // namespace Graphics
