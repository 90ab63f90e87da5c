// SPDX-License-Identifier: MIT
// The paint loops for the instruction set that the whole build assumes, and the choice among the tables: one pointer
// that every thread computes alike.
#include <atomic>

#include "SwPaintKernelsLoops.h"

namespace Graphics {

const SwPaintKernels* PaintKernelsAVX2() noexcept;
const SwPaintKernels* PaintKernelsAVX512() noexcept;

namespace {

constinit std::atomic<const SwPaintKernels*> g_active{nullptr};

} // namespace

const SwPaintKernels* PaintKernelSet(int index) noexcept {
    static constexpr SwPaintKernels base = MakeTable("base");
    if (index == 0) {
        return &base;
    }
#if defined(__x86_64__) || defined(__i386__)
    __builtin_cpu_init();
    if (index == 1 && __builtin_cpu_supports("avx2")) {
        return PaintKernelsAVX2();
    }
    if (index == 2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq")) {
        return PaintKernelsAVX512();
    }
#endif
    return nullptr;
}

const SwPaintKernels& ActivePaintKernels() noexcept {
    if (const SwPaintKernels* kernels = g_active.load(std::memory_order_acquire)) {
        return *kernels;
    }
    SelectPaintKernels(nullptr);
    return *g_active.load(std::memory_order_acquire);
}

void SelectPaintKernels(const SwPaintKernels* kernels) noexcept {
    for (int index = kPaintKernelSets - 1; kernels == nullptr; --index) {
        kernels = PaintKernelSet(index);
    }
    g_active.store(kernels, std::memory_order_release);
}

} // namespace Graphics
