// SPDX-License-Identifier: MIT
// Interrupt, terminate and hang up ask the program to stop. They are held back except where it waits or asks, so no
// other call ends early because of them.
#pragma once

#include <poll.h>
#include <vector>

namespace PdfPage {

class StopSignals {
public:
    // From now on. Processes made later inherit it.
    StopSignals();

    static bool Asked() noexcept;
    // Waits for the pipes, so many milliseconds at most; a signal ends it.
    static void Wait(std::vector<pollfd>& pipes, int milliseconds) noexcept;
    static void Sleep(int milliseconds) noexcept;
};

} // namespace PdfPage
