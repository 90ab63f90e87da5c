// SPDX-License-Identifier: MIT
#include "Measure.h"

#include "../PageRenderer.h"
#include "../PngWriter.h"
#include "PageNames.h"

#include "../../../tools/gxr/Container.h"

#include <algorithm>
#include <cstdio>

namespace PdfPage {
namespace {

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

} // namespace

int MeasurePage(const CommandLine& line) {
    Report report(line.verbose);
    Gxr::Recorder recorder;
    const bool record = !line.record.empty();
    Document document(line.files[0], report, record ? &recorder : nullptr);
    Page page(document, line.page, line.dpi, line.adjust);
    Picture picture;
    if (line.runs > 0) {
        // One run more than asked for: the first decodes images and loads glyphs, for both.
        std::vector<double> ours(static_cast<size_t>(line.runs) + 1), peers(ours.size());
        for (double& time : ours)
            page.Draw(&picture, &time);
        for (double& time : peers)
            page.DrawWithPeer(nullptr, &time);
        PrintTimes("library", ours);
        PrintTimes("MuPDF", peers);
    } else {
        page.Draw(&picture, nullptr);
    }
    if (record)
        Gxr::WriteFile(line.record, recorder.File());
    if ((line.runs == 0 && !record) || !line.picture.empty())
        Write(line.picture.empty() ? PageNames(line.files).Of(0, line.page) : line.picture, picture, line.dpi);
    if (!line.peer.empty()) {
        page.DrawWithPeer(&picture, nullptr);
        Write(line.peer, picture, line.dpi);
    }
    report.EndPage();
    return 0;
}

} // namespace PdfPage
