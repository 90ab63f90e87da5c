// SPDX-License-Identifier: MIT
#include "ProcessPool.h"

#include "StopSignals.h"

#include <algorithm>
#include <vector>

namespace PdfPage {
namespace {

// Rounded up, so that a deadline is not awaited in a tight loop.
int Milliseconds(ChildProcess::Clock::duration time) {
    const auto whole = std::chrono::duration_cast<std::chrono::milliseconds>(time).count() + 1;
    return static_cast<int>(std::clamp<long long>(whole, 0, 1000000));
}

} // namespace

void ProcessPool::Start(size_t ticket, const Limits& limits, const ChildProcess::Work& work) {
    m_children.push_back({ticket, ChildProcess(limits, work)});
}

std::optional<ProcessPool::Ended> ProcessPool::Wait(int milliseconds) {
    using Clock = ChildProcess::Clock;
    const Clock::time_point until = Clock::now() + std::chrono::milliseconds(milliseconds);
    std::vector<pollfd> pipes;
    while (!m_children.empty() && (m_untilTheEnd || !StopSignals::Asked())) {
        Clock::time_point next = until;
        pipes.clear();
        for (auto child = m_children.begin(); child != m_children.end(); ++child) {
            ChildProcess& process = child->process;
            if (process.Read()) {
                Ended ended{child->ticket, process.End()};
                m_children.erase(child);
                return ended;
            }
            if (Clock::now() >= process.Deadline())
                process.Kill();
            next = std::min(next, process.Deadline());
            for (const int pipe : {process.Answer(), process.Errors()})
                pipes.push_back({pipe, POLLIN, 0});
        }
        if (Clock::now() >= until)
            break;
        StopSignals::Wait(pipes, Milliseconds(next - Clock::now()));
    }
    return std::nullopt;
}

} // namespace PdfPage
