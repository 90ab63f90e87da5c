// SPDX-License-Identifier: MIT
// Font faces.
#include "Guard.h"

using namespace Graphics;

GXResult GXCreateFontFace(const uint16_t* faceName, uint32_t, float, GXFontFace* out) noexcept {
    if (AnyNull(faceName, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Font::Font", "Not implemented");
}

GXResult GXFontFaceCalculateTextBound(GXFontFace fontFace, const uint16_t* text, float* out) noexcept {
    if (AnyNull(fontFace, text, out)) {
        return GXResultInvalidArgument;
    }
    return Unavailable("Graphics::Font::CalculateTextBound", "Not implemented");
}
