// SPDX-License-Identifier: MIT
#include "Guard.h"
#include "Handles.h"
#include "Pixels/Palette.h"

using namespace Graphics;

GXResult GXCreatePalette(const uint32_t* colors, uint64_t count, GXPalette* out) noexcept {
    if (colors == nullptr || count == 0 || out == nullptr) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return std::make_shared<const Palette>(colors, static_cast<size_t>(count)); });
}

GXResult GXPaletteGetNumColors(GXPalette palette, uint64_t* out) noexcept {
    if (AnyNull(palette, out)) {
        return GXResultInvalidArgument;
    }
    *out = palette->object->Count();
    return GXResultSuccess;
}

GXResult GXPaletteGetColor(GXPalette palette, uint64_t index, uint32_t* out) noexcept {
    if (AnyNull(palette, out)) {
        return GXResultInvalidArgument;
    }
    if (index >= palette->object->Count()) {
        return GXResultIndexOutOfRange;
    }
    *out = palette->object->Colors()[index];
    return GXResultSuccess;
}

GXResult GXPaletteGetColors(GXPalette palette, const uint32_t** out) noexcept {
    if (AnyNull(palette, out)) {
        return GXResultInvalidArgument;
    }
    *out = palette->object->Colors();
    return GXResultSuccess;
}
