// SPDX-License-Identifier: MIT
// The place of the GDI glyph service, which this build does not have yet.
#include "../FontBase.h"

#include "../../Exception.h"

namespace Graphics {

std::shared_ptr<const FontBase> FontBase::Create(const uint16_t*, uint32_t, float) {
    GX_RAISE("Graphics::FontBase::Create", "Not implemented");
}

} // namespace Graphics
