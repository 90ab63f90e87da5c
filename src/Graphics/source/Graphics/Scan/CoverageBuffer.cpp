// SPDX-License-Identifier: MIT
// Coverage of a row as differences between neighbouring pixels: a span changes at most four of them.
#include "CoverageBuffer.h"

#include <algorithm>

namespace Graphics {

namespace {
constexpr int32_t kLongRun = 16; // from this many equal pixels on, a run without shape is sent
}

void CoverageBuffer::Begin(int32_t left, int32_t right) {
    m_left = left;
    m_width = std::max(right - left, 0);
    const auto cells = static_cast<size_t>(m_width) + 2;
    m_change.resize(cells);
    std::fill_n(m_change.data(), cells, 0);
    m_shape.resize(cells);
    m_runs.reserve(cells + 1);
    m_low = m_width;
    m_high = -1;
}

void CoverageBuffer::Add(int32_t x0, int32_t x1) noexcept {
    const int64_t origin = static_cast<int64_t>(m_left) * 8;
    const int64_t limit = static_cast<int64_t>(m_width) * 8;
    const int64_t a = std::clamp<int64_t>(x0 - origin, 0, limit);
    const int64_t b = std::clamp<int64_t>(x1 - origin, 0, limit);
    if (a >= b) {
        return;
    }
    const auto p0 = static_cast<int32_t>(a >> 3);
    const auto p1 = static_cast<int32_t>(b >> 3);
    // Pixel p0 lacks its first a & 7 columns, so the next difference adds them; the end subtracts likewise.
    const auto c0 = static_cast<int32_t>(a & 7);
    const auto c1 = static_cast<int32_t>(b & 7);
    int32_t* change = m_change.data();
    change[p0] += 8 - c0;
    change[p0 + 1] += c0;
    change[p1] -= 8 - c1;
    change[p1 + 1] -= c1;
    m_low = std::min(m_low, p0);
    m_high = std::max(m_high, p1);
}

std::span<CoverageRun> CoverageBuffer::Take() {
    m_runs.clear();
    int32_t count = 0;
    const int32_t stop = std::min(m_high + 1, m_width);
    for (int32_t p = m_low; p < stop;) {
        count += m_change[static_cast<size_t>(p)];
        int32_t end = p + 1;
        while (end < stop && m_change[static_cast<size_t>(end)] == 0) {
            ++end;
        }
        const uint8_t value = ShapeOfCount(count);
        uint8_t* shape = m_shape.data() + p;
        if (value != 0 && end - p >= kLongRun) {
            m_runs.push_back({m_left + p, m_left + end, nullptr, value});
        } else if (value != 0) {
            std::fill(shape, shape + (end - p), value);
            if (!m_runs.empty() && m_runs.back().shape != nullptr && m_runs.back().x1 == m_left + p) {
                m_runs.back().x1 = m_left + end;
            } else {
                m_runs.push_back({m_left + p, m_left + end, shape, 0});
            }
        }
        p = end;
    }
    if (m_high >= m_low) {
        std::fill(m_change.data() + m_low, m_change.data() + std::min(m_high + 2, m_width + 2), 0);
    }
    m_low = m_width;
    m_high = -1;
    return {m_runs.data(), m_runs.size()};
}

} // namespace Graphics
