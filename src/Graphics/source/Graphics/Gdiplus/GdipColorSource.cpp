// SPDX-License-Identifier: MIT
#include "GdipColorSource.h"

#include "GdipBitmapColorSource.h"
#include "GdipGradientColorSource.h"
#include "GdipSolidColorSource.h"

namespace Graphics {

GdipColorSource::~GdipColorSource() {
    if (m_brush != nullptr) {
        g_gdip.deleteBrush(m_brush);
    }
}

std::unique_ptr<GdipColorSource> GdipColorSource::Create(const Ink& ink, const GdipPlace& place) {
    std::unique_ptr<GdipColorSource> source;
    if (const auto* solid = std::get_if<SolidInk>(&ink)) {
        source = std::make_unique<GdipSolidColorSource>(solid->argb);
    } else if (const auto* image = std::get_if<ImageInk>(&ink)) {
        source = std::make_unique<GdipBitmapColorSource>(
            *image, Concat(Concat(image->transform, place.transform), place.toPage));
    } else {
        source = GdipGradientColorSource::Factory(*std::get<GradientInk>(ink).brush, place);
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
