// SPDX-License-Identifier: MIT
// Numbers as the user writes them.
#pragma once

#include <cstdint>
#include <string>

namespace PdfPage {

constexpr double kMinDpi = 1, kMaxDpi = 10000;
constexpr const char* kDpiName = "resolution from 1 to 10000";

// The whole text as a number from `low` to `high`; throws Failure: "'x' is no <what>".
double Number(const std::string& text, double low, double high, const char* what);

bool AllDigits(const std::string& text);

// "512M", "2G", "800K"; a plain number is megabytes (of 2^20 bytes). Throws Failure.
uint64_t Memory(const std::string& text);
// The reverse, in whole megabytes, or kilobytes where it is less than one.
std::string MemoryText(uint64_t bytes);
// "10 s", "0.5 s".
std::string SecondsText(double seconds);

} // namespace PdfPage
