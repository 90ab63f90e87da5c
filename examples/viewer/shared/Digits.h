// SPDX-License-Identifier: MIT
// Numbers drawn as lines: the same on every machine, whatever fonts it has.
#pragma once

#include <GX/GX.h>

namespace Viewer {

// `center` and `top` in pixels. Throws Gxr::Error.
void DrawNumber(GXRenderTarget target, int number, int center, int top, uint32_t argb);

} // namespace Viewer
