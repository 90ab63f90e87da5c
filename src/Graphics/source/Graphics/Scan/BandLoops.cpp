// SPDX-License-Identifier: MIT
// The band kernels of one instruction set.
#include "BandSweep.h"
#include "BandWalk.h"

namespace Graphics {

constinit const BandKernels GX_SIMD_NAMESPACE::kBandKernels = {
    {WalkList<1>, WalkList<2>, WalkList<3>, WalkList<4>, WalkList<5>, WalkList<6>, WalkList<7>, WalkList<8>,
     WalkList<12>, WalkList<16>},
    {SweepRow<1>, SweepRow<2>, SweepRow<3>, SweepRow<4>, SweepRow<5>, SweepRow<6>, SweepRow<7>, SweepRow<8>,
     SweepRow<12>, SweepRow<16>},
};

} // namespace Graphics
