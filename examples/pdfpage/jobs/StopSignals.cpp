// SPDX-License-Identifier: MIT
#include "StopSignals.h"

#include <csignal>

namespace PdfPage {
namespace {

volatile std::sig_atomic_t g_stop = 0;
sigset_t g_open; // the mask while waiting

void Poll(pollfd* pipes, size_t count, int milliseconds) noexcept {
    const timespec time{milliseconds / 1000, (milliseconds % 1000) * 1000000L};
    ::ppoll(pipes, static_cast<nfds_t>(count), &time, &g_open);
}

} // namespace

StopSignals::StopSignals() {
    sigset_t held;
    sigemptyset(&held);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&held, number);
    sigprocmask(SIG_BLOCK, &held, &g_open);
    struct sigaction action {};
    action.sa_handler = [](int) { g_stop = 1; };
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigdelset(&g_open, number);
        sigaction(number, &action, nullptr);
    }
    std::signal(SIGPIPE, SIG_IGN);
}

bool StopSignals::Asked() noexcept {
    Poll(nullptr, 0, 0); // lets in what is held back
    return g_stop != 0;
}

void StopSignals::Wait(std::vector<pollfd>& pipes, int milliseconds) noexcept {
    Poll(pipes.data(), pipes.size(), milliseconds);
}

void StopSignals::Sleep(int milliseconds) noexcept { Poll(nullptr, 0, milliseconds); }

} // namespace PdfPage
