// SPDX-License-Identifier: MIT
// A map of hit tests: a dot for every point asked, dark inside the shape or within four units of its outline. Left: a
// closed curve under the non-zero and the even-odd rule. Right: an open curve, whose closing line has no outline.
#include "Pictures.h"

namespace Gallery {

void DrawHitTest(Canvas& canvas) {
    const auto loop = [](float x, float y) {
        return Curve({x, y},
                     {{x + 150, y - 90},
                      {x + 150, y + 120},
                      {x + 20, y + 30},
                      {x - 40, y - 20},
                      {x + 60, y - 70},
                      {x + 90, y + 50},
                      {x + 95, y + 85},
                      {x - 20, y + 80},
                      {x, y}},
                     true);
    };
    Path shapes[] = {loop(40, 60), loop(40, 190),
                     Curve({220, 200}, {{210, 20}, {300, 10}, {300, 130}, {300, 230}, {380, 230}, {370, 60}})};
    GALLERY_CHECK(GXGeometrySetFillRule(shapes[1].Get(), GXFillRuleEvenOdd));
    const Brush hit = Solid(0xFF264653u), miss = Solid(0xFFE3E7EAu), ink = Solid(0xFFE76F51u);
    for (int y = 4; y < static_cast<int>(kHeight); y += 7) {
        for (int x = 4; x < static_cast<int>(kWidth); x += 7) {
            const GXPoint p = {static_cast<float>(x), static_cast<float>(y)};
            bool any = false;
            for (const Path& shape : shapes) {
                uint8_t answer = 0;
                GALLERY_CHECK(GXGeometryHitTest(shape.Get(), &p, nullptr, 4.0f, &answer));
                any = any || answer != 0;
            }
            canvas.FillEllipse(p, any ? 2.6f : 1.4f, any ? hit : miss);
        }
    }
    for (const Path& shape : shapes) {
        canvas.Stroke(shape, ink, 1.5f);
    }
}

} // namespace Gallery
