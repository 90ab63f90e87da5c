// SPDX-License-Identifier: MIT
#include "../../examples/pdfpage/PngWriter.h"
#include "PictureFile.h"

namespace Gxr {

bool WritePicture(GXBitmap bitmap, const std::string& path) {
    GXSize size{};
    GXBitmapData data{};
    float dpi = 96.0f;
    return GXBitmapGetSize(bitmap, &size) == GXResultSuccess && GXBitmapGetDpiX(bitmap, &dpi) == GXResultSuccess &&
           GXBitmapLock(bitmap, nullptr, GXLockRead, &data) == GXResultSuccess &&
           PdfPage::WritePng(path, static_cast<const uint8_t*>(data.data), size.width, size.height, data.stride, dpi) &&
           GXBitmapUnlock(bitmap) == GXResultSuccess;
}

} // namespace Gxr
