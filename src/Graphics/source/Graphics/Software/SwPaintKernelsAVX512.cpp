// SPDX-License-Identifier: MIT
// The paint loops on vectors of sixteen words; built with the flags of that instruction set.
#include "SwPaintKernels.h"

#if defined(__AVX512F__)
#include "SwPaintKernelsLoops.h"
#endif

namespace Graphics {

const SwPaintKernels* PaintKernelsAVX512() noexcept {
#if defined(__AVX512F__)
    static constexpr SwPaintKernels table = MakeTable("avx512");
    return &table;
#else
    return nullptr;
#endif
}

} // namespace Graphics
