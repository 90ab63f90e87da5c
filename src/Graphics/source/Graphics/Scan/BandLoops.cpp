// SPDX-License-Identifier: MIT
// The band kernels of one instruction set.
#include "BandSweep.h"
#include "BandWalk.h"

namespace Graphics {

constinit const BandKernels GX_SIMD_NAMESPACE::kBandKernels = {
    {WalkList<1>, WalkList<2>, WalkList<4>, WalkList<8>},
    {SweepRow<1>, SweepRow<2>, SweepRow<4>, SweepRow<8>},
};

} // namespace Graphics
