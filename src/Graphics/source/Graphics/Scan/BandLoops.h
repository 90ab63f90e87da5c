// SPDX-License-Identifier: MIT
// The text of the band loops. Each instruction set includes it in a file of its own; everything here has internal
// linkage, so that no set's code can end up in another.
#pragma once

#include "BandSweep.h"
#include "BandWalk.h"

#define GX_BAND_TABLE                                                                                                  \
    {                                                                                                                  \
        {&WalkList<1>, &WalkList<2>, &WalkList<4>, &WalkList<8>}, {                                                    \
            &SweepRow<1>, &SweepRow<2>, &SweepRow<4>, &SweepRow<8>                                                     \
        }                                                                                                              \
    }
