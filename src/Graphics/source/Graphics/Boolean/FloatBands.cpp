// SPDX-License-Identifier: MIT
#include "FloatBands.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "GridPoint.h"

namespace Graphics {

double FloatBands::StepFor(double tolerance) noexcept {
    // An area is off by up to one and a half steps: half for rounding a vertex, half for a crossing and half for its
    // pixel.
    int exponent = 0;
    static_cast<void>(std::frexp(tolerance / 2, &exponent)); // 2^(exponent - 1) <= tolerance / 2
    return std::ldexp(1.0, std::clamp(exponent - 1, -149, 104));
}

FloatBands::FloatBands(double step, double near, double most) {
    int exponent = 0;
    static_cast<void>(std::frexp(near, &exponent));
    const double even = step * kGridLimit;
    const double middle = std::clamp(std::ldexp(1.0, near > 0 ? exponent : -149), step, even);
    HeapArray<double> bounds, steps; // of the positive side
    bounds.push_back(middle);
    steps.push_back(std::max(middle / kGridLimit, std::ldexp(1.0, -149)));
    if (middle < even && most > middle) {
        bounds.push_back(even);
        steps.push_back(step);
    }
    while (bounds.back() < most) {
        const double bound = 2 * bounds.back();
        bounds.push_back(std::min<double>(bound, std::numeric_limits<float>::max())); // the largest float is on its
                                                                                      // band's grid
        steps.push_back(bound / kGridLimit);
    }
    for (size_t i = bounds.size(); i-- > 0;) {
        m_bounds.push_back(-bounds[i]);
        m_steps.push_back(steps[i]);
    }
    m_bounds.push_back(bounds[0]);
    for (size_t i = 1; i < bounds.size(); ++i) {
        m_bounds.push_back(bounds[i]);
        m_steps.push_back(steps[i]);
    }
}

float FloatBands::Round(double v) const noexcept {
    for (int i = 0; i < 2; ++i) { // a value rounded up to a bound is on the next band's grid
        const auto* above = std::upper_bound(m_bounds.begin() + 1, m_bounds.end() - 1, v);
        const double step = m_steps[static_cast<size_t>(above - m_bounds.begin()) - 1];
        v = std::nearbyint(v / step) * step;
    }
    return static_cast<float>(v) + 0.0F; // no negative zero
}

} // namespace Graphics
