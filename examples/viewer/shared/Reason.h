// SPDX-License-Identifier: MIT
// The reasons that the library gives for a failure.
#pragma once

#include <string>

namespace Viewer {

// Keeps what the library has to say about the calls that fail, on any thread.
void ListenToLibrary();
// `what` and, where there is one, the last reason from the library, which is then forgotten.
std::string WithReason(const std::string& what);

} // namespace Viewer
