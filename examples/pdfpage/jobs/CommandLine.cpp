// SPDX-License-Identifier: MIT
#include "CommandLine.h"

#include "../PageRenderer.h"
#include "Numbers.h"

#include <algorithm>
#include <thread>

namespace PdfPage {
namespace {

// Plain arguments: file [page] [picture], or files where many pages are asked for.
void Place(CommandLine& line, std::vector<std::string> plain) {
    if (line.threads > 1 && (!line.worker.empty() || line.ManyPages() || line.Measures()))
        throw Failure("--threads draws one page; --jobs draws many pages at a time");
    if (!line.worker.empty()) {
        if (!plain.empty() || line.ManyPages() || line.Measures() || line.resume)
            throw Failure("--worker takes its pages from the job server");
        return;
    }
    if (plain.empty())
        throw Failure("no file given");
    if (line.ManyPages()) {
        if (line.Measures())
            throw Failure("--time, --peer and --record take one page");
        if (!line.pages && plain.size() == 2 && AllDigits(plain[1])) {
            line.pages = PageList::Parse(plain[1]);
            plain.pop_back();
        }
        line.files = std::move(plain);
        return;
    }
    if (line.resume)
        throw Failure("--resume goes with --pages or --out");
    if (!line.record.empty() && line.runs > 0)
        throw Failure("--record takes one page, drawn once");
    if (line.Measures() && (line.limits.seconds > 0 || line.limits.bytes > 0))
        throw Failure("--timeout and --max-memory do not go with --time, --peer and --record");
    line.files = {plain[0]};
    size_t next = 1;
    if (next < plain.size() && AllDigits(plain[next]))
        line.page = static_cast<int>(Number(plain[next++], 0, 1e9, "page number"));
    if (next < plain.size())
        line.picture = plain[next++];
    if (next < plain.size())
        throw Failure("one argument too many: " + plain[next]);
}

} // namespace

CommandLine CommandLine::Parse(const std::vector<std::string>& arguments) {
    CommandLine line;
    line.jobs = std::max(1u, std::thread::hardware_concurrency());
    std::vector<std::string> plain;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const auto value = [&]() -> const std::string& {
            if (i + 1 >= arguments.size())
                throw Failure(argument + " needs a value");
            return arguments[++i];
        };
        if (argument == "--dpi")
            line.dpi = static_cast<float>(Number(value(), kMinDpi, kMaxDpi, kDpiName));
        else if (argument == "--time")
            line.runs = static_cast<int>(Number(value(), 1, 10000, "number of runs"));
        else if (argument == "--peer")
            line.peer = value();
        else if (argument == "--record")
            line.record = value();
        else if (argument == "--out")
            line.folder = value();
        else if (argument == "--pages")
            line.pages = PageList::Parse(value());
        else if (argument == "--jobs")
            line.jobs = static_cast<unsigned>(Number(value(), 1, 10000, "number of jobs from 1 to 10000"));
        else if (argument == "--threads")
            line.threads = static_cast<unsigned>(Number(value(), 1, 1024, "number of threads from 1 to 1024"));
        else if (argument == "--resume")
            line.resume = true;
        else if (argument == "--timeout")
            line.limits.seconds = Number(value(), 0.001, 1e8, "number of seconds");
        else if (argument == "--max-memory")
            line.limits.bytes = Memory(value());
        else if (argument == "--via")
            line.via = value();
        else if (argument == "--worker")
            line.worker = value();
        else if (argument == "--root")
            line.root = value();
        else if (argument == "--no-adjust")
            line.adjust = false;
        else if (argument == "--verbose")
            line.verbose = true;
        else if (argument.rfind("--", 0) == 0)
            throw Failure("unknown option " + argument);
        else
            plain.push_back(argument);
    }
    Place(line, std::move(plain));
    return line;
}

const char* CommandLine::Usage() noexcept {
    return "usage: pdfpage file.pdf [page] [out.png] [--dpi N] [--threads N]\n"
           "       pdfpage file.pdf... --pages LIST --out folder [--jobs N] [--resume]\n"
           "       pdfpage file.pdf... --pages LIST --out folder --via host[:port] [--root folder]\n"
           "       pdfpage --worker host[:port] [--root folder] [--jobs N]\n"
           "pages: --pages LIST    1-500, or 3,7-9, or 5- (to the end); all of them without\n"
           "       --jobs N        so many at a time, each page in a process of its own; one a core without\n"
           "       --resume        skip the pages whose pictures are there\n"
           "       --timeout S     seconds that a page may take\n"
           "       --max-memory M  megabytes that a page may take (also 512K, 2G)\n"
           "       --via, --worker, --root  through a Gearman job server, to workers that share the root folder\n"
           "more:  --threads N     draw one page by N threads, the same bytes\n"
           "       --no-adjust     everything in its true place and size, no image on whole pixels, no hairline of "
           "one\n"
           "       --time N        draw N times, print milliseconds of the library and of MuPDF\n"
           "       --peer x.png    write MuPDF's own rendering too\n"
           "       --record x.gxr  write the library calls of the page, for gxreplay\n"
           "       --verbose       print every diagnostic\n";
}

} // namespace PdfPage
