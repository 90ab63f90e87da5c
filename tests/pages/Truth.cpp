// SPDX-License-Identifier: MIT
#include "Truth.h"

#include "../../examples/pdfpage/PageRenderer.h"
#include "../../examples/pdfpage/PngWriter.h"

#include <cmath>

namespace {

double Distance(const PdfPage::Picture& picture, const PdfPage::Means& truth) {
    double sum = 0.0;
    for (size_t i = 0; i < truth.values.size(); ++i)
        sum += std::fabs(static_cast<double>(picture.pixels[i / 3 * 4 + i % 3]) - static_cast<double>(truth.values[i]));
    return sum / static_cast<double>(truth.values.size());
}

void Save(const PdfPage::Picture& picture, const std::string& path, float dpi) {
    if (!PdfPage::WritePng(path, picture.pixels.data(), picture.width, picture.height, picture.StrideBytes(), dpi))
        throw PdfPage::Failure("cannot write '" + path + "'");
}

PdfPage::Picture Rounded(const PdfPage::Means& truth) {
    PdfPage::Picture picture{truth.width, truth.height, {}};
    picture.pixels.resize(picture.StrideBytes() * picture.height, 255);
    for (size_t i = 0; i < truth.values.size(); ++i)
        picture.pixels[i / 3 * 4 + i % 3] = static_cast<uint8_t>(std::lround(truth.values[i]));
    return picture;
}

} // namespace

TruthDistance MeasureTruth(const std::string& file, int page, float dpi, unsigned factor, const std::string& stem) {
    PdfPage::Report report(false);
    PdfPage::Document document(file, report);
    PdfPage::Page drawn(document, page, dpi, false);
    const PdfPage::Means truth = drawn.DrawTruth(factor);
    PdfPage::Picture picture;
    TruthDistance distance;
    drawn.Draw(&picture, nullptr);
    distance.ours = Distance(picture, truth);
    if (!stem.empty()) {
        Save(picture, stem + "-library.png", dpi);
        Save(Rounded(truth), stem + "-truth.png", dpi);
    }
    drawn.DrawWithPeer(&picture, nullptr);
    distance.theirs = Distance(picture, truth);
    if (!stem.empty())
        Save(picture, stem + "-second.png", dpi);
    report.EndPage();
    return distance;
}
