// SPDX-License-Identifier: MIT
// What a software target paints into: it gives the pixels at BeginPaint and brings them to their place afterwards.
#pragma once

#include "../../Pixels/PixelView.h"

namespace Graphics {

class SwSurface {
public:
    virtual ~SwSurface() = default;
    [[nodiscard]] virtual Size GetSize() const = 0;
    [[nodiscard]] virtual GXPixelFormat GetPixelFormat() const = 0;
    /// Before every frame: follows a destination whose size or format may change between frames.
    virtual void UpdateSurface() {}
    /// The drawable pixels, valid until EndPaint.
    [[nodiscard]] virtual PixelView BeginPaint() = 0;
    virtual void EndPaint() = 0;
    /// The target ends without EndPaint: what was drawn stays where the destination is memory, and is not shown.
    virtual void Abandon() {}

protected:
    /// The format of a back buffer for a display of so many bits a pixel; raises "Unsupported pixel format."
    [[nodiscard]] static GXPixelFormat GetCompatibleFormat(int bitsPerPixel);
};

} // namespace Graphics
