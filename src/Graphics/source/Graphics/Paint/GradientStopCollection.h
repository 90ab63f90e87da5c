// SPDX-License-Identifier: MIT
// The colour stops of a gradient, sorted by offset.
#pragma once

#include <cstddef>
#include <vector>

#include "../Types.h"

namespace Graphics {

using GradientStop = GXGradientStop;

/// Stops with equal offsets stay in the order in which they were added; NaN offsets come last. Offsets outside [0, 1]
/// are allowed.
class GradientStopCollection {
public:
    /// Raises a length error or "Not enough memory" if there are too many.
    void Add(const GradientStop* stops, uint64_t count);

    [[nodiscard]] const GradientStop* begin() const noexcept { return m_stops.data(); }
    [[nodiscard]] const GradientStop* end() const noexcept { return m_stops.data() + m_stops.size(); }
    [[nodiscard]] size_t size() const noexcept { return m_stops.size(); }
    [[nodiscard]] bool empty() const noexcept { return m_stops.empty(); }

private:
    std::vector<GradientStop> m_stops;
};

} // namespace Graphics
