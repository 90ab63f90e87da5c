// SPDX-License-Identifier: MIT
// One page to draw, complete: what a process draws here, and what travels to a worker on another machine. Drawing a job
// twice gives the same picture in the same place.
#pragma once

#include <cstdint>
#include <string>

namespace PdfPage {

// Of one page; 0 is without limit.
struct Limits {
    double seconds = 0.0;
    uint64_t bytes = 0; // beyond what the program holds when the page begins
};

// The narrower of two.
Limits Narrower(const Limits& a, const Limits& b) noexcept;

struct PageJob {
    std::string file;
    int page = 1;
    float dpi = 150.0f;
    std::string output;
    Limits limits;
    bool adjust = true; // see Page

    // As lines of text, and back; bytes that are no such text, or ask for what this program does not know, throw
    // Failure.
    std::string Packed() const;
    static PageJob Unpacked(const std::string& text);

    // 32 hexadecimal digits that stand for the whole job.
    std::string Key() const;
};

} // namespace PdfPage
