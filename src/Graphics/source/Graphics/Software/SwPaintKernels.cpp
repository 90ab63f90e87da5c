// SPDX-License-Identifier: MIT
// The paint loops for the instruction set that the whole build assumes, and the choice among the tables.
#include <algorithm>

#include "../InstructionSets.h"
#include "SwPaintKernelsLoops.h"

namespace Graphics {

const SwPaintKernels* PaintKernelSet(int index) noexcept {
    static constexpr SwPaintKernels base = MakeTable("base");
    if (index == 0) {
        return &base;
    }
#if defined(__x86_64__) || defined(__i386__)
    if (index == 1 && ProcessorHas(InstructionSet::AVX2)) {
        return PaintKernelsAVX2();
    }
    if (index == 2 && ProcessorHas(InstructionSet::AVX512)) {
        return PaintKernelsAVX512();
    }
#endif
    return nullptr;
}

namespace {

KernelChoice<SwPaintKernels>& Choice() noexcept {
    static KernelChoice<SwPaintKernels> choice([](InstructionSet set) noexcept {
        return set == InstructionSet::SSE2 ? nullptr : PaintKernelSet(std::max(static_cast<int>(set) - 1, 0));
    });
    return choice;
}

} // namespace

const SwPaintKernels& ActivePaintKernels() noexcept { return Choice().Active(); }

void SelectPaintKernels(const SwPaintKernels* kernels) noexcept { Choice().Select(kernels); }

} // namespace Graphics
