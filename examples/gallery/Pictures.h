// SPDX-License-Identifier: MIT
// The gallery's pictures: one function in a file of its own and one row of main's table each.
#pragma once

#include "Canvas.h"

namespace Gallery {

inline constexpr uint32_t kWidth = 400, kHeight = 280;

void DrawBlendModes(Canvas& canvas);
void DrawGroups(Canvas& canvas);
void DrawMasks(Canvas& canvas);
void DrawStrokes(Canvas& canvas);
void DrawGradients(Canvas& canvas);
void DrawText(Canvas& canvas);
void DrawTilings(Canvas& canvas);
void DrawHitTest(Canvas& canvas);
void DrawRegions(Canvas& canvas);
void DrawShapes(Canvas& canvas);
void DrawPhoto(Canvas& canvas);

} // namespace Gallery
