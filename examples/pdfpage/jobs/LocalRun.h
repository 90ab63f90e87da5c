// SPDX-License-Identifier: MIT
// Pages drawn on this machine, a process for each.
#pragma once

#include "CommandLine.h"

namespace PdfPage {

// Each gives the exit code, after saying in one line what failed. Throws Failure where nothing can begin.
int DrawOnePage(const CommandLine& line);
int DrawManyPages(const CommandLine& line);

} // namespace PdfPage
