// SPDX-License-Identifier: MIT
#include "DrawPage.h"

#include "../PageRenderer.h"
#include "../PngWriter.h"

#include <cerrno>
#include <cstring>

namespace PdfPage {

void DrawPage(const PageJob& job, Descriptor input, std::FILE* output, bool verbose) {
    Report report(verbose);
    FilePointer file(input ? ::fdopen(input.Release(), "rb") : std::fopen(job.file.c_str(), "rb"));
    if (!file)
        throw Failure("cannot open '" + job.file + "': " + std::strerror(errno));
    Document document(std::move(file), job.file, report);
    Picture picture;
    Page(document, job.page, job.dpi).Draw(&picture, nullptr);
    report.EndPage();
    if (!WritePng(output, picture.pixels.data(), picture.width, picture.height, picture.StrideBytes(), job.dpi))
        throw Failure("cannot write '" + job.output + "': " + std::strerror(errno));
}

int CountPages(const std::string& file) {
    Report report(false);
    return Document(file, report).PageCount();
}

} // namespace PdfPage
