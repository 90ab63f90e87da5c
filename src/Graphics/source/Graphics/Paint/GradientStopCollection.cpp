// SPDX-License-Identifier: MIT
// Sorts once instead of inserting stop by stop: O(n log n) also if the host passes them in reverse order.
#include "GradientStopCollection.h"

#include <algorithm>
#include <stdexcept>

namespace Graphics {

void GradientStopCollection::Add(const GradientStop* stops, uint64_t count) {
    if (count > m_stops.max_size() - m_stops.size()) {
        throw std::length_error("GradientStopCollection");
    }
    m_stops.insert(m_stops.end(), stops, stops + count);
    const auto before = [](const GradientStop& a, const GradientStop& b) {
        return a.offset < b.offset || (std::isnan(b.offset) && !std::isnan(a.offset));
    };
    if (!std::is_sorted(m_stops.begin(), m_stops.end(), before)) {
        std::stable_sort(m_stops.begin(), m_stops.end(), before);
    }
}

} // namespace Graphics
