// SPDX-License-Identifier: MIT
#include "ThreadHardware.h"

#include <atomic>

#include "../../Exception.h"

namespace Graphics {
namespace {

std::atomic<ThreadHardware::Maker> g_maker{&CreateHardwareFactory};

/// Made on a thread's first use, so that other threads pay nothing for it.
[[nodiscard]] std::unique_ptr<HwRenderTargetFactory>& Slot() noexcept {
    static thread_local std::unique_ptr<HwRenderTargetFactory> slot;
    return slot;
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
