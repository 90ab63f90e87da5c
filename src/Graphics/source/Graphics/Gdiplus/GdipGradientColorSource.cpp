// SPDX-License-Identifier: MIT
#include "GdipGradientColorSource.h"

#include "../Bitmaps/Bitmap.h"
#include "../Bitmaps/Windows/GdipBitmap.h"
#include "GdipLinearGradientColorSource.h"
#include "GdipRadialGradientColorSource.h"
#include "GdipTriMeshGradientColorSource.h"

namespace Graphics {

std::unique_ptr<GdipColorSource> GdipGradientColorSource::Factory(const GradientBrush& brush, const GdipPlace& place) {
    switch (brush.gradient->Kind()) {
    case kGradientLinear:
        return std::make_unique<GdipLinearGradientColorSource>(brush, place);
    case kGradientRadial:
        return std::make_unique<GdipRadialGradientColorSource>(brush, place);
    case kGradientTriMesh:
        return std::make_unique<GdipTriMeshGradientColorSource>();
    default:
        GX_RAISE("Graphics::GdipGradientColorSource::Factory", "Not implemented");
    }
}

void GdipGradientColorSource::CreateTexture(const GradientBrush& brush, const Matrix& transform, int32_t width,
                                            int32_t height, const GdipPlace& place, const Matrix& textureToDevice) {
    const std::shared_ptr<Bitmap> image = Bitmap::Create(
        {static_cast<uint32_t>(width), static_cast<uint32_t>(height), GXPixelFormatPBGRA32, 96.0F, 96.0F});
    image->ColorFill(nullptr, {0.0F, 0.0F, 0.0F, 0.0F});
    const std::unique_ptr<RenderTargetBase> target = place.makeTarget(image);
    GraphicsState state;
    state.transform = transform;
    target->BeginPaint();
    target->Paint(state, Path::Plane(), GradientInk{&brush}, nullptr);
    target->EndPaint();

    const GdipBitmap bitmap(image->View(), 96.0F, 96.0F);
    Gdiplus::GpTexture* texture = nullptr;
    const Gdiplus::GpStatus status = g_gdip.createTexture(bitmap.Get(), Gdiplus::WrapModeTile, &texture);
    if (TakeTexture(status, texture)) {
        // Mirrored beyond its edges, so that filters sample colours from inside.
        PlaceTexture(Concat(textureToDevice, place.toPage), Gdiplus::WrapModeTileFlipXY);
    }
}

} // namespace Graphics
