// SPDX-License-Identifier: MIT
// The table of one instruction set. Each set's file includes this header once; everything lies in its unnamed
// namespace.
#pragma once

#include "SwGradientLoops.h"
#include "SwPixelLoops.h"
#include "SwSamplerLoops.h"
#include "SwSumLoops.h"

namespace Graphics {
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

constexpr SwPaintKernels MakeTable(const char* name) noexcept {
    return {name,
            Accumulate,
            AccumulatePoints,
            Shade,
            Radial,
            Plane,
            {Indices<0>, Indices<1>, Indices<2>},
            {Taps<0>, Taps<1>, Taps<2>},
            MixRows,
            MixRowsBy,
            ScaleBy,
            PremultiplyRow,
            GX_LAYOUTS(Columns),
            GX_LAYOUTS(Points),
            {GX_LAYOUTS(NearestRow), GX_LAYOUTS(BilinearRow)}};
}

#undef GX_LAYOUTS
#undef GX_INLINE

} // namespace
} // namespace Graphics
