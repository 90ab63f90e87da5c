// SPDX-License-Identifier: MIT
// The colour of a gradient's stops at a parameter. Colours are straight ARGB.
#pragma once

#include "GradientStopCollection.h"

namespace Graphics {

/// The stretch lower < t <= upper between two neighbouring stops. Inside it the colour is one formula,
///     w = (truncate((upper - t) / (upper - lower) * 255) & 255) + 1
///     c = (lowerColor * w >> 8) + (upperColor * (257 - w) >> 8)   for each channel,
/// which at t = upper gives w = 1 and so `upperColor` itself. Before the first stop both colours are the first one's
/// and `lower` is minus infinity (w = 1); behind the last one both are 0 and `upper` is infinity. A NaN `upper` ends
/// nowhere.
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

    /// The plain lookup: a search for each call. 0 above the last offset and where there are no stops; the first stop's
    /// colour below the first offset; the colour of the stop that was added first where offsets are met exactly.
    [[nodiscard]] uint32_t ColorAt(float t) const noexcept;

    /// The interval that holds t; one search serves every t that it contains, with the same colours as ColorAt.
    [[nodiscard]] GradientInterval IntervalAt(float t) const noexcept;

    /// True when every t in [0, 1] has alpha 255.
    [[nodiscard]] bool IsOpaque() const noexcept;

private:
    [[nodiscard]] const GradientStop* FirstNotBelow(float t) const noexcept;

    const GradientStopCollection* m_stops;
};

} // namespace Graphics
