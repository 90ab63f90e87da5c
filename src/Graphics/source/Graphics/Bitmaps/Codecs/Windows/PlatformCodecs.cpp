// SPDX-License-Identifier: MIT
// The codecs of a Windows build: our own for Windows bitmaps, which every platform reads and writes alike, and GDI+ for
// everything else.
#include "../BmpCodec.h"
#include "GdipCodec.h"

namespace Graphics {
namespace {

// Not made on first use: a program may load and save while its static objects end.
const BmpCodec g_bmp;
const GdipCodec g_gdiplus;
const ImageCodec* const g_all[] = {&g_bmp, &g_gdiplus};

} // namespace

std::span<const ImageCodec* const> PlatformCodecs() noexcept { return g_all; }

} // namespace Graphics
