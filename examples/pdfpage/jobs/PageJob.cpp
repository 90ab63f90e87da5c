// SPDX-License-Identifier: MIT
#include "PageJob.h"

#include "../PageRenderer.h"
#include "Checksum.h"
#include "Numbers.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace PdfPage {
namespace {

constexpr const char* kFirstLine = "pdfpage 1";

// A value is one line: the end of a line inside it is written as \n.
std::string Escaped(const std::string& value) {
    std::string line;
    for (const char c : value) {
        if (c == '\\' || c == '\n')
            line += '\\';
        line += c == '\n' ? 'n' : c;
    }
    return line;
}

std::string Plain(const std::string& line) {
    std::string value;
    for (size_t i = 0; i < line.size(); ++i) {
        const bool escape = line[i] == '\\' && i + 1 < line.size();
        if (escape)
            ++i;
        value += escape && line[i] == 'n' ? '\n' : line[i];
    }
    return value;
}

// Digits enough for the same float to come back.
std::string Exact(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

} // namespace

Limits Narrower(const Limits& a, const Limits& b) noexcept {
    const auto narrower = [](auto x, auto y) { return x > 0 && (y <= 0 || x < y) ? x : y; };
    return {narrower(a.seconds, b.seconds), narrower(a.bytes, b.bytes)};
}

std::string PageJob::Packed() const {
    std::string text = std::string(kFirstLine) + "\nfile " + Escaped(file) + "\npage " + std::to_string(page) +
                       "\ndpi " + Exact(dpi) + "\noutput " + Escaped(output) + "\n";
    if (limits.seconds > 0)
        text += "seconds " + Exact(limits.seconds) + "\n";
    if (limits.bytes > 0)
        text += "bytes " + std::to_string(limits.bytes) + "\n";
    if (!adjust)
        text += "adjust 0\n";
    return text;
}

PageJob PageJob::Unpacked(const std::string& text) {
    std::istringstream lines(text);
    std::string line;
    if (text.find('\0') != std::string::npos || !std::getline(lines, line) || line != kFirstLine)
        throw Failure("this is no page to draw");
    PageJob job;
    while (std::getline(lines, line)) {
        const size_t space = line.find(' ');
        const std::string name = line.substr(0, space);
        const std::string value = space == std::string::npos ? "" : Plain(line.substr(space + 1));
        if (name == "file")
            job.file = value;
        else if (name == "page")
            job.page = static_cast<int>(Number(value, 1, 1e9, "page number"));
        else if (name == "dpi")
            job.dpi = static_cast<float>(Number(value, kMinDpi, kMaxDpi, kDpiName));
        else if (name == "output")
            job.output = value;
        else if (name == "seconds")
            job.limits.seconds = Number(value, 0, 1e9, "time limit");
        else if (name == "bytes")
            job.limits.bytes = static_cast<uint64_t>(Number(value, 0, 1e18, "memory limit"));
        else if (name == "adjust")
            job.adjust = Number(value, 0, 1, "adjustment") != 0;
        else
            throw Failure("this version does not know '" + name + "', which the page asks for");
    }
    if (job.file.empty() || job.output.empty())
        throw Failure("this page has no file or no place to go");
    return job;
}

std::string PageJob::Key() const {
    const std::string text = Packed();
    return Hexadecimal(Checksum(text)) + Hexadecimal(Checksum(text, 0x9AE16A3B2F90404Full));
}

} // namespace PdfPage
