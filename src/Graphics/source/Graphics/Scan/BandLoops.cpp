// SPDX-License-Identifier: MIT
// The band kernels of one instruction set.
#include "BandBytes.h"
#include "BandPaint.h"
#include "BandPlanes.h"
#include "BandResolve.h"
#include "BandSweep.h"
#include "BandWalk.h"

namespace Graphics {

constinit const BandKernels GX_SIMD_NAMESPACE::kBandKernels = {
    {WalkList<Planes<1>>, WalkList<Planes<2>>, WalkList<Planes<3>>, WalkList<Bytes>, WalkList<Planes<12>>,
     WalkList<Planes<16>>},
    {SweepRow<Planes<1>>, SweepRow<Planes<2>>, SweepRow<Planes<3>>, SweepRow<Bytes>, SweepRow<Planes<12>>,
     SweepRow<Planes<16>>},
    {PaintRows<Planes<1>>, PaintRows<Planes<2>>, PaintRows<Planes<3>>, PaintRows<Bytes>, PaintRows<Planes<12>>,
     PaintRows<Planes<16>>},
    ResolveRow,
};

} // namespace Graphics
