// SPDX-License-Identifier: MIT
// One page, many pages, or pages for other machines.
#include "PageRenderer.h"
#include "jobs/CommandLine.h"
#include "jobs/LocalRun.h"
#include "jobs/Measure.h"
#include "queue/Queue.h"

#include <cstdio>
#include <exception>

namespace PdfPage {
namespace {

int Run(const CommandLine& line) {
    if (!line.worker.empty())
        return ServePages(line);
    if (!line.via.empty())
        return SendPages(line);
    if (line.ManyPages())
        return DrawManyPages(line);
    if (line.Measures())
        return MeasurePage(line);
    return DrawOnePage(line);
}

} // namespace
} // namespace PdfPage

int main(int argc, char** argv) {
    using namespace PdfPage;
    const std::vector<std::string> arguments(argv + (argc > 0), argv + argc);
    if (arguments.empty() || arguments[0] == "--help") {
        std::fputs(CommandLine::Usage(), arguments.empty() ? stderr : stdout);
        return arguments.empty() ? 2 : 0;
    }
    try {
        return Run(CommandLine::Parse(arguments));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "pdfpage: %s\n", failure.what());
        return 1;
    }
}
