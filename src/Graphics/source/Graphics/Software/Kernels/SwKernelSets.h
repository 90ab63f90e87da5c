// SPDX-License-Identifier: MIT
// The tables that the build contains, seen by the selection alone. Null where the compiler does not target the set.
#pragma once

#include "SwKernels.h"

namespace Graphics {

extern const SwKernels* const kSwKernelsScalar;
extern const SwKernels* const kSwKernelsSSE2;
extern const SwKernels* const kSwKernelsAVX2;
extern const SwKernels* const kSwKernelsAVX512;

} // namespace Graphics
