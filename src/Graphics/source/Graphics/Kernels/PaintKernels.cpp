// SPDX-License-Identifier: MIT
#include "PaintKernels.h"

namespace Graphics {

GX_DEFINE_KERNEL_TABLES(PaintKernels, kPaintKernels)

} // namespace Graphics
