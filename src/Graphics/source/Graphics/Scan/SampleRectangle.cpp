// SPDX-License-Identifier: MIT
#include "SampleRectangle.h"

#include "BandScanner.h"

namespace Graphics {

IntRect SampleRectangle::Box(const Vertex& a, const Vertex& b) noexcept {
    return {(std::min(a.x, b.x) - BandScanner::kRoom) >> 7, std::min(a.y, b.y) >> 7,
            ((std::max(a.x, b.x) + BandScanner::kRoom) >> 7) + 1, (std::max(a.y, b.y) + 127) >> 7};
}

bool SampleRectangle::Set(const Vertex& a, const Vertex& b, int32_t clipFirst, int32_t clipLast,
                          const IntRect& visible) noexcept {
    const int32_t minX = std::min(a.x, b.x);
    const int32_t maxX = std::max(a.x, b.x);
    const int32_t minY = std::min(a.y, b.y);
    const int32_t maxY = std::max(a.y, b.y);
    const IntRect box = Intersect(Box(a, b), visible);
    m_first = std::max({minY >> 4, clipFirst, box.top * 8});
    m_last = std::min({maxY >> 4, clipLast, box.bottom * 8});
    if (!BandScanner::Holds(minX, minY, maxX, maxY, m_last - m_first)) {
        return false;
    }
    m_frameLeft = box.left;
    m_frameRight = box.right;
    m_from = std::max(UprightColumn(minX), box.left * 8);
    m_to = std::min(UprightColumn(maxX), box.right * 8);
    m_seesRightEdge = maxX < box.right * 128 + BandScanner::kRoom; // the band scanner drops an edge further right
    if (m_from >= m_to) {
        m_last = m_first;
    }
    return true;
}

} // namespace Graphics
