// SPDX-License-Identifier: MIT
// The four kinds of transparency group: isolated in the left column, not in the right one; without knockout above, with
// knockout below. Each holds the same three circles, drawn with Multiply; the group is drawn at full opacity.
#include "Pictures.h"

namespace Gallery {

void DrawGroups(Canvas& canvas) {
    const float w = canvas.Width() / 2, h = canvas.Height() / 2;
    for (int kind = 0; kind < 4; ++kind) {
        const bool isolated = kind % 2 == 0, knockout = kind >= 2;
        const float x = w * static_cast<float>(kind % 2), y = h * static_cast<float>(kind / 2);
        const GXRect cell = {x + 4, y + 4, x + w - 4, y + h - 4};
        canvas.Push();
        canvas.Clip(cell);
        canvas.FillRect(cell,
                        Linear({{0.0f, 0xFFFFFFFFu}, {0.5f, 0xFFFFF2B8u}, {0.5f, 0xFF8FD0C8u}, {1.0f, 0xFF5FA8C8u}},
                               {cell.left, 0}, {cell.right, 0}));
        canvas.BeginLayer(isolated, knockout);
        canvas.Blend(GXBlendModeMultiply);
        const GXPoint centers[] = {
            {x + w / 2, y + 0.36f * h}, {x + w / 2 - 26, y + 0.64f * h}, {x + w / 2 + 26, y + 0.64f * h}};
        const uint32_t colors[] = {0xFF4FC3E8u, 0xFFF0609Eu, 0xFFF7D64Au};
        for (int i = 0; i < 3; ++i) {
            canvas.FillEllipse(centers[i], 0.27f * h, Solid(colors[i]));
        }
        canvas.EndLayer();
        canvas.Pop();
    }
}

} // namespace Gallery
