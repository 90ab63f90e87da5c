// SPDX-License-Identifier: MIT
// The band loops of every x86-64 processor, and the choice among the sets.
#include "../InstructionSets.h"
#include "BandLoops.h"

namespace Graphics {

const BandKernels kBandKernelsSSE2 = GX_BAND_TABLE;

const BandKernels* BandKernelsOfSet(int set) noexcept {
    switch (set) {
    case 0:
        return &kBandKernelsSSE2;
    case 1:
        return ProcessorHas(InstructionSet::AVX2) ? &kBandKernelsAVX2 : nullptr;
    case 2:
        return ProcessorHas(InstructionSet::AVX512) ? &kBandKernelsAVX512 : nullptr;
    default:
        return nullptr;
    }
}

const BandKernels& ActiveBandKernels() noexcept {
    static const KernelChoice<BandKernels> choice(
        [](InstructionSet set) noexcept { return BandKernelsOfSet(static_cast<int>(set) - 1); });
    return choice.Active();
}

} // namespace Graphics
