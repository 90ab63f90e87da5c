// SPDX-License-Identifier: MIT
// The compiler targets that a device accepts, smallest first. Some blend modes and long keys exceed the smallest
// target's 64 instructions and are compiled again for the next one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace Graphics {

inline constexpr const char* kD3D11VertexShaderTarget = "vs_4_0_level_9_1";
inline constexpr const char* kD3D11PixelShaderTargets[] = {"ps_4_0_level_9_1", "ps_4_0_level_9_3", "ps_4_0"};

/// In the order of trial. Feature levels are the platform's numbers, 0x9100 to 0xb100.
[[nodiscard]] constexpr std::span<const char* const> D3D11PixelShaderTargetsFor(uint32_t featureLevel) noexcept {
    constexpr uint32_t kLevel93 = 0x9300;
    constexpr uint32_t kLevel100 = 0xa000;
    const size_t count = featureLevel >= kLevel100 ? 3 : featureLevel >= kLevel93 ? 2 : 1;
    return {kD3D11PixelShaderTargets, count};
}

} // namespace Graphics
