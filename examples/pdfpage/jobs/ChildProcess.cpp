// SPDX-License-Identifier: MIT
// The child answers with one byte and a text: D and the answer, F and the reason, or M when memory was refused. The end
// of its pipes is its end: nobody else holds their other ends.
#include "ChildProcess.h"

#include "../MemoryLimit.h"
#include "../PageRenderer.h"
#include "Lifeline.h"
#include "Numbers.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <vector>

namespace PdfPage {
namespace {

constexpr size_t kMostSaid = 4096; // of stderr, enough to know what happened

int g_answer = -1; // the child's end of the answer pipe

void Send(const char* data, size_t bytes) {
    while (bytes > 0) {
        const ssize_t n = ::write(g_answer, data, bytes);
        if (n < 0 && errno != EINTR)
            return;
        if (n > 0) {
            data += n;
            bytes -= static_cast<size_t>(n);
        }
    }
}

// No allocation in here.
[[noreturn]] void AnswerOutOfMemory() {
    Send("M", 1);
    _exit(1);
}

// Bytes of private memory that the process holds: what RLIMIT_DATA counts.
uint64_t DataBytes() {
    unsigned long long pages[6] = {};
    if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%llu %llu %llu %llu %llu %llu", pages, pages + 1, pages + 2, pages + 3, pages + 4,
                        pages + 5) != 6)
            pages[5] = 0;
        std::fclose(file);
    }
    return pages[5] * static_cast<uint64_t>(::sysconf(_SC_PAGESIZE));
}

void LimitMemory(uint64_t bytes) {
    rlimit limit{};
    ::getrlimit(RLIMIT_DATA, &limit);
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, DataBytes() + bytes);
    ::setrlimit(RLIMIT_DATA, &limit);
    MemoryLimit::Watch([] { AnswerOutOfMemory(); });
}

// A connection ends with the process that made it: a child that outlives it, if only for a moment, must not keep it
// open.
void CloseConnections() {
    std::vector<int> sockets;
    if (DIR* const folder = ::opendir("/proc/self/fd")) {
        while (const dirent* const entry = ::readdir(folder)) {
            const int number = std::atoi(entry->d_name);
            struct stat status {};
            if (number > STDERR_FILENO && ::fstat(number, &status) == 0 && S_ISSOCK(status.st_mode))
                sockets.push_back(number);
        }
        ::closedir(folder);
    }
    for (const int number : sockets)
        ::close(number);
}

[[noreturn]] void RunChild(pid_t parent, const Limits& limits, const ChildProcess::Work& work) {
    EndWithParent(parent, SIGKILL);
    CloseConnections();
    // The parent answers signals in its own way.
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
        std::signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (limits.bytes > 0)
        LimitMemory(limits.bytes);
    try {
        const std::string answer = "D" + work();
        Send(answer.data(), answer.size());
    } catch (const std::exception& failure) {
        const std::string answer = std::string("F") + failure.what();
        Send(answer.data(), answer.size());
    }
    std::fflush(stderr);
    _exit(0);
}

// Both ends, not passed on to programs.
void MakePipe(Descriptor& read, Descriptor& write) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw Failure(std::string("cannot make a pipe: ") + std::strerror(errno));
    read = Descriptor(ends[0]);
    write = Descriptor(ends[1]);
    ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
}

// Takes what is there, keeps the first `most` bytes; closes the pipe at its end.
void Drain(Descriptor& pipe, std::string& text, size_t most) {
    char block[4096];
    while (pipe) {
        const ssize_t n = ::read(pipe.Get(), block, sizeof block);
        if (n > 0)
            text.append(block, std::min(static_cast<size_t>(n), most - std::min(most, text.size())));
        else if (n < 0 && errno == EINTR)
            continue;
        else if (n < 0 && errno == EAGAIN)
            return;
        else
            pipe.Close();
    }
}

} // namespace

ChildProcess::ChildProcess(const Limits& limits, const Work& work) : m_limits(limits) {
    Descriptor answer, errors;
    MakePipe(m_answer, answer);
    MakePipe(m_errors, errors);
    std::fflush(nullptr); // what is in buffers would be written twice
    const pid_t parent = ::getpid();
    m_process = ::fork();
    if (m_process < 0)
        throw Failure(std::string("cannot start a process: ") + std::strerror(errno));
    if (m_process == 0) {
        g_answer = answer.Get();
        ::dup2(errors.Get(), STDERR_FILENO);
        errors.Close();
        RunChild(parent, limits, work);
    }
    if (limits.seconds > 0)
        m_deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                        std::chrono::duration<double>(std::min(limits.seconds, 1e8)));
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : m_process(std::exchange(other.m_process, -1)), m_answer(std::move(other.m_answer)),
      m_errors(std::move(other.m_errors)), m_text(std::move(other.m_text)), m_said(std::move(other.m_said)),
      m_limits(other.m_limits), m_deadline(other.m_deadline), m_killed(other.m_killed) {}

ChildProcess::~ChildProcess() {
    if (m_process < 0)
        return;
    ::kill(m_process, SIGKILL);
    while (::waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

bool ChildProcess::Read() {
    constexpr size_t kMostText = 1u << 20;
    Drain(m_answer, m_text, kMostText);
    Drain(m_errors, m_said, kMostSaid);
    return !m_answer && !m_errors;
}

void ChildProcess::Kill() noexcept {
    m_killed = true;
    m_deadline = Clock::time_point::max();
    ::kill(m_process, SIGKILL);
}

Outcome ChildProcess::End() {
    int status = 0;
    while (::waitpid(m_process, &status, 0) < 0 && errno == EINTR) {
    }
    m_process = -1;
    Outcome outcome;
    outcome.said = std::move(m_said);
    const char kind = m_text.empty() ? '\0' : m_text[0];
    const bool exited = WIFEXITED(status);
    if (exited && kind == 'D') {
        outcome.text = m_text.substr(1);
    } else if (exited && kind == 'F') {
        outcome.kind = Outcome::Kind::Failed;
        outcome.text = m_text.substr(1);
    } else if (exited && kind == 'M') {
        outcome.kind = Outcome::Kind::OutOfMemory;
        outcome.text = "memory limit of " + MemoryText(m_limits.bytes) + " reached";
    } else if (m_killed) {
        outcome.kind = Outcome::Kind::TimedOut;
        outcome.text = "time limit of " + SecondsText(m_limits.seconds) + " reached";
    } else {
        outcome.kind = Outcome::Kind::Died;
        outcome.text = WIFSIGNALED(status) ? "killed by signal " + std::to_string(WTERMSIG(status)) + " (" +
                                                 strsignal(WTERMSIG(status)) + ")"
                                           : "ended with exit code " + std::to_string(WEXITSTATUS(status));
    }
    return outcome;
}

} // namespace PdfPage
