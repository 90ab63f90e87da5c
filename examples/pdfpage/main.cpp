// SPDX-License-Identifier: MIT
// The command line: which file, which pages, where the pictures go.
#include "PageRenderer.h"
#include "PngWriter.h"
#include "Report.h"

#include "../../tools/gxr/Container.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace PdfPage {
namespace {

constexpr const char* kUsage = "usage: pdfpage file.pdf [page] [out.png] [--dpi N]\n"
                               "       pdfpage file.pdf --pages FIRST-LAST --out folder [--dpi N]\n"
                               "more:  --time N      draw N times, print milliseconds of the library and of MuPDF\n"
                               "       --peer x.png  write MuPDF's own rendering too\n"
                               "       --record x.gxr  write the library calls of the page, for gxreplay\n"
                               "       --verbose     print every diagnostic\n";

struct Options {
    std::string file, picture, folder, peer, record;
    int page = 1;
    int first = 0, last = 0; // of --pages
    float dpi = 150.0f;
    int runs = 0;
    bool verbose = false;
};

// The whole text as a number from `low` to `high`.
double Number(const std::string& text, double low, double high, const char* what) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !(value >= low && value <= high))
        throw Failure(std::string("'") + text + "' is no " + what);
    return value;
}

int PageNumber(const std::string& text) { return static_cast<int>(Number(text, 0, 1e9, "page number")); }

bool AllDigits(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

Options Parse(int argc, char** argv) {
    Options options;
    std::vector<std::string> plain;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const auto value = [&]() -> std::string {
            if (++i >= argc)
                throw Failure(argument + " needs a value");
            return argv[i];
        };
        if (argument == "--dpi")
            options.dpi = static_cast<float>(Number(value(), 1, 10000, "resolution from 1 to 10000"));
        else if (argument == "--time")
            options.runs = static_cast<int>(Number(value(), 1, 10000, "number of runs"));
        else if (argument == "--peer")
            options.peer = value();
        else if (argument == "--record")
            options.record = value();
        else if (argument == "--out")
            options.folder = value();
        else if (argument == "--verbose")
            options.verbose = true;
        else if (argument == "--pages") {
            const std::string range = value();
            const size_t dash = range.find('-');
            options.first = PageNumber(range.substr(0, dash));
            options.last = dash == std::string::npos ? options.first : PageNumber(range.substr(dash + 1));
            if (options.first < 1 || options.last < options.first)
                throw Failure("'" + range + "' is no range of pages");
        } else if (argument.rfind("--", 0) == 0)
            throw Failure("unknown option " + argument);
        else
            plain.push_back(argument);
    }
    if (plain.empty())
        throw Failure("no file given");
    if (!options.record.empty() && (options.runs > 0 || options.first > 0))
        throw Failure("--record takes one page, drawn once");
    options.file = plain[0];
    size_t next = 1;
    if (next < plain.size() && AllDigits(plain[next]))
        options.page = PageNumber(plain[next++]);
    if (next < plain.size())
        options.picture = plain[next++];
    if (next < plain.size())
        throw Failure("one argument too many: " + plain[next]);
    return options;
}

std::string DefaultName(const Options& options, int page) {
    return std::filesystem::path(options.file).stem().string() + "-" + std::to_string(page) + ".png";
}

void Write(const std::string& path, const Picture& picture, float dpi) {
    if (!WritePng(path, picture.pixels.data(), picture.width, picture.height, picture.StrideBytes(), dpi))
        throw Failure("cannot write '" + path + "'");
}

void PrintTimes(const char* name, std::vector<double> runs) {
    const double first = runs.front();
    if (runs.size() > 1)
        runs.erase(runs.begin());
    std::sort(runs.begin(), runs.end());
    const size_t n = runs.size();
    const double median = n % 2 ? runs[n / 2] : (runs[n / 2 - 1] + runs[n / 2]) / 2;
    std::printf("%-8s first %9.2f ms   min %9.2f ms   median %9.2f ms\n", name, first, runs.front(), median);
}

void DrawOne(const Options& options, Report& report, Document& document, const Gxr::Recorder* recorder) {
    Page page(document, options.page, options.dpi);
    Picture picture;
    if (options.runs > 0) {
        // One run more than asked for: the first decodes images and loads glyphs, for both.
        std::vector<double> ours(static_cast<size_t>(options.runs) + 1), peers(ours.size());
        for (double& time : ours)
            page.Draw(&picture, &time);
        for (double& time : peers)
            page.DrawWithPeer(nullptr, &time);
        PrintTimes("library", ours);
        PrintTimes("MuPDF", peers);
    } else {
        page.Draw(&picture, nullptr);
    }
    if (recorder)
        Gxr::WriteFile(options.record, recorder->File());
    if ((options.runs == 0 && !recorder) || !options.picture.empty())
        Write(options.picture.empty() ? DefaultName(options, options.page) : options.picture, picture, options.dpi);
    if (!options.peer.empty()) {
        page.DrawWithPeer(&picture, nullptr);
        Write(options.peer, picture, options.dpi);
    }
    report.EndPage();
}

void ShowProgress(int done, int all) {
#if defined(_WIN32)
    const bool terminal = _isatty(_fileno(stderr)) != 0;
#else
    const bool terminal = isatty(STDERR_FILENO) != 0;
#endif
    constexpr int kWidth = 40;
    const int filled = all > 0 ? static_cast<int>(static_cast<long long>(kWidth) * done / all) : kWidth;
    if (terminal) {
        std::fprintf(stderr, "\r[%s%s] %d/%d%s", std::string(static_cast<size_t>(filled), '#').c_str(),
                     std::string(static_cast<size_t>(kWidth - filled), '.').c_str(), done, all,
                     done == all ? "\n" : "");
        std::fflush(stderr);
    } else if (done == all) {
        std::fprintf(stderr, "pdfpage: %d of %d pages done\n", done, all);
    }
}

void DrawRange(const Options& options, Report& report, Document& document) {
    const std::filesystem::path folder = options.folder.empty() ? "." : options.folder;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw Failure("cannot make the folder '" + folder.string() + "': " + error.message());
    if (options.last > document.PageCount())
        throw Failure("page " + std::to_string(options.last) + " does not exist, the file has " +
                      std::to_string(document.PageCount()) + (document.PageCount() == 1 ? " page" : " pages"));
    const int all = options.last - options.first + 1;
    for (int number = options.first; number <= options.last; ++number) {
        ShowProgress(number - options.first, all);
        Page page(document, number, options.dpi);
        Picture picture;
        page.Draw(&picture, nullptr);
        Write((folder / DefaultName(options, number)).string(), picture, options.dpi);
        report.EndPage();
    }
    ShowProgress(all, all);
}

int Run(int argc, char** argv) {
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0) {
        std::fputs(kUsage, argc < 2 ? stderr : stdout);
        return argc < 2 ? 2 : 0;
    }
    try {
        const Options options = Parse(argc, argv);
        Report report(options.verbose);
        Gxr::Recorder recorder;
        Gxr::Recorder* const recording = options.record.empty() ? nullptr : &recorder;
        Document document(options.file, report, recording);
        if (options.first > 0)
            DrawRange(options, report, document);
        else
            DrawOne(options, report, document, recording);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "pdfpage: %s\n", failure.what());
        return 1;
    }
}

} // namespace
} // namespace PdfPage

int main(int argc, char** argv) { return PdfPage::Run(argc, argv); }
