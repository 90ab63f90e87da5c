// SPDX-License-Identifier: MIT
// PDF files made for one test, and such as are bad for who draws them; and how one is drawn.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "../../examples/pdfpage/PageRenderer.h"

// One page of `side` by `side` points; `entries` stand in the page, `resources` in its dictionary of these, and
// `objects` are numbered from 5.
void WritePage(const std::filesystem::path& path, int side, const std::string& content,
               const std::string& resources = "", const std::string& entries = "",
               const std::vector<std::string>& objects = {});
// A transparency group to draw; `group` stands in its group dictionary, which is left out when empty.
std::string Form(int side, const std::string& content, const std::string& resources = "",
                 const std::string& group = "");

// Three pages with a red square. The second one draws forms inside each other, of which the parser follows some
// hundreds: under a stack of kSmallStack bytes it ends in a segmentation fault (it would up to 400 KB).
constexpr size_t kSmallStack = 192 * 1024;

/// Whether limits of stack and memory stop a process.
#ifdef GX_TEST_EMULATED
constexpr bool kHoldsLimits = false;
#else
constexpr bool kHoldsLimits = true;
#endif
constexpr const char* kHoldsNoLimits =
    "QEMU lets the programs that it runs set limits of stack and memory and does not hold them";
void WriteKillingFile(const std::filesystem::path& path);

// Two pages with a red square. The second one draws 2^28 of them, by forms that draw the next one twice: it takes
// minutes, and as long as it goes on, more memory.
void WriteEndlessFile(const std::filesystem::path& path);

// The first page, at 72 dpi.
PdfPage::Picture DrawFile(const std::string& file, bool adjust = true);
