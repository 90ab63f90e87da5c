// SPDX-License-Identifier: MIT
// The destination of a software target: provides the pixels at BeginPaint and delivers them afterwards.
#pragma once

#include "../../Pixels/PixelView.h"

namespace Graphics {

class SwSurface {
public:
    virtual ~SwSurface() = default;
    [[nodiscard]] virtual Size GetSize() const = 0;
    [[nodiscard]] virtual GXPixelFormat GetPixelFormat() const = 0;
    /// Called before every frame: adapts to a destination whose size or format has changed.
    virtual void UpdateSurface() {}
    /// The drawable pixels, valid until EndPaint.
    [[nodiscard]] virtual PixelView BeginPaint() = 0;
    virtual void EndPaint() = 0;
    /// The target ends without EndPaint: pixels drawn so far remain in memory but are not presented.
    virtual void Abandon() {}

protected:
    /// The back buffer format for a display of `bitsPerPixel`; raises "Unsupported pixel format."
    [[nodiscard]] static GXPixelFormat GetCompatibleFormat(int bitsPerPixel);
};

} // namespace Graphics
