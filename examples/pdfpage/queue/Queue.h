// SPDX-License-Identifier: MIT
// Pages for other machines, through a Gearman job server. In a build without libgearman both throw Failure, which says
// so.
#pragma once

#include "../jobs/CommandLine.h"

namespace PdfPage {

// Hands the pages of the command line to the job server and follows them to their end. Gives the exit code.
int SendPages(const CommandLine& line);

// Draws what the job server hands out, until it is told to stop. Gives the exit code.
int ServePages(const CommandLine& line);

} // namespace PdfPage
