// SPDX-License-Identifier: MIT
// Draws parts of a page again with the software renderer, at the device's resolution, to turn what GDI+ cannot
// composite into opaque pixels. One band of the page is in memory at a time.
#pragma once

#include "../Pixels/PixelView.h"
#include "../Regions/Region.h"
#include "GdipColorSource.h"
#include "GdipPageList.h"

namespace Graphics {

class GdipFlattener {
public:
    /// Size of a band: 16 MiB, plus 6 bytes per pixel and open group.
    static constexpr int64_t kBandPixels = int64_t{4} * 1024 * 1024;

    /// Receives a band, the position of its top left pixel and the rectangles of it that belong to the region.
    using Place = std::function<void(const PixelView& band, const IntPoint& origin, const std::vector<IntRect>& rects)>;

    GdipFlattener(const GdipPageList& page, BitmapTargetMaker makeTarget) noexcept
        : m_page(page), m_makeTarget(makeTarget) {}

    /// The region must lie on the page. The page background is white.
    void Run(const Region& region, const Place& place, int64_t bandPixels = kBandPixels) const;

private:
    /// Draws the parts of the rectangles inside `bound`.
    void RunColumns(const std::vector<IntRect>& all, const IntRect& bound, const Place& place,
                    int64_t bandPixels) const;

    const GdipPageList& m_page;
    BitmapTargetMaker m_makeTarget;
};

} // namespace Graphics
