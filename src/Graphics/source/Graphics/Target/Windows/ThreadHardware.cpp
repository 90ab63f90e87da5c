// SPDX-License-Identifier: MIT
#include "ThreadHardware.h"

#include <windows.h>

#include <atomic>

#include "../../Exception.h"
#include "../../Windows/SystemCalls.h"

namespace Graphics {
namespace {

std::atomic<ThreadHardware::Maker> g_maker{&CreateHardwareFactory};

/// True while the process ends: the system has then stopped all other threads at arbitrary points.
[[nodiscard]] bool ProcessEnds() noexcept {
    const HMODULE system = GetModuleHandleW(L"ntdll.dll");
    const auto ends = system == nullptr ? nullptr
                                        : reinterpret_cast<BOOLEAN(NTAPI*)()>(reinterpret_cast<void (*)()>(
                                              GetProcAddress(system, "RtlDllShutdownInProgress")));
    return ends != nullptr && ends() != FALSE;
}

std::atomic<bool> g_unloading{false};

/// Leaks the factory of the thread that ends the process, because releasing a device waits for driver threads that no
/// longer exist. Factories of threads that outlive the library are leaked too: during unloading, under the loader lock,
/// no driver thread can end.
void NTAPI Drop(void* factory) noexcept {
    if (!g_unloading.load() && !ProcessEnds()) {
        delete static_cast<HwRenderTargetFactory*>(factory);
    }
}

/// A fiber-local slot of the platform, because with mingw-w64 the memory of a thread_local may be freed before its
/// destructor runs. The platform calls back at the end of each thread that has a factory, as long as the library is
/// loaded.
[[nodiscard]] DWORD Slot() noexcept {
    struct Owner {
        DWORD index = FlsAlloc(&Drop);
        ~Owner() {
            g_unloading.store(true);
            FlsFree(index);
        }
    };
    static const Owner owner;
    return owner.index;
}

void Put(std::unique_ptr<HwRenderTargetFactory> factory) noexcept {
    const std::unique_ptr<HwRenderTargetFactory> old(ThreadHardware::Factory());
    if (FlsSetValue(Slot(), factory.get()) != FALSE) {
        static_cast<void>(factory.release());
    }
}

} // namespace

HwRenderTargetFactory* ThreadHardware::Factory() noexcept {
    return static_cast<HwRenderTargetFactory*>(FlsGetValue(Slot()));
}

void ThreadHardware::Enable() {
    if (Factory() != nullptr) {
        return;
    }
    try {
        Put(g_maker.load()());
    } catch (const Exception&) {
        // No device: the thread draws in software, which is no error.
    }
}

ThreadHardware::Maker ThreadHardware::Replace(Maker maker) noexcept {
    Put(nullptr);
    return g_maker.exchange(maker);
}

} // namespace Graphics
