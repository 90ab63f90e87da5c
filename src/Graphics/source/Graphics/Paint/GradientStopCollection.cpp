// SPDX-License-Identifier: MIT
// One stable sort instead of an insertion for each stop: n log n also when the host passes them backwards.
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
