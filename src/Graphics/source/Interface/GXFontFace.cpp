// SPDX-License-Identifier: MIT
// Font faces.
#include "Guard.h"
#include "Handles.h"
#include "Text/Font.h"

using namespace Graphics;

GXResult GXCreateFontFace(const uint16_t* faceName, uint32_t flags, float size, GXFontFace* out) noexcept {
    if (AnyNull(faceName, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return std::make_shared<const Font>(FontBase::Create(faceName, flags, size)); });
}

GXResult GXFontFaceCalculateTextBound(GXFontFace fontFace, const uint16_t* text, float* out) noexcept {
    if (AnyNull(fontFace, text, out)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] {
        const Font& font = *fontFace->object;
        const float width = font.TextWidth(text);
        out[0] = width;
        out[1] = font.GetSize();
    });
}
