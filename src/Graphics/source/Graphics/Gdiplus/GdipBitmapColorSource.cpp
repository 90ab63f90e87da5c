// SPDX-License-Identifier: MIT
#include "GdipBitmapColorSource.h"

#include "../Bitmaps/Bitmap.h"

namespace Graphics {

GdipBitmapColorSource::GdipBitmapColorSource(const ImageInk& image, const Matrix& transform) {
    const GdipBitmap bitmap(image.Pixels(), image.bitmap->DpiX(), image.bitmap->DpiY());
    if (CreateTexture(bitmap, image.opacity)) {
        // If pixels beyond the edges are hidden, the image is mirrored there, because a clamped texture fades out at
        // its edges.
        const bool hidden = image.edges == ImageInk::Edges::Hidden;
        PlaceTexture(transform, hidden ? Gdiplus::WrapModeTileFlipXY : WrapModeOf(image.extendX, image.extendY));
    }
}

bool GdipBitmapColorSource::CreateTexture(const GdipBitmap& bitmap, float opacity) {
    Gdiplus::GpTexture* texture = nullptr;
    if (opacity >= 0.99F && opacity <= 1.01F) {
        const Gdiplus::GpStatus status = g_gdip.createTexture(bitmap.Get(), Gdiplus::WrapModeTile, &texture);
        return TakeTexture(status, texture);
    }
    Gdiplus::GpImageAttributes* attributes = nullptr;
    if (!m_status.Note(g_gdip.createImageAttributes(&attributes))) {
        return false;
    }
    const Gdiplus::ColorMatrix matrix = {
        {{1, 0, 0, 0, 0}, {0, 1, 0, 0, 0}, {0, 0, 1, 0, 0}, {0, 0, 0, opacity, 0}, {0, 0, 0, 0, 1}}};
    m_status.Note(g_gdip.setImageAttributesColorMatrix(attributes, Gdiplus::ColorAdjustTypeBitmap, TRUE, &matrix,
                                                       nullptr, Gdiplus::ColorMatrixFlagsDefault));
    const auto width = static_cast<float>(bitmap.Width());
    const auto height = static_cast<float>(bitmap.Height());
    const Gdiplus::GpStatus status =
        g_gdip.createTextureIA(bitmap.Get(), attributes, 0.0F, 0.0F, width, height, &texture);
    m_status.Note(g_gdip.disposeImageAttributes(attributes));
    return TakeTexture(status, texture);
}

Gdiplus::GpWrapMode GdipBitmapColorSource::WrapModeOf(uint32_t extendX, uint32_t extendY) noexcept {
    using namespace Gdiplus;
    static constexpr GpWrapMode kModes[3][3] = {{WrapModeClamp, WrapModeTile, WrapModeTile},
                                                {WrapModeTile, WrapModeTile, WrapModeTileFlipY},
                                                {WrapModeTile, WrapModeTileFlipX, WrapModeTileFlipXY}};
    return extendX < 3 && extendY < 3 ? kModes[extendX][extendY] : WrapModeTile;
}

} // namespace Graphics
