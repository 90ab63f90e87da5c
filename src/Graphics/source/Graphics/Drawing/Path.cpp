// SPDX-License-Identifier: MIT
#include "Path.h"

namespace Graphics {

bool GlyphRun::IsBlank() const {
    for (const uint16_t* unit = text; *unit != 0; ++unit) {
        if (!font->Glyph(*unit).shape.Empty()) {
            return false;
        }
    }
    return true;
}

} // namespace Graphics
