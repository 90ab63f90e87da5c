// SPDX-License-Identifier: MIT
// The row loops of the vector sets and the table they fill; all of them have internal linkage. Included last by a set's
// source, after SwKernelsVector.h and the set's own primitives:
//   Load, Store       a full vector of pixels;      LoadPart, StorePart    the first n < kLanes pixels, zeros beyond
//   Widen, Narrow     kLanes bytes to lanes, back;  WidenPart, NarrowPart  the first n < kLanes bytes
//   Sqrt              correctly rounded;            AllSet                 whether every lane of a mask is set
//   BytesAre          whether kLanes bytes all equal one;                  kNarrower  the next narrower set's table
#pragma once

#include "SwKernelsBlends.h"
#include "SwKernelsNormal.h"
#include "SwKernelsScales.h"
#include "SwKernelsTable.h"

namespace Graphics::GX_KERNEL_NAMESPACE {
namespace {

#define GX_MODES(row)                                                                                                  \
    {                                                                                                                  \
        row(0, Normal), row(1, Paired<Multiply>), row(2, Paired<Screen>), row(3, Paired<Overlay>), row(4, Darken),     \
            row(5, Lighten), row(6, Wide<ColorBurn>), row(7, Wide<ColorDodge>), row(8, Paired<HardLight>),             \
            row(9, Wide<SoftLight>), row(10, Difference), row(11, Paired<Exclusion>), row(12, Hue),                    \
            row(13, Saturation), row(14, HueAndSaturation), row(15, Luminosity), row(16, Normal)                       \
    }
#define GX_BLEND_ROW(number, ...) BlendRow<number, __VA_ARGS__>
#define GX_BLEND_SOLID_ROW(number, ...) BlendSolidRow<number, __VA_ARGS__>
#define GX_LAYER_ROW(number, ...) LayerRow<LayerBlended<__VA_ARGS__>>

constexpr SwKernels kTable = GX_KERNEL_TABLE(kSetName);

} // namespace
} // namespace Graphics::GX_KERNEL_NAMESPACE
