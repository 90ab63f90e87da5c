// SPDX-License-Identifier: MIT
#include "SwKernels.h"

namespace Graphics {

GX_DEFINE_KERNEL_TABLES(SwKernels, kRowKernels)

} // namespace Graphics
