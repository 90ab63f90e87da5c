// SPDX-License-Identifier: MIT
// The band loops, compiled for AVX2.
#include "BandLoops.h"

namespace Graphics {

const BandKernels kBandKernelsAVX2 = GX_BAND_TABLE;

} // namespace Graphics
