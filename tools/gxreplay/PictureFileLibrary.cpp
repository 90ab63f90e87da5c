// SPDX-License-Identifier: MIT
#include "PictureFile.h"

namespace Gxr {

bool WritePicture(GXBitmap bitmap, const std::string& path) {
    return GXBitmapSaveToFile(bitmap, std::wstring(path.begin(), path.end()).c_str()) == GXResultSuccess;
}

} // namespace Gxr
