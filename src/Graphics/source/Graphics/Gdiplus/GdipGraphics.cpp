// SPDX-License-Identifier: MIT
#include "GdipGraphics.h"

#include "GdipColorSource.h"

namespace Graphics {
namespace {

/// Linear is rendered as bicubic, since the resolution of a printer shows the difference.
[[nodiscard]] Gdiplus::InterpolationMode InterpolationModeOf(uint32_t interpolation) noexcept {
    switch (interpolation) {
    case GXInterpolationLinear:
        return Gdiplus::InterpolationModeBicubic;
    case GXInterpolationAverage:
        return Gdiplus::InterpolationModeHighQualityBicubic;
    default:
        return Gdiplus::InterpolationModeNearestNeighbor;
    }
}

} // namespace

/// The GDI+ state for one call.
class GdipGraphics::DrawState {
public:
    DrawState(GdipGraphics& owner, uint32_t interpolation) : m_owner(owner) {
        Gdiplus::GpGraphics* graphics = owner.m_graphics;
        GdipStatus& status = owner.m_status;
        m_saved = status.Note(g_gdip.saveGraphics(graphics, &m_state));
        status.Note(g_gdip.setCompositingMode(graphics, Gdiplus::CompositingModeSourceOver));
        status.Note(g_gdip.setCompositingQuality(graphics, Gdiplus::CompositingQualityHighQuality));
        status.Note(g_gdip.setInterpolationMode(graphics, InterpolationModeOf(interpolation)));
        status.Note(g_gdip.setPixelOffsetMode(graphics, Gdiplus::PixelOffsetModeHighQuality));
        status.Note(g_gdip.setSmoothingMode(graphics, Gdiplus::SmoothingModeHighQuality));
        status.Note(g_gdip.setPageUnit(graphics, Gdiplus::UnitPoint));
    }
    DrawState(const DrawState&) = delete;
    DrawState& operator=(const DrawState&) = delete;
    ~DrawState() {
        if (m_saved) {
            m_owner.m_status.Note(g_gdip.restoreGraphics(m_owner.m_graphics, m_state));
        }
        m_owner.m_status.Note(g_gdip.resetWorldTransform(m_owner.m_graphics));
    }

private:
    GdipGraphics& m_owner;
    SavedState m_state = 0;
    bool m_saved = false;
};

GdipGraphics::GdipGraphics(HDC dc) {
    if (m_status.Note(g_gdip.createFromHDC(dc, &m_graphics)) &&
        m_status.Note(g_gdip.saveGraphics(m_graphics, &m_first)) &&
        m_status.Note(g_gdip.setPageUnit(m_graphics, Gdiplus::UnitPoint))) { // the unit of clips
        return;
    }
    if (m_graphics != nullptr) {
        g_gdip.deleteGraphics(m_graphics);
    }
    m_status.Check("Graphics::GdipGraphics::GdipGraphics");
}

GdipGraphics::~GdipGraphics() {
    g_gdip.restoreGraphics(m_graphics, m_first);
    g_gdip.deleteGraphics(m_graphics);
}

void GdipGraphics::Clear(uint32_t argb) {
    // In pixels, because GDI+ rounds the clip's bounds in page units.
    m_status.Note(g_gdip.setPageUnit(m_graphics, Gdiplus::UnitPixel));
    m_status.Note(g_gdip.graphicsClear(m_graphics, argb));
    m_status.Note(g_gdip.setPageUnit(m_graphics, Gdiplus::UnitPoint));
    m_status.Check("Graphics::GdipGraphics::Clear");
}

void GdipGraphics::Fill(const GdipPath& path, const GdipColorSource& source, uint32_t interpolation) {
    Gdiplus::GpPath* const figure = path.Get();
    {
        const DrawState state(*this, interpolation);
        m_status.Note(g_gdip.fillPath(m_graphics, source.Get(), figure));
    }
    m_status.Check("Graphics::GdipGraphics::Fill");
}

void GdipGraphics::IntersectClip(const GdipPath& path) {
    m_status.Note(g_gdip.setClipPath(m_graphics, path.Get(), Gdiplus::CombineModeIntersect));
    m_status.Check("Graphics::GdipGraphics::IntersectClip");
}

GdipGraphics::SavedState GdipGraphics::Save() {
    SavedState state = 0;
    m_status.Note(g_gdip.saveGraphics(m_graphics, &state));
    m_status.Check("Graphics::GdipGraphics::Save");
    return state;
}

void GdipGraphics::Restore(SavedState state) {
    m_status.Note(g_gdip.restoreGraphics(m_graphics, state));
    m_status.Check("Graphics::GdipGraphics::Restore");
}

HDC GdipGraphics::AcquireContext() {
    HDC dc = nullptr;
    m_status.Note(g_gdip.getDC(m_graphics, &dc));
    m_status.Check("Graphics::GdipGraphics::AcquireContext");
    return dc;
}

void GdipGraphics::ReleaseContext(HDC dc) {
    m_status.Note(g_gdip.releaseDC(m_graphics, dc));
    m_status.Check("Graphics::GdipGraphics::ReleaseContext");
}

} // namespace Graphics
