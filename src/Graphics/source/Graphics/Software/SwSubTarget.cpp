// SPDX-License-Identifier: MIT
#include "SwSubTarget.h"

namespace Graphics {

namespace {

/// Gaps up to a cache line are faster written than skipped.
constexpr ptrdiff_t kMostGap = 64;

} // namespace

void SwBasicSubTarget::Open(const PixelView& pixels) noexcept {
    m_bounds = {0, 0, pixels.width, pixels.height};
    m_clips.Clear();
    m_planes = {};
    m_isOpaque = pixels.format == GXPixelFormatBGRX32;
    m_opaqueRegion = {0, 0, 0, 0};
    m_planes.color = pixels.data;
    m_planes.colorStride = pixels.strideBytes;
    const ptrdiff_t gap = pixels.strideBytes - static_cast<ptrdiff_t>(sizeof(uint32_t)) * pixels.width;
    if (pixels.ownsGaps && gap > 0 && gap <= kMostGap) {
        m_planes.rowWithGap = pixels.width;
    }
}

SwTargetPlanes SwBasicSubTarget::ReadPlanes(const IntRect& region) {
    if (Ready(region).makesOpaque) {
        MakeRowsOpaque(ActiveKernels(), m_planes, region);
        NoteOpaque(region);
    }
    return m_planes;
}

void SwBasicSubTarget::GrowOpaque(const IntRect& region) noexcept {
    const auto area = [](const IntRect& r) { return (int64_t{r.right} - r.left) * (int64_t{r.bottom} - r.top); };
    if (area(region) > area(m_opaqueRegion)) {
        m_opaqueRegion = region;
    }
}

} // namespace Graphics
