// SPDX-License-Identifier: MIT
// What a software target paints into: it gives the pixels at BeginPaint and brings them to their place afterwards.
#pragma once

#include "../Pixels/PixelView.h"

namespace Graphics {

class SwSurface {
public:
    virtual ~SwSurface() = default;
    [[nodiscard]] virtual Size GetSize() const = 0;
    [[nodiscard]] virtual GXPixelFormat GetPixelFormat() const = 0;
    /// The drawable pixels, valid until EndPaint.
    [[nodiscard]] virtual PixelView BeginPaint() = 0;
    virtual void EndPaint() = 0;
};

} // namespace Graphics
