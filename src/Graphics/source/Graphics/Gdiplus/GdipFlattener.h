// SPDX-License-Identifier: MIT
// Draws parts of a page once more, by the software renderer, at the device's resolution: what GDI+ cannot composite
// becomes opaque pixels. One band of the page is in memory at a time.
#pragma once

#include "../Pixels/PixelView.h"
#include "../Regions/Region.h"
#include "GdipColorSource.h"
#include "GdipPageList.h"

namespace Graphics {

class GdipFlattener {
public:
    /// Pixels of a band: 16 MiB, and 6 bytes more for each pixel and open group.
    static constexpr int64_t kBandPixels = int64_t{4} * 1024 * 1024;

    /// Receives a band, the place of its top left pixel and the rectangles of it that belong to the region.
    using Place = std::function<void(const PixelView& band, const IntPoint& origin, const std::vector<IntRect>& rects)>;

    GdipFlattener(const GdipPageList& page, BitmapTargetMaker makeTarget) noexcept
        : m_page(page), m_makeTarget(makeTarget) {}

    /// The region lies on the page. Paper is white.
    void Run(const Region& region, const Place& place, int64_t bandPixels = kBandPixels) const;

private:
    /// Those parts of the rectangles that lie in `bound`.
    void RunColumns(const std::vector<IntRect>& all, const IntRect& bound, const Place& place,
                    int64_t bandPixels) const;

    const GdipPageList& m_page;
    BitmapTargetMaker m_makeTarget;
};

} // namespace Graphics
