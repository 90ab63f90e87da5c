// SPDX-License-Identifier: MIT
#include "Surface.h"

#include <cstring>
#include <stdexcept>

namespace PdfPage {

Surface::Surface(const Gxr::Calls& calls, Report& report, const fz_irect& area, GXPixelFormat format, float dpi,
                 uint32_t clearArgb)
    : m_calls(calls), m_report(report), m_area(area) {
    const GXBitmapDesc desc{fz_irect_width(area), static_cast<uint32_t>(fz_irect_height(area)), format, dpi, dpi};
    if (!report.Check(GXCreateBitmap(&desc, m_bitmap.Out()), "GXCreateBitmap") ||
        !report.Check(m_calls.CreateRenderTargetBitmap(m_bitmap.Get(), m_target.Out()), "GXCreateRenderTargetBitmap") ||
        !report.Check(m_calls.BeginPaint(m_target.Get()), "GXRenderTargetBeginPaint") ||
        // A page starts without stroke adjustment, and the parser does not pass on a wish for it.
        !report.Check(m_calls.SetStrokeAdjustment(m_target.Get(), uint8_t{0}), "GXRenderTargetSetStrokeAdjustment"))
        throw std::runtime_error("the library can't make a bitmap of this size");
    report.Check(m_calls.Clear(m_target.Get(), clearArgb), "GXRenderTargetClear");
}

Surface::~Surface() {
    if (m_bitmap)
        m_calls.Forget(m_bitmap.Get());
}

void Surface::SetMatrix(const fz_matrix& matrix) {
    GXMatrix moved = ToMatrix(matrix);
    moved.m20 -= static_cast<float>(m_area.x0);
    moved.m21 -= static_cast<float>(m_area.y0);
    if (m_matrixKnown && std::memcmp(&moved, &m_matrix, sizeof moved) == 0)
        return;
    m_matrixKnown = m_report.Check(m_calls.SetCTM(Target(), &moved), "GXRenderTargetSetCTM");
    m_matrix = moved;
}

void Surface::PushTo(Entry& entry) {
    entry.hadShapeMask = m_shapeMask;
    entry.state = m_report.Check(m_calls.PushState(Target()), "GXRenderTargetPushState");
}

void Surface::PushNothing() {
    m_entries.push_back({});
    m_entries.back().hadShapeMask = m_shapeMask;
}

void Surface::PushClip(GXGeometry geometry, const fz_matrix& matrix) {
    Entry& entry = m_entries.emplace_back();
    PushTo(entry);
    SetMatrix(matrix);
    m_report.Check(m_calls.ClipGeometry(Target(), geometry), "GXRenderTargetClipGeometry");
}

void Surface::PushShapeMask(GXGeometry unitSquare, GXBrush mask, const fz_matrix& matrix) {
    Entry& entry = m_entries.emplace_back();
    PushTo(entry);
    if (m_shapeMask) {
        // A state has one shape mask: the new one goes into a layer, which the old one masks as a whole.
        entry.layer = BeginLayer(nullptr, 1.0f, false, false);
        if (entry.layer)
            entry.innerState = m_report.Check(m_calls.PushState(Target()), "GXRenderTargetPushState");
    }
    SetMatrix(matrix);
    m_report.Check(m_calls.ClipGeometry(Target(), unitSquare), "GXRenderTargetClipGeometry");
    m_report.Check(m_calls.SetShapeMask(Target(), GXMaskTypeAlpha, mask), "GXRenderTargetSetShapeMask");
    m_shapeMask = true;
}

void Surface::PushGroup(const fz_rect& area, float opacity, bool isolated, bool knockout, GXBlendMode blendMode) {
    Entry& entry = m_entries.emplace_back();
    PushTo(entry);
    m_report.Check(m_calls.SetBlendMode(Target(), blendMode), "GXRenderTargetSetBlendMode");
    entry.layer = BeginLayer(&area, opacity, isolated, knockout);
}

void Surface::PushBlendMode(GXBlendMode blendMode) {
    Entry& entry = m_entries.emplace_back();
    PushTo(entry);
    m_report.Check(m_calls.SetBlendMode(Target(), blendMode), "GXRenderTargetSetBlendMode");
}

Handle<GXBrush> Surface::Show(const Surface& content, float opacity) {
    const GXBitmapBrushOptions options{GXInterpolationNearest, GXExtendClamp, GXExtendClamp};
    const GXMatrix place{
        1.0f, 0.0f, 0.0f, 1.0f, static_cast<float>(content.m_area.x0), static_cast<float>(content.m_area.y0)};
    Handle<GXBrush> brush;
    SetMatrix(fz_identity);
    m_report.Check(m_calls.CreateBrushBitmap(content.Bitmap(), opacity, &options, &place, brush.Out()),
                   "GXCreateBrushBitmap");
    return brush;
}

void Surface::SetOpacityMask(const Surface& mask, bool luminosity) {
    if (const Handle<GXBrush> brush = Show(mask, 1.0f))
        m_report.Check(
            m_calls.SetOpacityMask(Target(), luminosity ? GXMaskTypeLuminosity : GXMaskTypeAlpha, brush.Get()),
            "GXRenderTargetSetOpacityMask");
}

void Surface::PushOpacityMask(const Surface& mask, bool luminosity, bool asLayer) {
    Entry& entry = m_entries.emplace_back();
    PushTo(entry);
    SetOpacityMask(mask, luminosity);
    const fz_rect area = fz_rect_from_irect(mask.m_area);
    if (asLayer) {
        entry.layer = BeginLayer(&area, 1.0f, false, false);
        return;
    }
    const GXRect box{area.x0, area.y0, area.x1, area.y1};
    m_report.Check(m_calls.ClipRect(Target(), &box), "GXRenderTargetClipRect");
}

void Surface::Paint(const Surface& content, float opacity, GXBlendMode blendMode, const Surface* mask,
                    bool luminosity) {
    const Handle<GXBrush> brush = Show(content, opacity);
    if (!brush)
        return;
    Entry& entry = m_entries.emplace_back();
    PushTo(entry);
    m_report.Check(m_calls.SetBlendMode(Target(), blendMode), "GXRenderTargetSetBlendMode");
    if (mask)
        SetOpacityMask(*mask, luminosity);
    const fz_irect& area = content.m_area;
    const GXRect box{static_cast<float>(area.x0), static_cast<float>(area.y0), static_cast<float>(area.x1),
                     static_cast<float>(area.y1)};
    m_report.Check(m_calls.FillRect(Target(), &box, brush.Get()), "GXRenderTargetFillRect");
    Pop();
}

void Surface::Pop() {
    if (m_entries.empty())
        return;
    const Entry entry = m_entries.back();
    m_entries.pop_back();
    if (entry.innerState)
        m_report.Check(m_calls.PopState(Target()), "GXRenderTargetPopState");
    if (entry.layer)
        m_report.Check(m_calls.EndLayer(Target()), "GXRenderTargetEndLayer");
    if (entry.state)
        m_report.Check(m_calls.PopState(Target()), "GXRenderTargetPopState");
    m_shapeMask = entry.hadShapeMask;
    m_matrixKnown = false;
}

void Surface::Finish() {
    while (!m_entries.empty())
        Pop();
    m_report.Check(m_calls.EndPaint(Target()), "GXRenderTargetEndPaint");
    m_target.Reset();
}

bool Surface::BeginLayer(const fz_rect* area, float opacity, bool isolated, bool knockout) {
    if (!LayersSupported()) {
        m_report.Notice("groups drawn plainly, the library has no layers");
        return false;
    }
    SetMatrix(fz_identity);
    GXLayerDesc desc{{0.0f, 0.0f, 0.0f, 0.0f}, opacity, isolated, knockout}; // empty: bounded by the clip alone
    if (area && !fz_is_infinite_rect(*area)) {
        const fz_rect page = fz_expand_rect(fz_rect_from_irect(m_area), 16.0f);
        const fz_rect visible = fz_intersect_rect(*area, page);
        // A group that can't be seen gets a pixel beside the surface to draw on.
        desc.bounds = fz_is_empty_rect(visible) ? GXRect{page.x0 + 1, page.y0 + 1, page.x0 + 2, page.y0 + 2}
                                                : GXRect{visible.x0, visible.y0, visible.x1, visible.y1};
    }
    if (!m_report.Check(m_calls.BeginLayer(Target(), &desc), "GXRenderTargetBeginLayer"))
        return false;
    m_shapeMask = false;
    m_matrixKnown = false;
    return true;
}

bool Surface::LayersSupported() {
    static const bool supported = [] {
        const GXBitmapDesc desc{1, 1, GXPixelFormatPBGRA32, 96.0f, 96.0f};
        const GXLayerDesc layer{{0.0f, 0.0f, 1.0f, 1.0f}, 1.0f, 1, 0};
        Handle<GXBitmap> bitmap;
        Handle<GXRenderTarget> target;
        return GXCreateBitmap(&desc, bitmap.Out()) == GXResultSuccess &&
               GXCreateRenderTargetBitmap(bitmap.Get(), target.Out()) == GXResultSuccess &&
               GXRenderTargetBeginPaint(target.Get()) == GXResultSuccess &&
               GXRenderTargetBeginLayer(target.Get(), &layer) == GXResultSuccess &&
               GXRenderTargetEndLayer(target.Get()) == GXResultSuccess &&
               GXRenderTargetEndPaint(target.Get()) == GXResultSuccess;
    }();
    return supported;
}

} // namespace PdfPage
