// SPDX-License-Identifier: MIT
#include "GdipPath.h"

namespace Graphics {

GdipPath::GdipPath(const Matrix& toPage) : m_toPage(toPage) {
    m_status.Note(g_gdip.createPath(Gdiplus::FillModeWinding, &m_path));
    m_status.Check("Graphics::GdipPath::GdipPath");
}

GdipPath::~GdipPath() { g_gdip.deletePath(m_path); }

void GdipPath::SetFillRule(uint32_t rule) {
    m_status.Note(g_gdip.setPathFillMode(m_path, rule == GXFillRuleNonZero ? Gdiplus::FillModeWinding
                                                                           : Gdiplus::FillModeAlternate));
}

void GdipPath::BeginFigure(const Point& start) {
    m_status.Note(g_gdip.startPathFigure(m_path));
    m_current = Map(m_toPage, start);
}

void GdipPath::LineTo(const Point& p) {
    const Point to = Map(m_toPage, p);
    m_status.Note(g_gdip.addPathLine(m_path, m_current.x, m_current.y, to.x, to.y));
    m_current = to;
}

void GdipPath::CubicTo(const Point& c1, const Point& c2, const Point& end) {
    const Point a = Map(m_toPage, c1);
    const Point b = Map(m_toPage, c2);
    const Point to = Map(m_toPage, end);
    m_status.Note(g_gdip.addPathBezier(m_path, m_current.x, m_current.y, a.x, a.y, b.x, b.y, to.x, to.y));
    m_current = to;
}

Gdiplus::GpPath* GdipPath::Get() const {
    m_status.Check("Graphics::GdipPath::Get");
    return m_path;
}

} // namespace Graphics
