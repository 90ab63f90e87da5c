// SPDX-License-Identifier: MIT
#include "LogSinks.h"

namespace Graphics {
namespace {

// Created when the library is loaded, not on first use: it must outlive the static objects of a program that is linked
// against the library.
[[maybe_unused]] const LogSinks& g_made = LogSinks::Instance();

} // namespace

LogSinks& LogSinks::Instance() noexcept {
    static LogSinks instance;
    return instance;
}

void LogSinks::Set(int32_t key, GXLogProc proc, void* context) {
    const std::lock_guard lock(m_mutex);
    if (proc != nullptr) {
        m_sinks[key] = {proc, context};
    } else {
        m_sinks.erase(key);
    }
    m_count.store(m_sinks.size(), std::memory_order_relaxed);
}

void LogSinks::Write(const std::string& text) noexcept {
    // A sink that throws must neither stop the others nor replace the error being reported.
    try {
        const std::lock_guard lock(m_mutex);
        for (const auto& [key, sink] : m_sinks) {
            try {
                sink.proc(sink.context, text.c_str());
            } catch (...) {
            }
        }
    } catch (...) {
    }
}

} // namespace Graphics
