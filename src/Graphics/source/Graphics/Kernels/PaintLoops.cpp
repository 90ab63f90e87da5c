// SPDX-License-Identifier: MIT
// The paint kernels of one instruction set.
#include "GradientLoops.h"
#include "PixelLoops.h"
#include "SamplerLoops.h"
#include "SumLoops.h"

namespace Graphics {
namespace GX_SIMD_NAMESPACE {
namespace {

// Arguments are names of templates. NOLINTBEGIN(bugprone-macro-parentheses)
#define GX_LAYOUTS(loop)                                                                                               \
    {                                                                                                                  \
        loop<PixelLayout::Premultiplied>, loop<PixelLayout::Straight>, loop<PixelLayout::Opaque>,                      \
            loop<PixelLayout::Triples>                                                                                 \
    }
// NOLINTEND(bugprone-macro-parentheses)

template <PixelLayout kLayout> constexpr SampleFunction NearestRow = SampleRow<NearestPoints<kLayout>>;
template <PixelLayout kLayout> constexpr SampleFunction BilinearRow = SampleRow<BilinearPoints<kLayout>>;

} // namespace
} // namespace GX_SIMD_NAMESPACE

constinit const PaintKernels GX_SIMD_NAMESPACE::kPaintKernels = {
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
