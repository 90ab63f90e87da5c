// SPDX-License-Identifier: MIT
// A bitmap with its render target and a stack of clips and layers. Coordinates are device pixels of the page; a surface
// that covers only a part of the page (a soft mask, a group) subtracts its origin.
#pragma once

#include "Handle.h"
#include "MuPdf.h"
#include "Report.h"

#include "../../tools/gxr/Calls.h"

#include <vector>

namespace PdfPage {

class Surface {
public:
    // Throws std::runtime_error when the library can't make the bitmap. Painting has begun on return.
    Surface(const Gxr::Calls& calls, Report& report, const fz_irect& area, GXPixelFormat format, float dpi,
            uint32_t clearArgb);
    ~Surface();
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;

    GXRenderTarget Target() const noexcept { return m_target.Get(); }
    GXBitmap Bitmap() const noexcept { return m_bitmap.Get(); }
    const fz_irect& Area() const noexcept { return m_area; }

    void SetMatrix(const fz_matrix& matrix);

    // Each Push… adds one entry, Pop undoes exactly one.
    void PushNothing();
    void PushClip(GXGeometry geometry, const fz_matrix& matrix);
    // The mask bitmap fills the unit square under `matrix`, nothing is drawn outside it.
    void PushShapeMask(GXGeometry unitSquare, GXBrush mask, const fz_matrix& matrix);
    void PushBlendMode(GXBlendMode blendMode);
    // A layer of the library. `area` in page pixels. Without layers the content goes straight to the target.
    void PushGroup(const fz_rect& area, float opacity, bool isolated, bool knockout, GXBlendMode blendMode);
    // What follows is masked object by object, or as a whole in a layer. Nothing is drawn outside the mask.
    void PushOpacityMask(const Surface& mask, bool luminosity, bool asLayer);
    void Pop();
    bool HasOpenEntries() const noexcept { return !m_entries.empty(); }

    // Paints a finished surface in its place, as one object; `mask` may be null.
    void Paint(const Surface& content, float opacity, GXBlendMode blendMode, const Surface* mask, bool luminosity);

    // Paints what is left open and ends painting; the bitmap is then complete.
    void Finish();

    // Whether the library has layers, found out once by opening one on a bitmap of a single pixel.
    static bool LayersSupported();

private:
    struct Entry {
        bool state = false;        // PushState on the target
        bool layer = false;        // BeginLayer above that state
        bool innerState = false;   // PushState inside the layer
        bool hadShapeMask = false; // what m_shapeMask was before
    };

    void PushTo(Entry& entry);
    // A brush that shows the surface in its place, under the identity matrix.
    Handle<GXBrush> Show(const Surface& content, float opacity);
    void SetOpacityMask(const Surface& mask, bool luminosity);
    bool BeginLayer(const fz_rect* area, float opacity, bool isolated, bool knockout);

    const Gxr::Calls& m_calls;
    Report& m_report;
    fz_irect m_area;
    Handle<GXBitmap> m_bitmap;
    Handle<GXRenderTarget> m_target;
    std::vector<Entry> m_entries;
    GXMatrix m_matrix{};
    bool m_matrixKnown = false;
    bool m_shapeMask = false; // a shape mask is set in the current state
};

} // namespace PdfPage
