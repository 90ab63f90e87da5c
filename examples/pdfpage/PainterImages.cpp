// SPDX-License-Identifier: MIT
// Images, image masks and shadings.
#include "Painter.h"

#include <algorithm>

namespace PdfPage {
namespace {

// Images fill the unit square, their first row at y = 0.
constexpr GXRect kUnit{0.0f, 0.0f, 1.0f, 1.0f};

// Of a bitmap whose pixels are those of the page.
fz_matrix Place(const fz_irect& box) { return fz_translate(static_cast<float>(box.x0), static_cast<float>(box.y0)); }

} // namespace

// With adjustment upright images are widened to whole pixels, so that neighbouring strips of one picture show no seams.
// The small images of bitmap fonts keep their place.
fz_matrix Painter::ImageMatrix(const fz_matrix& ctm) const {
    return m_type3Depth > 0 || !m_adjust ? ctm : fz_gridfit_matrix(0, ctm);
}

std::optional<Reduced> Painter::TrueReduction(GXBitmap image, const fz_matrix& matrix) {
    // An image may be drawn any number of times: this many pixels a page are read one by one.
    constexpr double kMostPixels = 3e8;
    GXSize size{};
    if (m_adjust || !image || !IsReduced(image, matrix) || GXBitmapGetSize(image, &size) != GXResultSuccess)
        return {};
    m_reducedPixels += double{1} * size.width * size.height;
    if (m_reducedPixels > kMostPixels)
        return {};
    return Reduce(m_report, image, matrix, Visible());
}

void Painter::FillImage(fz_image* image, const fz_matrix& ctm, float alpha, fz_color_params params) {
    const GXBitmap bitmap = m_caches.images.Bitmap(m_report, image, params);
    if (!bitmap)
        return;
    const fz_matrix matrix = ImageMatrix(ctm);
    if (const std::optional<Reduced> reduced = TrueReduction(bitmap, matrix)) {
        if (reduced->bitmap) {
            Current().SetMatrix(Place(reduced->box));
            m_report.Check(m_calls.DrawBitmap(Target(), reduced->bitmap.Get(), nullptr, alpha, GXInterpolationNearest),
                           "GXRenderTargetDrawBitmap");
        }
        return;
    }
    Current().SetMatrix(matrix);
    m_report.Check(
        m_calls.StretchBitmap(Target(), bitmap, &kUnit, nullptr, alpha, Images::Interpolation(*image, bitmap, matrix)),
        "GXRenderTargetStretchBitmap");
}

void Painter::FillImageMask(fz_image* image, const fz_matrix& ctm, const Paint& paint) {
    const GXBitmap bitmap = m_caches.images.Bitmap(m_report, image, paint.params);
    if (!bitmap)
        return;
    const fz_matrix matrix = ImageMatrix(ctm);
    if (const std::optional<Reduced> reduced = TrueReduction(bitmap, matrix)) {
        if (reduced->bitmap) {
            Current().SetMatrix(Place(reduced->box));
            m_report.Check(
                m_calls.FillMask(Target(), reduced->bitmap.Get(), Brush(paint), nullptr, GXInterpolationNearest),
                "GXRenderTargetFillMask");
        }
        return;
    }
    Current().SetMatrix(matrix);
    m_report.Check(
        m_calls.FillMask(Target(), bitmap, Brush(paint), &kUnit, Images::Interpolation(*image, bitmap, matrix)),
        "GXRenderTargetFillMask");
}

void Painter::ClipImageMask(fz_image* image, const fz_matrix& ctm) {
    GXBitmap bitmap = m_caches.images.Bitmap(m_report, image, fz_default_color_params);
    GXSize size{};
    Handle<GXBrush> brush;
    fz_matrix matrix = ImageMatrix(ctm);
    const std::optional<Reduced> reduced = TrueReduction(bitmap, matrix);
    if (reduced && reduced->bitmap) {
        bitmap = reduced->bitmap.Get();
        matrix = fz_pre_scale(Place(reduced->box), static_cast<float>(fz_irect_width(reduced->box)),
                              static_cast<float>(fz_irect_height(reduced->box)));
    }
    if (bitmap && m_report.Check(GXBitmapGetSize(bitmap, &size), "GXBitmapGetSize")) {
        const GXBitmapBrushOptions options{Images::Interpolation(*image, bitmap, matrix), GXExtendClamp, GXExtendClamp};
        const GXMatrix fit{1.0f / static_cast<float>(size.width),  0.0f, 0.0f,
                           1.0f / static_cast<float>(size.height), 0.0f, 0.0f};
        m_report.Check(m_calls.CreateBrushBitmap(bitmap, 1.0f, &options, &fit, brush.Out()), "GXCreateBrushBitmap");
    }
    if (brush)
        Current().PushShapeMask(m_unitSquare.Get(), brush.Get(), matrix);
    else
        Current().PushClip(m_unitSquare.Get(), matrix);
}

void Painter::FillShade(fz_shade* shade, const fz_matrix& ctm, float alpha, fz_color_params params) {
    const fz_rect visible = Visible();
    if (fz_is_empty_rect(visible))
        return;
    const fz_matrix matrix = fz_concat(shade->matrix, ctm);
    const Shadings::Result shading = m_caches.shadings.Gradient(m_report, shade, matrix, visible, params);
    if (!shading.gradient && shading.background == 0)
        return;
    const bool bounded = !fz_is_infinite_rect(shade->bbox);
    if (bounded) {
        const Handle<GXGeometry> box = RectGeometry(m_report, shade->bbox);
        Current().PushClip(box.Get(), matrix);
    }
    // Background and triangles are one object: a group, which is then composited as a whole.
    const bool grouped = shading.background != 0;
    if (grouped) {
        Current().PushGroup(fz_infinite_rect, std::clamp(alpha, 0.0f, 1.0f), true, false, GXBlendModeNormal);
        m_report.Check(m_calls.Clear(Target(), shading.background), "GXRenderTargetClear");
    }
    if (shading.devicePixels)
        Current().SetMatrix(fz_identity);
    else if (shading.sampledAtCorners && !m_adjust)
        Current().SetMatrix(fz_concat(matrix, fz_translate(-0.5f, -0.5f)));
    else
        Current().SetMatrix(matrix);
    if (shading.gradient)
        m_report.Check(m_calls.DrawGradient(Target(), shading.gradient, grouped ? 1.0f : alpha, nullptr),
                       "GXRenderTargetDrawGradient");
    if (grouped)
        Current().Pop();
    if (bounded)
        Current().Pop();
}

} // namespace PdfPage
