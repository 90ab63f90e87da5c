// SPDX-License-Identifier: MIT
// Whole pages: recordings of the repository drawn by this library, beside MuPDF's draw device on the display list of
// the same page at the same size. Objects, fonts and decoded images are there before the clock starts, on both sides.
#include "PageRenderer.h"
#include "Recording.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace {

using Gxr::Handle;

struct Figures {
    double ours = 0, mupdf = 0; ///< median milliseconds
};

double Median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

double Milliseconds(const std::chrono::steady_clock::time_point& start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// `name` is that of a page of the corpus and its number: map_globe-1.
Figures Measure(const std::string& folder, const std::string& name, int runs) {
    const Gxr::Recording recording = Gxr::Recording::FromFile(folder + "/recordings/" + name + ".gxr");
    const Handle<GXBitmap> bitmap = Gxr::NewPageBitmap(recording.Page());
    Handle<GXRenderTarget> target;
    if (GXCreateRenderTargetBitmap(bitmap.Get(), target.Out()) != GXResultSuccess) {
        throw Gxr::Error("no target for " + name);
    }
    Gxr::Player player(recording);

    const size_t dash = name.rfind('-');
    PdfPage::Report report(false);
    PdfPage::Document document(folder + "/corpus/" + name.substr(0, dash) + ".pdf", report);
    PdfPage::Page page(document, std::atoi(name.c_str() + dash + 1), recording.Page().dpiX);

    const auto draw = [&] {
        // As DrawWithPeer: the page's memory has just been written once when the clock starts.
        GXRenderTargetBeginPaint(target.Get());
        GXRenderTargetClear(target.Get(), 0);
        GXRenderTargetEndPaint(target.Get());
        const auto start = std::chrono::steady_clock::now();
        player.Play(target.Get());
        return Milliseconds(start);
    };
    const auto drawWithPeer = [&] {
        double time = 0;
        page.DrawWithPeer(nullptr, &time, true);
        return time;
    };
    draw();
    drawWithPeer();
    // In turns, so that a disturbance of the machine does not hit one of them alone.
    std::vector<double> ours, mupdf;
    for (int i = 0; i < runs; ++i) {
        ours.push_back(draw());
        mupdf.push_back(drawWithPeer());
    }
    return {Median(ours), Median(mupdf)};
}

} // namespace

int main(int argc, char** argv) {
    const std::string folder = GX_PAGES;
    std::string filter;
    int runs = 15;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--filter") == 0) {
            filter = argv[i + 1];
        } else if (std::strcmp(argv[i], "--runs") == 0) {
            runs = std::max(1, std::atoi(argv[i + 1]));
        } else {
            argc = 0;
        }
    }
    if (argc % 2 == 0) {
        std::fprintf(stderr, "usage: gxbench_pages [--filter part] [--runs n]\n");
        return 2;
    }
    std::ifstream list(folder + "/recordings/CHECKSUMS");
    std::printf("median of %d runs; one thread; ms\n%-28s %9s %9s %9s\n", runs, "page", "ms", "MuPDF ms", "x MuPDF");
    double logarithms = 0;
    int count = 0;
    for (std::string sum, file; list >> sum >> file;) {
        const std::string name = file.substr(0, file.rfind('.'));
        if (name.find(filter) == std::string::npos) {
            continue;
        }
        try {
            const Figures figures = Measure(folder, name, runs);
            std::printf("%-28s %9.2f %9.2f %9.2f\n", ("pages/" + name).c_str(), figures.ours, figures.mupdf,
                        figures.mupdf / figures.ours);
            std::fflush(stdout);
            logarithms += std::log(figures.mupdf / figures.ours);
            ++count;
        } catch (const std::exception& failure) {
            std::fprintf(stderr, "%s: %s\n", name.c_str(), failure.what());
        }
    }
    if (count > 0) {
        std::printf("%-28s %9s %9s %9.2f\n", "geometric mean", "", "", std::exp(logarithms / count));
    }
    return 0;
}
