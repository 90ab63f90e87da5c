// SPDX-License-Identifier: MIT
#include "GdipColorSource.h"

#include "../Bitmaps/Bitmap.h"
#include "../Paint/Brush.h"
#include "GdipBitmapColorSource.h"
#include "GdipGradientColorSource.h"
#include "GdipSolidColorSource.h"

namespace Graphics {

GdipColorSource::~GdipColorSource() {
    if (m_brush != nullptr) {
        g_gdip.deleteBrush(m_brush);
    }
}

std::unique_ptr<GdipColorSource> GdipColorSource::CreateFromBrush(const Brush& brush, const GdipPlace& place) {
    std::unique_ptr<GdipColorSource> source;
    switch (brush.Kind()) {
    case kBrushSolid:
        source = std::make_unique<GdipSolidColorSource>(static_cast<const SolidBrush&>(brush));
        break;
    case kBrushBitmap: {
        const auto& b = static_cast<const BitmapBrush&>(brush);
        const Matrix transform = Concat(Concat(b.transform, place.transform), place.toPage);
        source = std::make_unique<GdipBitmapColorSource>(b.bitmap->View(), b.bitmap->DpiX(), b.bitmap->DpiY(),
                                                         b.opacity, transform, b.extendX, b.extendY);
        break;
    }
    case kBrushGradient:
        source = GdipGradientColorSource::Factory(static_cast<const GradientBrush&>(brush), place);
        break;
    default:
        GX_RAISE("Graphics::GdipColorSource::CreateFromBrush", "Not implemented");
    }
    source->Check();
    return source;
}

void GdipColorSource::CreateSolid(uint32_t argb) {
    Gdiplus::GpSolidFill* brush = nullptr;
    if (m_status.Note(g_gdip.createSolidFill(argb, &brush))) {
        m_brush = brush;
    }
}

bool GdipColorSource::TakeTexture(Gdiplus::GpStatus status, Gdiplus::GpTexture* texture) {
    if (m_status.Note(status)) {
        m_brush = texture;
    }
    return m_brush != nullptr;
}

void GdipColorSource::PlaceTexture(const Matrix& transform, Gdiplus::GpWrapMode mode) {
    auto* const texture = static_cast<Gdiplus::GpTexture*>(m_brush);
    Gdiplus::GpMatrix* matrix = nullptr;
    if (m_status.Note(g_gdip.createMatrix2(transform.m00, transform.m01, transform.m10, transform.m11, transform.m20,
                                           transform.m21, &matrix))) {
        m_status.Note(g_gdip.setTextureTransform(texture, matrix));
        m_status.Note(g_gdip.deleteMatrix(matrix));
    }
    m_status.Note(g_gdip.setTextureWrapMode(texture, mode));
}

} // namespace Graphics
