// SPDX-License-Identifier: MIT
// Linked into a program or a library: where GX_TEST_KERNELS names an instruction set ("plain", "neon", ...), everything draws
// by its kernels, and by none of wider sets. So tests that know nothing of kernels run once for each.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Simd/InstructionSets.h"

namespace {

using Graphics::InstructionSet;

/// A name that is not known ends the program: its tests would pass by other kernels than was asked for.
bool Allow() {
    const char* const wanted = std::getenv("GX_TEST_KERNELS");
    if (wanted == nullptr) {
        return false;
    }
    for (int i = 0; i < Graphics::kInstructionSetCount; ++i) {
        const auto set = static_cast<InstructionSet>(i);
        if (std::strcmp(wanted, Graphics::NameOf(set)) == 0 && Graphics::ProcessorHas(set)) {
            Graphics::AllowInstructionSets(set);
            return true;
        }
    }
    std::fprintf(stderr, "GX_TEST_KERNELS names no instruction set of this processor: %s\n", wanted);
    std::_Exit(2);
}

[[maybe_unused]] const bool g_allowed = Allow();

} // namespace
