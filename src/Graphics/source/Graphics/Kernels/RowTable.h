// SPDX-License-Identifier: MIT
// The order of a set's functions in its table. All sets use the same names; GX_MODES of a set lists its mode classes by
// number.
#pragma once

#include "RowKernels.h"

#define GX_KERNEL_TABLE                                                                                                \
    {                                                                                                                  \
        Fill32, FillBlock, Prefetch, SetOpaque, CopyOpaque, NormalSolid, SolidRuns, NormalSolidBlock, SolidRectangle,  \
            SolidSamples, NormalVarying, GX_MODES(GX_BLEND_ROW), GX_MODES(GX_BLEND_SOLID_ROW), LayerRow<LayerOver>,    \
            GX_MODES(GX_LAYER_ROW), GroupResult, {MaskValues<0>, MaskValues<1>, MaskValues<2>, MaskValues<3>},         \
            ScaleShape, ScaleColor, ScaleColorBy, PremultiplyRow, ReplaceSolid, Invert                                 \
    }
