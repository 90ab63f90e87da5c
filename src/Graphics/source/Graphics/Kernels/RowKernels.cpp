// SPDX-License-Identifier: MIT
#include "RowKernels.h"

namespace Graphics {

GX_DEFINE_KERNEL_TABLES(RowKernels, kRowKernels)

} // namespace Graphics
