// SPDX-License-Identifier: MIT
// A process that does not outlive its parent.
#pragma once

#include <sys/types.h>

namespace PdfPage {

// In the child, right after the fork: it gets the signal when the parent ends, however that happens, and ends at once
// when it has ended already. Only Linux can do that; elsewhere a child whose parent is killed ends its page first.
void EndWithParent(pid_t parent, int signal) noexcept;

} // namespace PdfPage
