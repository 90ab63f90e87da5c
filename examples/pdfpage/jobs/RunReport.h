// SPDX-License-Identifier: MIT
// What a run of pages tells its user, wherever the pages are drawn.
#pragma once

#include "Failures.h"
#include "Progress.h"

namespace PdfPage {

// The last line of progress, what failed, and whether the run was stopped. Gives the exit code.
int EndRun(Progress& progress, const Tally& tally, const Failures& failures, size_t files);

// What a page's process wrote to stderr, each line with the page in front.
void PrintSaid(const std::string& said, const std::string& file, int page);

} // namespace PdfPage
