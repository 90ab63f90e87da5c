// SPDX-License-Identifier: MIT
// Joins, caps and dashes: the three joins over the centre line, the three caps, dash patterns with each cap, a dashed
// curve, and lines from a hairline up.
#include "Pictures.h"

namespace Gallery {

void DrawStrokes(Canvas& canvas) {
    const Brush ink = Solid(0xFF1F3A5Fu), wire = Solid(0xFFFFD166u), accent = Solid(0xFFD1495Bu);
    for (uint32_t join = GXLineJoinMiter; join <= GXLineJoinBevel; ++join) {
        const GXStrokeStyle style = {join, GXLineCapFlat, 10, 0, 0, {}, 0};
        const float x = 20 + 125 * static_cast<float>(join);
        const Path corner = Polygon({{x, 90}, {x + 50, 28}, {x + 100, 90}}, false);
        canvas.Stroke(corner, ink, 24, &style);
        canvas.Stroke(corner, wire, 2);
    }
    for (uint32_t cap = GXLineCapFlat; cap <= GXLineCapSquare; ++cap) {
        const float y = 125 + 26 * static_cast<float>(cap);
        const GXStrokeStyle solid = {GXLineJoinMiter, cap, 10, 0, 0, {}, 0};
        canvas.Line({30, y}, {120, y}, ink, 16, &solid);
        canvas.Line({30, y}, {120, y}, wire, 2);
        const GXStrokeStyle dashed = {GXLineJoinMiter, cap, 10, 0, 0, {24, 18}, 2};
        canvas.Line({160, y}, {270, y}, accent, 10, &dashed);
        const GXStrokeStyle dotted = {GXLineJoinMiter, cap, 10, 0, 0, {0, 14, 14, 14}, 4};
        canvas.Line({300, y}, {385, y}, accent, 8, &dotted);
    }
    const GXStrokeStyle waves = {GXLineJoinRound, GXLineCapRound, 10, 0, 0, {18, 10, 0, 10}, 4};
    canvas.Stroke(Curve({16, 236}, {{70, 160}, {90, 310}, {150, 236}, {190, 190}, {210, 270}, {240, 236}}),
                  Linear({{0.0f, 0xFF2A9D8Fu}, {1.0f, 0xFF8338ECu}}, {16, 0}, {240, 0}), 7, &waves);
    for (int i = 0; i < 9; ++i) {
        const float step = static_cast<float>(i);
        canvas.Line({270 + 13 * step, 268}, {290 + 13 * step, 206}, ink, 0.5f * step);
    }
}

} // namespace Gallery
