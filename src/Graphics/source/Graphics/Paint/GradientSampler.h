// SPDX-License-Identifier: MIT
// The colour of a gradient's stops at a parameter. Colours are straight ARGB.
#pragma once

#include "GradientStopCollection.h"

namespace Graphics {

/// The interval lower < t <= upper between two neighbouring stops. Its colours follow one formula,
///     w = (truncate((upper - t) / (upper - lower) * 255) & 255) + 1
///     c = (lowerColor * w >> 8) + (upperColor * (257 - w) >> 8)   for each channel,
/// which at t = upper gives w = 1 and so `upperColor` itself. Before the first stop both colours are the first stop's
/// and `lower` is minus infinity (w = 1); behind the last stop both are 0 and `upper` is infinity. With a NaN `upper`
/// the interval has no end.
struct GradientInterval {
    float lower;
    float upper;
    uint32_t lowerColor;
    uint32_t upperColor;

    [[nodiscard]] bool Contains(float t) const noexcept { return t > lower && !(t > upper); }
};

class GradientSampler {
public:
    /// The stops must outlive the sampler.
    explicit GradientSampler(const GradientStopCollection& stops) noexcept : m_stops(&stops) {}

    /// The reference lookup: one search per call. Gives 0 above the last offset and without stops, the first stop's
    /// colour below the first offset, and at an offset exactly the colour of the stop that was added first with it.
    [[nodiscard]] uint32_t ColorAt(float t) const noexcept;

    /// The interval that contains t; one search serves every t in it, with the same colours as ColorAt.
    [[nodiscard]] GradientInterval IntervalAt(float t) const noexcept;

    /// True if every t in [0, 1] has alpha 255.
    [[nodiscard]] bool IsOpaque() const noexcept;

private:
    [[nodiscard]] const GradientStop* FirstNotBelow(float t) const noexcept;

    const GradientStopCollection* m_stops;
};

} // namespace Graphics
