// SPDX-License-Identifier: MIT
// The band loops, compiled for AVX512.

// GCC 12 takes the deliberately undefined operands inside its own intrinsics for mistakes.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

#include "BandLoops.h"

namespace Graphics {

const BandKernels kBandKernelsAVX512 = GX_BAND_TABLE;

} // namespace Graphics
