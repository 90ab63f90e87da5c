// SPDX-License-Identifier: MIT
// How an opacity acts on 8-bit channels.
#pragma once

#include "../Types.h"

namespace Graphics {

/// (truncate(opacity * 255) & 255) + 1: what an opacity scales 8-bit channels by, over 256.
[[nodiscard]] inline uint32_t OpacityFactor(float opacity) noexcept {
    return (static_cast<uint32_t>(SaturatingTruncate(opacity * 255.0F)) & 255U) + 1;
}

} // namespace Graphics
