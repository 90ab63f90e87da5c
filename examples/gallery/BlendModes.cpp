// SPDX-License-Identifier: MIT
// The sixteen blend modes in their order, row by row: the same coloured wheel over the same landscape.
#include "Pictures.h"

namespace Gallery {

void DrawBlendModes(Canvas& canvas) {
    constexpr float kGap = 4;
    const float w = (canvas.Width() - 5 * kGap) / 4, h = (canvas.Height() - 5 * kGap) / 4;
    for (uint32_t mode = GXBlendModeNormal; mode <= GXBlendModeLuminosity; ++mode) {
        const float x = kGap + static_cast<float>(mode % 4) * (w + kGap);
        const float y = kGap + static_cast<float>(mode / 4) * (h + kGap);
        DrawLandscape(canvas, {x, y, x + w, y + h});
        canvas.Push();
        canvas.Clip({x, y, x + w, y + h});
        canvas.Blend(mode);
        canvas.Fill(Star({x + w / 2, y + h / 2}, 0.48f * h, 0.8f, 12),
                    Linear({{0.2f, 0xFFE83F3Fu},
                            {0.2f, 0xFFF5D33Bu},
                            {0.4f, 0xFFF5D33Bu},
                            {0.4f, 0xFF46C25Cu},
                            {0.6f, 0xFF46C25Cu},
                            {0.6f, 0xFF3D7BE8u},
                            {0.8f, 0xFF3D7BE8u},
                            {0.8f, 0xFF9A4FC0u}},
                           {x + w / 2 - 0.48f * h, y}, {x + w / 2 + 0.48f * h, y}));
        canvas.Pop();
    }
}

} // namespace Gallery
