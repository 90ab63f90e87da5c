// SPDX-License-Identifier: MIT
// The paint loops on vectors of eight words; built with the flags of that instruction set.
#include "SwPaintKernels.h"

#if defined(__AVX2__)
#include "SwPaintKernelsLoops.h"
#endif

namespace Graphics {

const SwPaintKernels* PaintKernelsAVX2() noexcept {
#if defined(__AVX2__)
    static constexpr SwPaintKernels table = MakeTable("avx2");
    return &table;
#else
    return nullptr;
#endif
}

} // namespace Graphics
