// SPDX-License-Identifier: MIT
#include "ThreadHardware.h"

#include <atomic>

#include "../../Exception.h"
#include "../../Windows/SystemCalls.h"

namespace Graphics {
namespace {

std::atomic<ThreadHardware::Maker> g_maker{&CreateHardwareFactory};

/// The process is ending: the system has stopped all threads but this one, wherever they were.
[[nodiscard]] bool ProcessEnds() noexcept {
    const HMODULE system = GetModuleHandleW(L"ntdll.dll");
    const auto ends = system == nullptr ? nullptr
                                        : reinterpret_cast<BOOLEAN(NTAPI*)()>(reinterpret_cast<void (*)()>(
                                              GetProcAddress(system, "RtlDllShutdownInProgress")));
    return ends != nullptr && ends() != FALSE;
}

struct ThreadFactory {
    std::unique_ptr<HwRenderTargetFactory> factory;
    ThreadFactory() noexcept = default;
    ThreadFactory(const ThreadFactory&) = delete;
    ThreadFactory& operator=(const ThreadFactory&) = delete;
    /// The factory of the thread that ends the process stays: giving a device back waits for threads of the driver
    /// that are no more.
    ~ThreadFactory() {
        if (factory != nullptr && ProcessEnds()) {
            static_cast<void>(factory.release());
        }
    }
};

/// Made on a thread's first use, so that other threads pay nothing for it.
[[nodiscard]] std::unique_ptr<HwRenderTargetFactory>& Slot() noexcept {
    static thread_local ThreadFactory slot;
    return slot.factory;
}

} // namespace

HwRenderTargetFactory* ThreadHardware::Factory() noexcept { return Slot().get(); }

void ThreadHardware::Enable() {
    if (Slot() != nullptr) {
        return;
    }
    try {
        Slot() = g_maker.load()();
    } catch (const Exception&) {
        // No device: the thread goes on drawing in software, which is no error.
    }
}

ThreadHardware::Maker ThreadHardware::Replace(Maker maker) noexcept {
    Slot() = nullptr;
    return g_maker.exchange(maker);
}

} // namespace Graphics
