// SPDX-License-Identifier: MIT
// PDF files that are bad for who draws them.
#pragma once

#include <filesystem>

// Three pages with a red square. The second one draws forms inside each other, of which the parser follows some
// hundreds: under a stack of kSmallStack bytes it ends in a segmentation fault (it would up to 400 KB).
constexpr size_t kSmallStack = 192 * 1024;
void WriteKillingFile(const std::filesystem::path& path);

// Two pages with a red square. The second one draws 2^28 of them, by forms that draw the next one twice: it takes
// minutes, and as long as it goes on, more memory.
void WriteEndlessFile(const std::filesystem::path& path);
