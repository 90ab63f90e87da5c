// SPDX-License-Identifier: MIT
// page_truth [--dpi N] [--factor N] [--out folder] file.pdf[:page[-page]]...
// Prints for each page the distance from the truth (Truth.h) of the library's and of the second renderer's own page, as
// rows of a table. All pages of a file without a page. With a folder the pictures are written there. Exit code 1 when a page is further away than it may be.
#include "Truth.h"

#include "../../examples/pdfpage/PageRenderer.h"
#include "../../examples/pdfpage/jobs/DrawPage.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

struct Pages {
    std::string file;
    int first = 1, last = 0; // 0 is the last of the file
};

Pages Parse(const std::string& argument) {
    const size_t colon = argument.rfind(':');
    if (colon == std::string::npos || argument.find_first_not_of("0123456789-", colon + 1) != std::string::npos)
        return {argument, 1, 0};
    const std::string range = argument.substr(colon + 1);
    const size_t dash = range.find('-');
    const int first = std::atoi(range.c_str());
    return {argument.substr(0, colon), first, dash == std::string::npos ? first : std::atoi(range.c_str() + dash + 1)};
}

} // namespace

int main(int argc, char** argv) {
    double dpi = 150.0;
    unsigned factor = kTruthFactor;
    std::string folder;
    std::vector<Pages> wanted;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const bool hasValue = i + 1 < argc;
        if (argument == "--dpi" && hasValue)
            dpi = std::atof(argv[++i]);
        else if (argument == "--factor" && hasValue)
            factor = static_cast<unsigned>(std::atoi(argv[++i]));
        else if (argument == "--out" && hasValue)
            folder = argv[++i];
        else
            wanted.push_back(Parse(argument));
    }
    if (wanted.empty() || !(dpi > 0) || factor < 1) {
        std::fputs("usage: page_truth [--dpi N] [--factor N] [--out folder] file.pdf[:page[-page]]...\n", stderr);
        return 2;
    }
    std::puts("| page | library | second renderer | difference |\n|---|---|---|---|");
    bool far = false;
    for (const Pages& pages : wanted)
        try {
            const int last = pages.last > 0 ? pages.last : PdfPage::CountPages(pages.file);
            for (int page = pages.first; page <= last; ++page) {
                const std::string name = std::filesystem::path(pages.file).stem().string();
                const std::string stem = folder.empty() ? "" : folder + "/" + name + "-" + std::to_string(page);
                const TruthDistance distance = MeasureTruth(pages.file, page, static_cast<float>(dpi), factor, stem);
                const double further = distance.ours - distance.theirs;
                far |= further > kFurther;
                std::printf("| %s %d | %.2f | %.2f | %+.2f%s |\n", name.c_str(), page, distance.ours, distance.theirs,
                            further, further > kFurther ? " !" : "");
                std::fflush(stdout);
            }
        } catch (const std::exception& failure) {
            std::fprintf(stderr, "page_truth: %s\n", failure.what());
            far = true;
        }
    return far ? 1 : 0;
}
