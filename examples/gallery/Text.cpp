// SPDX-License-Identifier: MIT
// Text in the platform's default face: sizes, styles, a gradient (it follows each glyph), turned and slanted letters.
#include "Pictures.h"

namespace Gallery {
namespace {

void Write(Canvas& canvas, const char16_t* text, uint32_t flags, float size, GXPoint origin, const Brush& brush) {
    const uint16_t defaultFace[] = {0};
    std::vector<uint16_t> units;
    do {
        units.push_back(static_cast<uint16_t>(*text));
    } while (*text++ != 0);
    Handle<GXFontFace> face;
    GALLERY_CHECK(GXCreateFontFace(defaultFace, flags, size, face.Out()));
    canvas.Push();
    canvas.Translate(origin.x, origin.y);
    GALLERY_CHECK(GXRenderTargetFillText(canvas.Target(), face.Get(), units.data(), brush.Get()));
    canvas.Pop();
}

} // namespace

void DrawText(Canvas& canvas) {
    const Brush ink = Solid(0xFF1B263Bu);
    Write(canvas, u"Äther \u2013 \u03A9\u03BC\u03AD\u03B3\u03B1 \u2013 \u041C\u0438\u0440", GXFontBold, 20, {14, 42},
          Linear({{0.0f, 0xFF7209B7u}, {0.5f, 0xFFF72585u}, {1.0f, 0xFFFB8500u}}, {0, -24}, {0, 2}));
    float y = 68;
    for (const float size : {6.0f, 7.0f, 8.0f, 9.5f, 12.0f, 14.0f}) {
        y += 1.35f * size;
        Write(canvas, u"Hamburgefonts, small to large", size == 12.0f ? uint32_t{GXFontItalic} : 0u, size, {14, y},
              ink);
    }
    for (int i = 0; i < 9; ++i) {
        canvas.Push();
        canvas.Translate(300, 248);
        const auto step = static_cast<float>(i);
        GALLERY_CHECK(GXRenderTargetRotateCTM(canvas.Target(), -3.14159265f + 0.3927f * step));
        Write(canvas, u"turned", 0, 13, {26, 5},
              Solid(0xFF000000u | (0x20u + 24u * static_cast<uint32_t>(i)) << 16 | 0x5FA0u));
        canvas.Pop();
    }
    canvas.Push();
    canvas.Translate(14, 262);
    const GXMatrix slant = {1.0f, 0.0f, -0.5f, 1.6f, 0.0f, 0.0f};
    GALLERY_CHECK(GXRenderTargetConcatCTM(canvas.Target(), &slant));
    Write(canvas, u"slanted", GXFontBold, 26, {0, 0}, Solid(0xFF2A9D8Fu));
    canvas.Pop();
}

} // namespace Gallery
