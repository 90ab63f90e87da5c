// SPDX-License-Identifier: MIT
#include "Checksum.h"

#include <cstdio>

namespace PdfPage {

uint64_t Checksum(const std::string& text, uint64_t start) noexcept {
    uint64_t hash = start;
    for (const char c : text)
        hash = (hash ^ static_cast<uint8_t>(c)) * 0x100000001B3ull;
    return hash;
}

std::string Hexadecimal(uint64_t value) {
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(value));
    return digits;
}

} // namespace PdfPage
