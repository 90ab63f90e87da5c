// SPDX-License-Identifier: MIT
#include "Figure.h"

#include <algorithm>
#include <utility>

#include "../Exception.h"

namespace Graphics {
namespace {

// Room for a start point and four cubics (8 + 4 * 25 bytes), so that most figures need one allocation.
constexpr size_t kFirstBlock = 112;

} // namespace

void Figure::Swap(Figure& o) noexcept {
    std::swap(m_block, o.m_block);
    std::swap(m_size, o.m_size);
    std::swap(m_free, o.m_free);
    std::swap(m_pointCount, o.m_pointCount);
    std::swap(m_segmentCount, o.m_segmentCount);
    std::swap(m_closed, o.m_closed);
}

void Figure::Reset() noexcept {
    m_free = m_size;
    m_pointCount = m_segmentCount = 0;
    m_closed = false;
}

Point* Figure::Grow(size_t points, size_t kinds) {
    const size_t needed = points * sizeof(Point) + kinds;
    if (needed > m_free) {
        if (m_pointCount > UINT32_MAX - 4) {
            GX_RAISE("Graphics::Figure::Grow", "Not enough memory");
        }
        const size_t before = m_size;
        const size_t wanted = m_block == nullptr ? std::max(needed, kFirstBlock) : needed;
        m_block = static_cast<uint8_t*>(ProcessHeap::GrowTwoEnded(m_block, m_size, m_segmentCount, m_free, wanted));
        m_free += m_size - before;
    }
    Point* end = reinterpret_cast<Point*>(m_block) + m_pointCount;
    m_free -= needed;
    m_pointCount += static_cast<uint32_t>(points);
    return end;
}

void Figure::Start(const Point& p) {
    const Point copy = p;
    *Grow(1, 0) = copy;
}

void Figure::AddLine(const Point& p) {
    const Point copy = p;
    *Grow(1, 1) = copy;
    m_block[m_size - 1 - m_segmentCount++] = kLine;
}

void Figure::AddCubic(const Point& c1, const Point& c2, const Point& end) {
    const Point copy[3] = {c1, c2, end};
    std::copy_n(copy, 3, Grow(3, 1));
    m_block[m_size - 1 - m_segmentCount++] = kCubic;
}

bool Figure::Equals(const Figure& o) const noexcept {
    if (m_closed != o.m_closed || m_pointCount != o.m_pointCount || m_segmentCount != o.m_segmentCount) {
        return false;
    }
    const auto same = [](const Point& a, const Point& b) { return a.x == b.x && a.y == b.y; };
    return std::equal(Points().begin(), Points().end(), o.Points().begin(), same) &&
           std::equal(m_block + m_size - m_segmentCount, m_block + m_size, o.m_block + o.m_size - m_segmentCount);
}

} // namespace Graphics
