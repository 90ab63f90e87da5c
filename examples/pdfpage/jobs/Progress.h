// SPDX-License-Identifier: MIT
// How far a run is: a bar with rate and remaining time on a terminal; elsewhere a plain line now and then, and one at
// the end.
#pragma once

#include <chrono>
#include <string>

namespace PdfPage {

struct Tally {
    size_t all = 0, done = 0, failed = 0, skipped = 0; // skipped: there already
    size_t Left() const noexcept { return all - done - failed - skipped; }
};

class Progress {
public:
    // The clock of the rate starts here.
    Progress();

    // Cheap enough to be called for every page.
    void Show(const Tally& tally);
    // Takes the bar away, for a line of text in its place. The next Show draws it again.
    void Clear();
    void End(const Tally& tally);

    // What is shown: the bar's line without its end, and the plain line.
    static std::string Bar(const Tally& tally, double seconds);
    static std::string Line(const Tally& tally, double seconds);

private:
    using Clock = std::chrono::steady_clock;

    double Seconds() const;

    const bool m_terminal;
    const Clock::time_point m_start = Clock::now();
    Clock::time_point m_next; // when to show again
    bool m_shown = false;
};

} // namespace PdfPage
