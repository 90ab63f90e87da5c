// SPDX-License-Identifier: MIT
// Picks the kernel table for this processor. The choice is made at the first use, whichever static object asks first,
// and is one pointer that every thread computes alike, so a race writes the same value twice.
#include <atomic>

#include "SwKernelSets.h"

namespace Graphics {
namespace {

constexpr int kSetCount = 4;

constinit std::atomic<const SwKernels*> g_active{nullptr};

bool ProcessorRuns(int index) noexcept {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_cpu_init();
    switch (index) {
    case 0:
        return true;
    case 1:
        return __builtin_cpu_supports("sse2") != 0;
    case 2:
        return __builtin_cpu_supports("avx2") != 0;
    case 3:
        return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
               __builtin_cpu_supports("avx512vl") != 0 && __builtin_cpu_supports("avx512dq") != 0 &&
               __builtin_cpu_supports("avx512cd") != 0;
    default:
        return false;
    }
#else
    return index == 0;
#endif
}

const SwKernels* Best() noexcept {
    for (int index = kSetCount - 1; index > 0; --index) {
        if (const SwKernels* kernels = KernelSet(index)) {
            return kernels;
        }
    }
    return kSwKernelsScalar;
}

} // namespace

const SwKernels* KernelSet(int index) noexcept {
    if (index < 0 || index >= kSetCount || !ProcessorRuns(index)) {
        return nullptr;
    }
    const SwKernels* const sets[kSetCount] = {kSwKernelsScalar, kSwKernelsSSE2, kSwKernelsAVX2, kSwKernelsAVX512};
    // A wide set leaves the ends of rows to the narrower ones.
    for (int narrower = 1; narrower < index; ++narrower) {
        if (sets[narrower] == nullptr) {
            return nullptr;
        }
    }
    return sets[index];
}

const SwKernels& ActiveKernels() noexcept {
    const SwKernels* kernels = g_active.load(std::memory_order_acquire);
    if (kernels == nullptr) [[unlikely]] {
        kernels = Best();
        g_active.store(kernels, std::memory_order_release);
    }
    return *kernels;
}

void SelectKernels(const SwKernels* kernels) noexcept {
    g_active.store(kernels != nullptr ? kernels : Best(), std::memory_order_release);
}

} // namespace Graphics
