// SPDX-License-Identifier: MIT
// The band loops of every x86-64 processor, and the choice among the sets.
#include "BandLoops.h"

namespace Graphics {

const BandKernels kBandKernelsSSE2 = GX_BAND_TABLE;

const BandKernels* BandKernelsOfSet(int set) noexcept {
    switch (set) {
    case 0:
        return &kBandKernelsSSE2;
    case 1:
        return __builtin_cpu_supports("avx2") != 0 ? &kBandKernelsAVX2 : nullptr;
    case 2:
        return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
                       __builtin_cpu_supports("avx512vl") != 0 && __builtin_cpu_supports("avx512dq") != 0 &&
                       __builtin_cpu_supports("avx512cd") != 0
                   ? &kBandKernelsAVX512
                   : nullptr;
    default:
        return nullptr;
    }
}

const BandKernels& ActiveBandKernels() noexcept {
    static const BandKernels& best = []() -> const BandKernels& {
        for (int set = 2; set > 0; --set) {
            if (const BandKernels* kernels = BandKernelsOfSet(set)) {
                return *kernels;
            }
        }
        return kBandKernelsSSE2;
    }();
    return best;
}

} // namespace Graphics
