// SPDX-License-Identifier: MIT
// A graphics object of GDI+ on a device context. Its unit is the point, 1/72 inch, from the device's top left corner.
#pragma once

#include "GdipPath.h"

namespace Graphics {

class GdipColorSource;

class GdipGraphics {
public:
    /// Raises when GDI+ refuses the context, which outlives this object.
    explicit GdipGraphics(HDC dc);
    GdipGraphics(const GdipGraphics&) = delete;
    GdipGraphics& operator=(const GdipGraphics&) = delete;
    ~GdipGraphics();

    // All raise "Gdiplus call failed - status: {n}" when one of their calls failed; the others were made nevertheless.

    void Clear(uint32_t argb);
    /// `interpolation` says how the source's image is sampled.
    void Fill(const GdipPath& path, const GdipColorSource& source, uint32_t interpolation);
    void IntersectClip(const GdipPath& path);

    using SavedState = Gdiplus::GraphicsState;
    [[nodiscard]] SavedState Save();
    /// Back to a saved state; states saved after it are gone.
    void Restore(SavedState state);

    /// Between these GDI draws into the context itself; what GDI+ has drawn is there.
    [[nodiscard]] HDC AcquireContext();
    void ReleaseContext(HDC dc);

private:
    class DrawState;

    Gdiplus::GpGraphics* m_graphics = nullptr;
    SavedState m_first = 0;
    GdipStatus m_status;
};

} // namespace Graphics
