// SPDX-License-Identifier: MIT
// A GDI+ graphics object on a device context. Its unit is the point, 1/72 inch, from the device's top left corner.
#pragma once

#include "GdipPath.h"

namespace Graphics {

class GdipColorSource;

class GdipGraphics {
public:
    /// Raises if GDI+ refuses the context, which must outlive this object.
    explicit GdipGraphics(HDC dc);
    GdipGraphics(const GdipGraphics&) = delete;
    GdipGraphics& operator=(const GdipGraphics&) = delete;
    ~GdipGraphics();

    // Each function makes all its GDI+ calls, and raises "Gdiplus call failed - status: {n}" at its end if one failed.

    void Clear(uint32_t argb);
    /// `interpolation` is the sampling mode for the source's image.
    void Fill(const GdipPath& path, const GdipColorSource& source, uint32_t interpolation);
    void IntersectClip(const GdipPath& path);

    using SavedState = Gdiplus::GraphicsState;
    [[nodiscard]] SavedState Save();
    /// Restores a saved state and drops states saved after it.
    void Restore(SavedState state);

    /// Between these two calls GDI may draw into the context; earlier output of GDI+ is flushed to it.
    [[nodiscard]] HDC AcquireContext();
    void ReleaseContext(HDC dc);

private:
    class DrawState;

    Gdiplus::GpGraphics* m_graphics = nullptr;
    SavedState m_first = 0;
    GdipStatus m_status;
};

} // namespace Graphics
