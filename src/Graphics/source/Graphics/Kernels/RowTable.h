// SPDX-License-Identifier: MIT
// The order of a set's functions in its table. Every set gives them the same names; its GX_MODES lists its classes of
// modes in the order of their numbers.
#pragma once

#include "RowKernels.h"

#define GX_KERNEL_TABLE                                                                                                \
    {                                                                                                                  \
        Fill32, FillBlock, Expect, SetOpaque, CopyOpaque, NormalSolid, SolidRuns, NormalSolidBlock, SolidRectangle,    \
            NormalVarying, GX_MODES(GX_BLEND_ROW), GX_MODES(GX_BLEND_SOLID_ROW), LayerRow<LayerOver>,                  \
            GX_MODES(GX_LAYER_ROW), GroupResult, {MaskValues<0>, MaskValues<1>, MaskValues<2>, MaskValues<3>},         \
            ScaleShape, ScaleColor, ScaleColorBy, PremultiplyRow, ReplaceSolid, Invert                                 \
    }
