// SPDX-License-Identifier: MIT
// The paint loops for the instruction set that the whole build assumes, and the choice among the tables.
#include "SwPaintKernelsLoops.h"

namespace Graphics {

const SwPaintKernels* PaintKernelsAVX2() noexcept;

const SwPaintKernels* PaintKernelSet(int index) noexcept {
    static constexpr SwPaintKernels base = MakeTable("base");
    if (index == 0) {
        return &base;
    }
#if defined(__x86_64__) || defined(__i386__)
    if (index == 1 && __builtin_cpu_supports("avx2")) {
        return PaintKernelsAVX2();
    }
#endif
    return nullptr;
}

const SwPaintKernels& ActivePaintKernels() noexcept {
    static const SwPaintKernels& best = [&]() -> const SwPaintKernels& {
        const SwPaintKernels* wide = PaintKernelSet(1);
        return wide != nullptr ? *wide : *PaintKernelSet(0);
    }();
    return best;
}

} // namespace Graphics
