// SPDX-License-Identifier: MIT
#include "DrawPage.h"

#include "../PageRenderer.h"
#include "../PngWriter.h"

#include <cerrno>
#include <cstring>

namespace PdfPage {

namespace {

FilePointer Open(const PageJob& job, Descriptor input) {
    FilePointer file(input ? ::fdopen(input.Release(), "rb") : std::fopen(job.file.c_str(), "rb"));
    if (!file)
        throw Failure("cannot open '" + job.file + "': " + std::strerror(errno));
    return file;
}

// False when the page cannot be recorded.
bool DrawInBands(const PageJob& job, Picture& picture, Report& report, unsigned threads) {
    Gxr::Recorder recorder;
    Document document(Open(job, Descriptor()), job.file, report, &recorder, Gxr::Calls::Drawing::Later);
    Page page(document, job.page, job.dpi, job.adjust);
    try {
        page.DrawInBands(&picture, recorder, threads);
        return true;
    } catch (const Gxr::Error& error) {
        report.Notice((std::string("drawn by one thread: ") + error.what()).c_str());
        return false;
    }
}

} // namespace

void DrawPage(const PageJob& job, Descriptor input, std::FILE* output, bool verbose, unsigned threads) {
    Report report(verbose);
    Picture picture;
    if (input || threads < 2 || !DrawInBands(job, picture, report, threads)) {
        Document document(Open(job, std::move(input)), job.file, report);
        Page(document, job.page, job.dpi, job.adjust).Draw(&picture, nullptr);
    }
    report.EndPage();
    if (!WritePng(output, picture.pixels.data(), picture.width, picture.height, picture.StrideBytes(), job.dpi))
        throw Failure("cannot write '" + job.output + "': " + std::strerror(errno));
}

int CountPages(const std::string& file) {
    Report report(false);
    return Document(file, report).PageCount();
}

} // namespace PdfPage
