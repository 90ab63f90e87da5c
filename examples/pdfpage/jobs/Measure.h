// SPDX-License-Identifier: MIT
// One page in this process: timed, beside MuPDF's own rendering, or recorded.
#pragma once

#include "CommandLine.h"

namespace PdfPage {

// The exit code. Throws Failure.
int MeasurePage(const CommandLine& line);

} // namespace PdfPage
