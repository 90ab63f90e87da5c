// SPDX-License-Identifier: MIT
// The page example as a program that runs beside the test, in a process group of its own.
#pragma once

#include "Picture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

// The whole file; empty when there is none.
inline std::string Contents(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// Looks until it is so. The limit is for a machine that has other things to do: no test ends by it.
inline bool Await(const std::function<bool()>& so, int seconds = 120) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (!so()) {
        if (std::chrono::steady_clock::now() > until)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

class Program {
public:
    // `stackBytes`: its limit, unchanged when 0. What it writes goes to the file `log`.
    Program(const std::vector<std::string>& arguments, const std::filesystem::path& log, size_t stackBytes = 0)
        : m_log(log) {
        std::vector<char*> argv;
        for (const std::string& argument : arguments)
            argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        m_process = fork();
        if (m_process == 0) {
            setpgid(0, 0);
            const int file = open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
            dup2(file, STDOUT_FILENO);
            dup2(file, STDERR_FILENO);
            if (stackBytes > 0) {
                const rlimit limit{stackBytes, stackBytes};
                setrlimit(RLIMIT_STACK, &limit);
            }
            execv(argv[0], argv.data());
            _exit(127);
        }
        setpgid(m_process, m_process);
    }
    ~Program() {
        if (m_process > 0) {
            Signal(SIGKILL);
            Wait();
        }
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    pid_t Id() const { return m_process; }
    // To it and all that it started.
    void Signal(int number) const { kill(-m_process, number); }

    bool Runs() {
        if (m_process > 0 && waitpid(m_process, &m_status, WNOHANG) == m_process)
            m_process = -1;
        return m_process > 0;
    }
    // The exit code, or -1 when a signal ended it.
    int Wait() {
        if (m_process > 0)
            waitpid(m_process, &m_status, 0);
        m_process = -1;
        return WIFEXITED(m_status) ? WEXITSTATUS(m_status) : -1;
    }
    std::string Said() const { return Contents(m_log); }

private:
    std::filesystem::path m_log;
    pid_t m_process = -1;
    int m_status = 0;
};

// A path of the running test's own.
inline std::filesystem::path TestPath(const char* extension) {
    const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
    return OutputFolder() / (std::string(test->test_suite_name()) + "." + test->name() + extension);
}

// A folder there, emptied.
inline std::filesystem::path EmptyFolder() {
    const std::filesystem::path folder = TestPath("");
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder;
}

// Names in a folder, sorted; of pictures only, or of everything else.
inline std::vector<std::string> Names(const std::filesystem::path& folder, bool pictures) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if ((entry.path().extension() == ".png") == pictures)
            names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}
