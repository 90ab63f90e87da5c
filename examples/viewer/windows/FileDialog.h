// SPDX-License-Identifier: MIT
// The system's dialogs for a file to read and a file to write.
#pragma once

#include "System.h"

namespace Viewer {

// The chosen path; empty: the user thought better of it. `kinds` as in OPENFILENAME::lpstrFilter. Throw Gxr::Error.
std::wstring AskForFile(HWND owner, const wchar_t* kinds);
// `ending`, without a dot, is added to a name that has none.
std::wstring AskForNewFile(HWND owner, const wchar_t* kinds, const wchar_t* ending);

} // namespace Viewer
