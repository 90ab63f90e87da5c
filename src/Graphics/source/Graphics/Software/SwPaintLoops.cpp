// SPDX-License-Identifier: MIT
// The paint kernels of one instruction set.
#include "SwGradientLoops.h"
#include "SwPixelLoops.h"
#include "SwSamplerLoops.h"
#include "SwSumLoops.h"

namespace Graphics {
namespace GX_SIMD_NAMESPACE {
namespace {

// Arguments are names of templates. NOLINTBEGIN(bugprone-macro-parentheses)
#define GX_LAYOUTS(loop)                                                                                               \
    {                                                                                                                  \
        loop<SwPixelLayout::Premultiplied>, loop<SwPixelLayout::Straight>, loop<SwPixelLayout::Opaque>,                \
            loop<SwPixelLayout::Triples>                                                                               \
    }
// NOLINTEND(bugprone-macro-parentheses)

template <SwPixelLayout kLayout> constexpr SwSampleRow NearestRow = SampleRow<NearestPoints<kLayout>>;
template <SwPixelLayout kLayout> constexpr SwSampleRow BilinearRow = SampleRow<BilinearPoints<kLayout>>;

} // namespace
} // namespace GX_SIMD_NAMESPACE

constinit const SwPaintKernels GX_SIMD_NAMESPACE::kPaintKernels = {
    Accumulate,
    AccumulatePoints,
    Shade,
    Radial,
    Plane,
    {Indices<0>, Indices<1>, Indices<2>},
    {Taps<0>, Taps<1>, Taps<2>},
    MixRows,
    MixRowsBy,
    GX_LAYOUTS(Columns),
    GX_LAYOUTS(Points),
    {GX_LAYOUTS(NearestRow), GX_LAYOUTS(BilinearRow)},
};

} // namespace Graphics
