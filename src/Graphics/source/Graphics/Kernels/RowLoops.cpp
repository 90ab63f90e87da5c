// SPDX-License-Identifier: MIT
// The row kernels of one instruction set.
#include "RowBlends.h"
#include "RowNormal.h"
#include "RowQuads.h"
#include "RowScales.h"
#include "RowTable.h"

namespace Graphics {
namespace GX_SIMD_NAMESPACE {
namespace {

#define GX_MODES(row)                                                                                                  \
    {                                                                                                                  \
        row(0, Paired<Normal>), row(1, Paired<Multiply>), row(2, Paired<Screen>), row(3, Paired<Overlay>),             \
            row(4, Paired<Darken>), row(5, Paired<Lighten>), row(6, Wide<ColorBurn>), row(7, Wide<ColorDodge>),        \
            row(8, Paired<HardLight>), row(9, Wide<SoftLight>), row(10, Paired<Difference>),                           \
            row(11, Paired<Exclusion>), row(12, Hue), row(13, Saturation), row(14, HueAndSaturation),                  \
            row(15, Luminosity), row(16, Paired<Normal>)                                                               \
    }
#define GX_BLEND_ROW(number, ...) BlendRow<number, __VA_ARGS__>
#define GX_BLEND_SOLID_ROW(number, ...) BlendSolidRow<number, __VA_ARGS__>
#define GX_LAYER_ROW(number, ...) LayerRow<LayerBlended<__VA_ARGS__>, number>

#ifdef GX_SIMD_QUADS
namespace Quads { // whose functions hide those of their names
constexpr RowKernels kTable = GX_KERNEL_TABLE;
}
using Quads::kTable;
#else
constexpr RowKernels kTable = GX_KERNEL_TABLE;
#endif

} // namespace
} // namespace GX_SIMD_NAMESPACE

constinit const RowKernels GX_SIMD_NAMESPACE::kRowKernels = GX_SIMD_NAMESPACE::kTable;

} // namespace Graphics
