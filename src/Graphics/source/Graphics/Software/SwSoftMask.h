// SPDX-License-Identifier: MIT
// A soft mask of the graphics state: a brush, how a pixel of it becomes a mask value, and the matrix it was set under.
#pragma once

#include <memory>

#include "../Matrix.h"

namespace Graphics {

class Brush;

struct SwSoftMask {
    std::shared_ptr<const Brush> brush; ///< null: no mask
    uint32_t type = 0;                  ///< 0 alpha, 1 inverse alpha, 2 luminosity, 3 inverse luminosity
    Matrix transform = kIdentity;

    [[nodiscard]] bool IsSet() const noexcept { return brush != nullptr; }
};

} // namespace Graphics
