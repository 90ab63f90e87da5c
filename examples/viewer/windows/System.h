// SPDX-License-Identifier: MIT
// Windows itself, its texts, and the reasons that the system gives for a failure.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include "Reason.h"

#include <string>

namespace Viewer {

std::string Narrow(const std::wstring& text);
std::wstring Wide(const std::string& text);
// A path in quotes, for messages.
std::string Quoted(const std::wstring& path);

// `what` and the words of the system for its last error.
std::string WithSystemReason(const std::string& what);

// A line for the standard error stream, where there is one, and, unless nobody is there to close it, a box.
void Report(HWND owner, const std::string& text, bool unattended);

} // namespace Viewer
