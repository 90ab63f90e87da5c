// SPDX-License-Identifier: MIT
// A worker is a process that watches over others, its slots. A slot holds one connection to the job server and draws
// one page at a time, in a process below it:
//
//   worker -- slot -- page       A page that dies or takes too long costs its process; the slot tells.
//          \- slot -- page       A slot that dies or hangs loses its connection, and with it the page: the server gives
//                                it to another. The worker starts a new slot.
//
// Slots note in shared memory that they are alive, at least every second.
#include "Queue.h"

#include "../PageRenderer.h"
#include "../jobs/Lifeline.h"
#include "../jobs/RootedPages.h"
#include "../jobs/StopSignals.h"
#include "Server.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <sys/mman.h>
#include <sys/wait.h>

namespace PdfPage {
namespace {

using Clock = std::chrono::steady_clock;

// A slot that has not noted that it is alive for so long is killed. Should it only have been slow, that costs one page
// a second beginning.
constexpr std::chrono::seconds kHangs{10};
// After so long without a page the connection is made anew: the server may be gone without a word, which a connection
// on which nothing is sent does not notice.
constexpr std::chrono::seconds kIdle{60};

class SharedTimes {
public:
    explicit SharedTimes(size_t count) : m_count(count) {
        void* const memory =
            ::mmap(nullptr, count * sizeof(Time), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            throw Failure(std::string("no shared memory: ") + std::strerror(errno));
        m_times = new (memory) Time[count]();
    }
    ~SharedTimes() { ::munmap(m_times, m_count * sizeof(Time)); }
    SharedTimes(const SharedTimes&) = delete;
    SharedTimes& operator=(const SharedTimes&) = delete;

    void Note(size_t slot) noexcept { m_times[slot] = Clock::now().time_since_epoch().count(); }
    Clock::duration Since(size_t slot) const noexcept {
        return Clock::now().time_since_epoch() - Clock::duration(m_times[slot].load());
    }

private:
    using Time = std::atomic<Clock::rep>;
    static_assert(Time::is_always_lock_free);

    size_t m_count;
    Time* m_times;
};

std::string Identity() {
    char name[200] = "";
    ::gethostname(name, sizeof name - 1);
    return std::string(name) + "-" + std::to_string(::getpid());
}

// False when the page is to go to another worker.
bool DrawTaken(const RootedPages& pages, const std::string& text, const std::function<void()>& alive) {
    try {
        return pages.Draw(PageJob::Unpacked(text), alive) == RootedPages::Result::Settled;
    } catch (const std::exception& failure) {
        // Nowhere to record it: no other worker could do better.
        std::fprintf(stderr, "pdfpage: a page was refused: %s\n", failure.what());
        return true;
    }
}

// Until the connection ends, or a signal asks to stop. True when it did any good.
bool ServeConnection(const Address& address, const RootedPages& pages, const std::function<void()>& alive) {
    bool useful = false;
    Clock::time_point last = Clock::now();
    WorkingSide server(address, Identity(), [&](const std::string& job) {
        useful = true;
        return DrawTaken(pages, job, alive);
    });
    while (!StopSignals::Asked() && Clock::now() - last < kIdle) {
        alive();
        const WorkingSide::Turn turn = server.Work();
        if (turn == WorkingSide::Turn::Lost)
            return useful;
        useful = true;
        if (turn == WorkingSide::Turn::Page)
            last = Clock::now();
    }
    return true;
}

[[noreturn]] void RunSlot(const Address& address, const RootedPages& pages, const std::function<void()>& alive) {
    constexpr int kShortest = 100, kLongest = 5000;
    int pause = kShortest; // milliseconds
    bool told = false;
    try {
        while (!StopSignals::Asked()) {
            alive();
            if (ServeConnection(address, pages, alive)) {
                pause = kShortest;
                told = false;
                continue;
            }
            if (!told)
                std::fprintf(stderr, "pdfpage: the job server at %s does not answer, trying on\n",
                             address.Text().c_str());
            told = true;
            StopSignals::Sleep(pause);
            pause = std::min(2 * pause, kLongest);
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "pdfpage: %s\n", failure.what());
        _exit(1);
    }
    _exit(0);
}

class Slots {
public:
    Slots(const CommandLine& line, const Limits& limits)
        : m_address(Address::Parse(line.worker)), m_pages(line.root, limits, line.verbose), m_times(line.jobs),
          m_slots(line.jobs) {}

    void Run() {
        while (!StopSignals::Asked()) {
            for (size_t i = 0; i < m_slots.size(); ++i)
                if (m_slots[i].process < 0 && Clock::now() >= m_slots[i].startAfter)
                    Start(i);
            StopSignals::Sleep(200);
            Watch();
        }
        // Each ends the page it has begun, which its limits bound.
        for (const Slot& slot : m_slots)
            if (slot.process > 0)
                ::kill(slot.process, SIGTERM);
        while (std::any_of(m_slots.begin(), m_slots.end(), [](const Slot& slot) { return slot.process > 0; })) {
            StopSignals::Sleep(50);
            Watch();
        }
    }

private:
    struct Slot {
        pid_t process = -1;
        Clock::time_point startAfter;
    };

    void Start(size_t index) {
        m_times.Note(index);
        std::fflush(nullptr);
        const pid_t parent = ::getpid();
        const pid_t process = ::fork();
        if (process == 0) {
            EndWithParent(parent, SIGTERM);
            RunSlot(m_address, m_pages, [this, index] { m_times.Note(index); });
        }
        m_slots[index] = {process, Clock::now() + std::chrono::seconds(1)}; // not one after another without a pause
    }

    void Watch() {
        for (size_t i = 0; i < m_slots.size(); ++i) {
            Slot& slot = m_slots[i];
            if (slot.process < 0)
                continue;
            if (m_times.Since(i) > kHangs) {
                std::fprintf(stderr, "pdfpage: slot %zu hangs and is started anew\n", i + 1);
                ::kill(slot.process, SIGKILL);
                m_times.Note(i); // said once, until it hangs again
            }
            int status = 0;
            if (::waitpid(slot.process, &status, WNOHANG) == slot.process) {
                if (WIFSIGNALED(status))
                    std::fprintf(stderr, "pdfpage: slot %zu was killed by signal %d\n", i + 1, WTERMSIG(status));
                slot.process = -1;
            }
        }
    }

    const Address m_address;
    const RootedPages m_pages;
    SharedTimes m_times;
    std::vector<Slot> m_slots;
};

} // namespace

int ServePages(const CommandLine& line) {
    const StopSignals signals;
    Limits limits = line.limits;
    if (limits.seconds <= 0)
        limits.seconds = kDefaultPageSeconds;
    Slots slots(line, limits);
    std::fprintf(stderr, "pdfpage: %u at a time from %s\n", line.jobs, line.worker.c_str());
    slots.Run();
    return 0;
}

} // namespace PdfPage
