// SPDX-License-Identifier: MIT
// The description of a shader: fragments in the order of their action, the composition, the blend mode.
#pragma once

#include "D3D11ShaderFragment.h"

namespace Graphics {

class D3D11ShaderKey {
public:
    /// Source, opacity mask, four shape masks and the position: more than a draw ever uses.
    static constexpr size_t kMaxFragments = 9;

    D3D11ShaderKey() noexcept = default;

    /// `f` must not be a composition. False if the key is full.
    bool Add(D3D11Fragment f) noexcept {
        if (m_count == kMaxFragments) {
            return false;
        }
        m_code |= (static_cast<uint64_t>(f) + 1) << (5 * m_count++);
        return true;
    }
    /// The mode is part of the key even for compositions that do not blend: every text contains the blend function of
    /// its draw's mode, so equal texts have equal keys. Modes above 15 blend as Normal.
    void SetComposition(D3D11Fragment composition, uint32_t blendMode) noexcept {
        m_code = (m_code & kFragmentBits) | static_cast<uint64_t>(composition) << 45 |
                 static_cast<uint64_t>(blendMode < 16 ? blendMode : 0) << 50;
    }

    [[nodiscard]] size_t Count() const noexcept { return m_count; }
    [[nodiscard]] D3D11Fragment At(size_t i) const noexcept {
        return static_cast<D3D11Fragment>((m_code >> (5 * i) & 31U) - 1);
    }
    [[nodiscard]] D3D11Fragment Composition() const noexcept { return static_cast<D3D11Fragment>(m_code >> 45 & 31U); }
    [[nodiscard]] uint32_t BlendMode() const noexcept { return static_cast<uint32_t>(m_code >> 50 & 15U); }
    /// Equal for equal keys and different for different ones.
    [[nodiscard]] uint64_t Code() const noexcept { return m_code; }

    [[nodiscard]] friend bool operator==(const D3D11ShaderKey& a, const D3D11ShaderKey& b) noexcept {
        return a.m_code == b.m_code;
    }

private:
    static constexpr uint64_t kFragmentBits = (uint64_t{1} << 45) - 1;

    uint64_t m_code = static_cast<uint64_t>(D3D11Fragment::BasicFastComposition) << 45;
    uint8_t m_count = 0;
};

} // namespace Graphics
