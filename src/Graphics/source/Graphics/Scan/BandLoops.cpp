// SPDX-License-Identifier: MIT
// The band kernels of one instruction set.
#include "BandBytes.h"
#include "BandPaint.h"
#include "BandPlanes.h"
#include "BandResolve.h"
#include "BandSweep.h"
#include "BandWalk.h"

namespace Graphics {
namespace GX_SIMD_NAMESPACE {
namespace {

#ifdef GX_SIMD_PAIRS
constexpr uint32_t kMostInFewPlanes = 31;
#else
constexpr uint32_t kMostInFewPlanes = 7;
#endif

#define GX_EACH_FORM(loop)                                                                                             \
    {                                                                                                                  \
        loop<Planes<1>>, loop<Planes<2>>, loop<Planes<3>>, loop<Planes<4>>, loop<Planes<5>>, loop<Bytes>,              \
            loop<Planes<12>>, loop<Planes<16>>                                                                         \
    }

} // namespace
} // namespace GX_SIMD_NAMESPACE

constinit const BandKernels GX_SIMD_NAMESPACE::kBandKernels = {
    kMostInFewPlanes, GX_EACH_FORM(WalkList), GX_EACH_FORM(SweepRow), GX_EACH_FORM(PaintRows), ResolveRow,
};

} // namespace Graphics
