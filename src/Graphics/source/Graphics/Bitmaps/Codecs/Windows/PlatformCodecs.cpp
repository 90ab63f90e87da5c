// SPDX-License-Identifier: MIT
// The codec of a Windows build: GDI+ for every kind of file.
#include "GdipCodec.h"

namespace Graphics {
namespace {

// Not created on first use, because a program may load and save while its static objects end.
const GdipCodec g_gdiplus;
const ImageCodec* const g_all[] = {&g_gdiplus};

} // namespace

std::span<const ImageCodec* const> PlatformCodecs() noexcept { return g_all; }

} // namespace Graphics
