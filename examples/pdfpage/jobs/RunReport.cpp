// SPDX-License-Identifier: MIT
#include "RunReport.h"

#include "StopSignals.h"

#include <cstdio>
#include <cstring>
#include <sstream>

namespace PdfPage {

int EndRun(Progress& progress, const Tally& tally, const Failures& failures, size_t files) {
    if (tally.all > 0)
        progress.End(tally);
    if (failures.Any())
        std::fprintf(stderr, "pdfpage: %s\n", failures.Line(tally.all, files).c_str());
    if (StopSignals::Asked()) {
        std::fprintf(stderr, "pdfpage: stopped, %zu pages are left\n", tally.Left());
        return 130;
    }
    return failures.Any() ? 1 : 0;
}

void PrintSaid(const std::string& said, const std::string& file, int page) {
    std::istringstream lines(said);
    for (std::string line; std::getline(lines, line);) {
        constexpr const char* kOwnName = "pdfpage: ";
        if (line.rfind(kOwnName, 0) == 0)
            line.erase(0, std::strlen(kOwnName));
        std::fprintf(stderr, "pdfpage: %s page %d: %s\n", file.c_str(), page, line.c_str());
    }
}

} // namespace PdfPage
