// SPDX-License-Identifier: MIT
// Checksums of texts, for names.
#pragma once

#include <cstdint>
#include <string>

namespace PdfPage {

// FNV-1a of 64 bits: exclusive or with each byte, times the prime. Another start gives an independent checksum.
constexpr uint64_t kChecksumStart = 0xCBF29CE484222325ull;
uint64_t Checksum(const std::string& text, uint64_t start = kChecksumStart) noexcept;

// 16 hexadecimal digits.
std::string Hexadecimal(uint64_t value);

} // namespace PdfPage
