// SPDX-License-Identifier: MIT
#include "SwBitmapSurface.h"

#include "../../Bitmaps/Bitmap.h"

namespace Graphics {

Size SwBitmapSurface::GetSize() const { return m_bitmap->GetSize(); }

GXPixelFormat SwBitmapSurface::GetPixelFormat() const { return m_bitmap->Format(); }

PixelView SwBitmapSurface::BeginPaint() {
    m_bitmap->StartPainting();
    return m_bitmap->View();
}

void SwBitmapSurface::EndPaint() { m_bitmap->EndPainting(); }

} // namespace Graphics
