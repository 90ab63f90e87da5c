// SPDX-License-Identifier: MIT
// A path of GDI+, filled through the sink that every geometry can be sent to. Takes device pixels, holds page units.
#pragma once

#include "../Matrix.h"
#include "GdipStatus.h"

namespace Graphics {

class GdipPath {
public:
    /// Device pixels that a page may have from its corner: paper on a roll is long.
    static constexpr float kBand = 1048576.0F;

    /// `toPage` maps device pixels to page units. Raises when GDI+ makes no path.
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

    /// The finished path. Raises when one of its parts was refused.
    [[nodiscard]] Gdiplus::GpPath* Get() const;

private:
    const Matrix m_toPage;
    Gdiplus::GpPath* m_path = nullptr;
    mutable GdipStatus m_status;
    Point m_current{};
};

} // namespace Graphics
