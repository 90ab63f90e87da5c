// SPDX-License-Identifier: MIT
// Picks the kernel table for this processor, at the first use, whichever static object asks first.
#include "../../InstructionSets.h"
#include "SwKernelSets.h"

namespace Graphics {
namespace {

constexpr int kSetCount = kInstructionSetCount;

KernelChoice<SwKernels>& Choice() noexcept {
    static KernelChoice<SwKernels> choice([](InstructionSet set) noexcept { return KernelSet(static_cast<int>(set)); });
    return choice;
}

} // namespace

const SwKernels* KernelSet(int index) noexcept {
    if (index < 0 || index >= kSetCount || !ProcessorHas(static_cast<InstructionSet>(index))) {
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

const SwKernels& ActiveKernels() noexcept { return Choice().Active(); }

void SelectKernels(const SwKernels* kernels) noexcept { Choice().Select(kernels); }

} // namespace Graphics
