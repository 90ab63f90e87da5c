// SPDX-License-Identifier: MIT
#include "SwBitmapSurface.h"

#include "../Bitmaps/Bitmap.h"

namespace Graphics {

Size SwBitmapSurface::GetSize() const { return m_bitmap->GetSize(); }

GXPixelFormat SwBitmapSurface::GetPixelFormat() const { return m_bitmap->Format(); }

PixelView SwBitmapSurface::BeginPaint() { return m_bitmap->View(); }

void SwBitmapSurface::EndPaint() { m_bitmap->NotifyChanged(); }

} // namespace Graphics
