// SPDX-License-Identifier: MIT
// What the process of a page does.
#pragma once

#include "Descriptor.h"
#include "PageJob.h"

#include <cstdio>
#include <string>

namespace PdfPage {

// Draws the page and writes it as PNG to `output`, which stays open. Reads `input`, or the file of the job when there
// is none. With more than one thread the page is recorded in memory and drawn by all of them, the same bytes; a page
// that cannot be recorded is drawn by one. Throws Failure.
void DrawPage(const PageJob& job, Descriptor input, std::FILE* output, bool verbose, unsigned threads = 1);

// Pages of a file. Throws Failure.
int CountPages(const std::string& file);

} // namespace PdfPage
