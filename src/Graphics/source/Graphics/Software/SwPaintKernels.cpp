// SPDX-License-Identifier: MIT
#include "SwPaintKernels.h"

namespace Graphics {

GX_DEFINE_KERNEL_TABLES(SwPaintKernels, kPaintKernels)

} // namespace Graphics
