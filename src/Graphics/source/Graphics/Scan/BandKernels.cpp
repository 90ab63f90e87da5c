// SPDX-License-Identifier: MIT
#include "BandKernels.h"

namespace Graphics {

GX_DEFINE_KERNEL_TABLES(BandKernels, kBandKernels)

} // namespace Graphics
