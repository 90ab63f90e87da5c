// SPDX-License-Identifier: MIT
#include "Numbers.h"

#include "../PageRenderer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace PdfPage {

double Number(const std::string& text, double low, double high, const char* what) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !(value >= low && value <= high))
        throw Failure(std::string("'") + text + "' is no " + what);
    return value;
}

bool AllDigits(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

uint64_t Memory(const std::string& text) {
    constexpr const char* kUnits = "KMG";
    uint64_t unit = 1u << 20;
    std::string digits = text;
    for (unsigned i = 0; kUnits[i] && !text.empty(); ++i)
        if ((text.back() & ~0x20) == kUnits[i]) {
            unit = uint64_t{1} << (10 * (i + 1));
            digits.pop_back();
        }
    // From a megabyte, below which no page begins, to a terabyte.
    return static_cast<uint64_t>(Number(digits, 1048576.0 / static_cast<double>(unit),
                                        1099511627776.0 / static_cast<double>(unit),
                                        "amount of memory from 1M to 1024G") *
                                 static_cast<double>(unit));
}

std::string MemoryText(uint64_t bytes) {
    return bytes >= (1u << 20) ? std::to_string(bytes >> 20) + " MB" : std::to_string(bytes >> 10) + " KB";
}

std::string SecondsText(double seconds) {
    char text[40];
    std::snprintf(text, sizeof text, "%g s", seconds);
    return text;
}

} // namespace PdfPage
