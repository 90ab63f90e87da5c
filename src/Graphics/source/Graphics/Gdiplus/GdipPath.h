// SPDX-License-Identifier: MIT
// A GDI+ path that is filled as a geometry sink. Receives device pixels and stores page units.
#pragma once

#include "../Matrix.h"
#include "GdipStatus.h"

namespace Graphics {

class GdipPath {
public:
    /// Limit of a page in device pixels; roll paper is long.
    static constexpr float kBand = 1048576.0F;

    /// `toPage` maps device pixels to page units. Raises if GDI+ cannot create a path.
    explicit GdipPath(const Matrix& toPage);
    GdipPath(const GdipPath&) = delete;
    GdipPath& operator=(const GdipPath&) = delete;
    ~GdipPath();

    void SetFillRule(uint32_t rule);
    void BeginFigure(const Point& start);
    void EndFigure() {}
    void EndFigureClose() { m_status.Note(g_gdip.closePathFigure(m_path)); }
    void LineTo(const Point& p);
    void CubicTo(const Point& c1, const Point& c2, const Point& end);

    /// The finished path. Raises if GDI+ refused a part of it.
    [[nodiscard]] Gdiplus::GpPath* Get() const;

private:
    const Matrix m_toPage;
    Gdiplus::GpPath* m_path = nullptr;
    mutable GdipStatus m_status;
    Point m_current{};
};

} // namespace Graphics
