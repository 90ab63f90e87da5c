// SPDX-License-Identifier: MIT
#include "InstructionSets.h"

namespace Graphics {

bool ProcessorHas(InstructionSet set) noexcept {
    if (set == InstructionSet::Plain) {
        return true;
    }
#if defined(__x86_64__) || defined(__i386__)
    __builtin_cpu_init();
    switch (set) {
    case InstructionSet::SSE2:
        return __builtin_cpu_supports("sse2") != 0;
    case InstructionSet::AVX2:
        return __builtin_cpu_supports("avx2") != 0;
    default:
        return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
               __builtin_cpu_supports("avx512vl") != 0 && __builtin_cpu_supports("avx512dq") != 0 &&
               __builtin_cpu_supports("avx512cd") != 0;
    }
#else
    return false;
#endif
}

} // namespace Graphics
