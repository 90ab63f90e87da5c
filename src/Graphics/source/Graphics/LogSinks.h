// SPDX-License-Identifier: MIT
// The process-wide receivers of diagnostic lines, called in the order of their keys under one mutex.
#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <string>

#include "Types.h"

namespace Graphics {

class LogSinks {
public:
    [[nodiscard]] static LogSinks& Instance() noexcept;

    /// Replaces the sink of `key`; a null `proc` removes it.
    void Set(int32_t key, GXLogProc proc, void* context);

    [[nodiscard]] bool Empty() const noexcept { return m_count.load(std::memory_order_relaxed) == 0; }

    void Write(const std::string& text) noexcept;

private:
    struct Sink {
        GXLogProc proc;
        void* context;
    };
    std::mutex m_mutex;
    std::map<int32_t, Sink> m_sinks;
    std::atomic<size_t> m_count{0};
};

} // namespace Graphics
