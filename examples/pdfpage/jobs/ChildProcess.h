// SPDX-License-Identifier: MIT
// One piece of work in a process of its own, with a limit on its time and its memory. Whatever it does to its process,
// the caller gets an answer. The calling process has one thread.
#pragma once

#include "Descriptor.h"
#include "PageJob.h"

#include <chrono>
#include <functional>
#include <string>
#include <sys/types.h>

namespace PdfPage {

struct Outcome {
    enum class Kind {
        Done,
        Failed,      // it said why
        Died,        // by a signal, or without a word
        TimedOut,    // it was killed at the limit
        OutOfMemory, // it was refused memory under the limit
    };
    Kind kind = Kind::Done;
    std::string text; // the answer when done, else the reason
    std::string said; // what it wrote to stderr, the beginning of it
};

class ChildProcess {
public:
    using Clock = std::chrono::steady_clock;
    // Runs in the new process; its answer, or the text of what it throws, comes back.
    using Work = std::function<std::string()>;

    // Throws Failure when there can be no process.
    ChildProcess(const Limits& limits, const Work& work);
    // Kills what still runs.
    ~ChildProcess();
    ChildProcess(ChildProcess&&) noexcept;
    ChildProcess& operator=(ChildProcess&&) = delete;

    // The two pipes to wait for; -1 is one that has ended.
    int Answer() const noexcept { return m_answer.Get(); }
    int Errors() const noexcept { return m_errors.Get(); }
    // Takes what has come; true when the process is over.
    bool Read();
    Clock::time_point Deadline() const noexcept { return m_deadline; }
    // At the deadline; the pipes end soon after.
    void Kill() noexcept;

    // Once Read gave true.
    Outcome End();

private:
    pid_t m_process = -1;
    Descriptor m_answer, m_errors;
    std::string m_text, m_said;
    Limits m_limits;
    Clock::time_point m_deadline = Clock::time_point::max();
    bool m_killed = false;
};

} // namespace PdfPage
