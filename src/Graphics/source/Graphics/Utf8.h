// SPDX-License-Identifier: MIT
// Conversion between UTF-16 or 32-bit code points and UTF-8.
#pragma once

#include <cstdint>

namespace Graphics {

/// True for surrogates, which are not characters.
[[nodiscard]] inline bool IsSurrogate(uint32_t c) noexcept { return c >> 11 == 0x1B; }

/// Reads one code point of null-terminated text in units of 16 or 32 bits; a lone surrogate is returned unchanged.
template <class Unit> [[nodiscard]] uint32_t NextCodePoint(const Unit*& text) noexcept {
    auto c = static_cast<uint32_t>(*text++);
    if constexpr (sizeof(Unit) == 2) {
        c &= 0xFFFFU;
        const uint32_t low = static_cast<uint32_t>(*text) & 0xFFFFU;
        if (c >> 10 == 0x36 && low >> 10 == 0x37) {
            c = 0x10000 + ((c & 0x3FFU) << 10 | (low & 0x3FFU));
            ++text;
        }
    }
    return c;
}

/// `c` must be at most 0x10FFFF.
template <class String> void AppendUtf8(String& text, uint32_t c) {
    const auto add = [&](uint32_t byte) { text.push_back(static_cast<typename String::value_type>(byte)); };
    // The first byte's upper bits give the number of following bytes, which hold six bits each.
    constexpr uint32_t kLead[4] = {0, 0xC0, 0xE0, 0xF0};
    const uint32_t following = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    add(kLead[following] | c >> 6 * following);
    for (uint32_t k = following; k-- > 0;) {
        add(0x80U | (c >> 6 * k & 0x3FU));
    }
}

} // namespace Graphics
