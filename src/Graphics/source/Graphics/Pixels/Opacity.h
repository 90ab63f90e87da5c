// SPDX-License-Identifier: MIT
// The scaling of 8-bit channels by an opacity.
#pragma once

#include "../Types.h"

namespace Graphics {

/// (truncate(opacity * 255) & 255) + 1: the factor, over 256, by which an opacity scales 8-bit channels.
[[nodiscard]] inline uint32_t OpacityFactor(float opacity) noexcept {
    return (static_cast<uint32_t>(SaturatingTruncate(opacity * 255.0F)) & 255U) + 1;
}

} // namespace Graphics
