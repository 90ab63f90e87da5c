// SPDX-License-Identifier: MIT
#include "Lifeline.h"

#include <unistd.h>

#if defined(__linux__)
#include <sys/prctl.h>
#endif

namespace PdfPage {

void EndWithParent([[maybe_unused]] pid_t parent, [[maybe_unused]] int signal) noexcept {
#if defined(__linux__)
    ::prctl(PR_SET_PDEATHSIG, signal);
    if (::getppid() != parent)
        _exit(1);
#endif
}

} // namespace PdfPage
