// SPDX-License-Identifier: MIT
#include "InstructionSets.h"

namespace Graphics {

bool ProcessorHas(InstructionSet set) noexcept {
    if (set == InstructionSet::Plain) {
        return true;
    }
#if defined(__x86_64__)
    __builtin_cpu_init();
    switch (set) {
    case InstructionSet::SSE2:
        return __builtin_cpu_supports("sse2") != 0;
    case InstructionSet::AVX2:
        return __builtin_cpu_supports("avx2") != 0;
    case InstructionSet::AVX512: // not the processors before Ice Lake and Zen 4
        return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
               __builtin_cpu_supports("avx512vl") != 0 && __builtin_cpu_supports("avx512dq") != 0 &&
               __builtin_cpu_supports("avx512cd") != 0 && __builtin_cpu_supports("avx512vbmi") != 0 &&
               __builtin_cpu_supports("avx512vpopcntdq") != 0;
    default:
        return false;
    }
#elif defined(__aarch64__)
    return set == InstructionSet::NEON; // a part of the architecture
#else
    return false;
#endif
}

const char* NameOf(InstructionSet set) noexcept {
    static constexpr const char* kNames[kInstructionSetCount] = {"plain", "neon", "sse2", "avx2", "avx512"};
    return kNames[static_cast<int>(set)];
}

void AllowInstructionSets(InstructionSet widest) noexcept {
    auto set = static_cast<int>(widest);
    while (!ProcessorHas(static_cast<InstructionSet>(set))) {
        --set;
    }
    Detail::g_activeSet.store(set, std::memory_order_relaxed);
}

} // namespace Graphics
