// SPDX-License-Identifier: MIT
// In the place of the job server in a build without libgearman.
#include "../PageRenderer.h"
#include "Queue.h"

namespace PdfPage {
namespace {

[[noreturn]] int Refuse(const char* option) {
    throw Failure(std::string(option) + " is not in this build: libgearman was not found (Debian: libgearman-dev)");
}

} // namespace

int SendPages(const CommandLine&) { Refuse("--via"); }
int ServePages(const CommandLine&) { Refuse("--worker"); }

} // namespace PdfPage
