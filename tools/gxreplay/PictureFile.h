// SPDX-License-Identifier: MIT
// A bitmap as a PNG file: by libpng, or by the library itself where the build has no libpng.
#pragma once

#include <GX/GX.h>

#include <string>

namespace Gxr {

// False when the file can't be written.
bool WritePicture(GXBitmap bitmap, const std::string& path);

} // namespace Gxr
