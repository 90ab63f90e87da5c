// SPDX-License-Identifier: MIT
// The kernels of every instruction set of this machine.
#pragma once

#include <vector>

#include "Simd/KernelTable.h"

template <class Kernels> struct NamedKernels {
    const char* name;
    const Kernels* kernels;

    const Kernels* operator->() const { return kernels; }
};

/// One entry for each set that the processor has, the narrowest first.
template <class Kernels> std::vector<NamedKernels<Kernels>> EveryKernelSet() {
    std::vector<NamedKernels<Kernels>> sets;
    for (int i = 0; i < Graphics::kInstructionSetCount; ++i) {
        const auto set = static_cast<Graphics::InstructionSet>(i);
        if (const Kernels* kernels = Graphics::KernelTable<Kernels>::Of(set)) {
            sets.push_back({Graphics::NameOf(set), kernels});
        }
    }
    return sets;
}

/// The sets by turns.
template <class Kernels> NamedKernels<Kernels> KernelSetOfRound(int round) {
    static const std::vector<NamedKernels<Kernels>> sets = EveryKernelSet<Kernels>();
    return sets[static_cast<size_t>(round) % sets.size()];
}
