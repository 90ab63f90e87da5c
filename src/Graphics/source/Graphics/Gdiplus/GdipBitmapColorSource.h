// SPDX-License-Identifier: MIT
// An image as a GDI+ texture.
#pragma once

#include "../Bitmaps/Windows/GdipBitmap.h"
#include "GdipColorSource.h"

namespace Graphics {

class GdipBitmapColorSource final : public GdipColorSource {
public:
    /// `transform` maps image pixels to page units. The pixels are copied and not needed afterwards.
    GdipBitmapColorSource(const ImageInk& image, const Matrix& transform);

    /// GDI+ cannot clamp in one direction and tile in the other; tiling is chosen then.
    [[nodiscard]] static Gdiplus::GpWrapMode WrapModeOf(uint32_t extendX, uint32_t extendY) noexcept;

private:
    [[nodiscard]] bool CreateTexture(const GdipBitmap& bitmap, float opacity);
};

} // namespace Graphics
