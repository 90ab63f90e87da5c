// SPDX-License-Identifier: MIT
// Several pieces of work at a time, each in a process of its own.
#pragma once

#include "ChildProcess.h"

#include <list>
#include <optional>

namespace PdfPage {

class ProcessPool {
public:
    struct Ended {
        size_t ticket;
        Outcome outcome;
    };

    // Until the end: goes on waiting when a signal asks to stop.
    explicit ProcessPool(bool untilTheEnd = false) noexcept : m_untilTheEnd(untilTheEnd) {}

    size_t Running() const noexcept { return m_children.size(); }
    void Start(size_t ticket, const Limits& limits, const ChildProcess::Work& work);
    // The next one to end; nothing after `milliseconds`, when a signal asked to stop (StopSignals), or when none runs.
    std::optional<Ended> Wait(int milliseconds);

private:
    struct Child {
        size_t ticket;
        ChildProcess process;
    };

    const bool m_untilTheEnd;
    std::list<Child> m_children;
};

} // namespace PdfPage
