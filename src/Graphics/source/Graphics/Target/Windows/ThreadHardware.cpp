// SPDX-License-Identifier: MIT
#include "ThreadHardware.h"

#include <windows.h>

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

std::atomic<bool> g_unloading{false};

/// The factory of the thread that ends the process stays: giving a device back waits for threads of the driver that are
/// no more. So do the factories of threads that outlive the library: while it is unloaded, under the loader's lock, no
/// thread of the driver can end.
void NTAPI Drop(void* factory) noexcept {
    if (!g_unloading.load() && !ProcessEnds()) {
        delete static_cast<HwRenderTargetFactory*>(factory);
    }
}

/// The slot is the platform's: with mingw-w64 the memory of a thread_local may be freed before its destructor runs. The
/// platform calls back at a thread's end, where the thread has a factory, as long as the library is there.
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
        // No device: the thread goes on drawing in software, which is no error.
    }
}

ThreadHardware::Maker ThreadHardware::Replace(Maker maker) noexcept {
    Put(nullptr);
    return g_maker.exchange(maker);
}

} // namespace Graphics
