// SPDX-License-Identifier: MIT
// The colour stops of a gradient in the order of their offsets.
#pragma once

#include <cstddef>
#include <vector>

#include "../Types.h"

namespace Graphics {

using GradientStop = GXGradientStop;

/// Sorted by offset; equal offsets stay in the order in which they came; NaN offsets come last. Offsets are taken as
/// they are, inside [0, 1] or not.
class GradientStopCollection {
public:
    /// Raises the container's length error, or that of memory, when there are too many.
    void Add(const GradientStop* stops, uint64_t count);

    [[nodiscard]] const GradientStop* begin() const noexcept { return m_stops.data(); }
    [[nodiscard]] const GradientStop* end() const noexcept { return m_stops.data() + m_stops.size(); }
    [[nodiscard]] size_t size() const noexcept { return m_stops.size(); }
    [[nodiscard]] bool empty() const noexcept { return m_stops.empty(); }

private:
    std::vector<GradientStop> m_stops;
};

} // namespace Graphics
