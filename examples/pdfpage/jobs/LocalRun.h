// SPDX-License-Identifier: MIT
// Pages drawn on this machine, a process for each.
#pragma once

#include "CommandLine.h"

namespace PdfPage {

// Each gives the exit code, after saying in one line what failed. Throws Failure where nothing can begin.
int DrawOnePage(const CommandLine& line);
int DrawManyPages(const CommandLine& line);

// The end of a run of many pages, local or not: the last line of progress, what failed, and the exit code.
class Progress;
class Failures;
struct Tally;
int EndRun(Progress& progress, const Tally& tally, const Failures& failures, size_t files);

// What a page's process wrote to stderr, each line with the page in front.
void PrintSaid(const std::string& said, const std::string& file, int page);

} // namespace PdfPage
