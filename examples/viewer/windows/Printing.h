// SPDX-License-Identifier: MIT
// The document on paper.
#pragma once

#include "Document.h"
#include "System.h"

namespace Viewer {

// Asks for a printer and prints. False: the user thought better of it. Throws Gxr::Error.
bool PrintWithDialog(HWND owner, Document& document);

// Prints on a printer of this name into a file. Throws Gxr::Error.
void PrintToFile(const std::wstring& printer, const std::wstring& output, Document& document);

} // namespace Viewer
