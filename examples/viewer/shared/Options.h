// SPDX-License-Identifier: MIT
// The command line.
#pragma once

#include <string>
#include <vector>

namespace Viewer {

struct Options {
    std::wstring file;
    bool hardware = false;
    float zoom = 0;               // 0: the page is fitted into the window
    int frames = 0;               // above 0: quit after that many
    std::wstring printer, output; // with a printer nothing is shown

    // Nobody is there to close a message.
    bool Unattended() const noexcept { return frames > 0 || !printer.empty(); }
};

extern const char* const kUsage;

// Throws Gxr::Error; `options` then holds what came before the fault.
void Parse(const std::vector<std::wstring>& arguments, Options& options);

} // namespace Viewer
