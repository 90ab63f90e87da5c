// SPDX-License-Identifier: MIT
// A GDI bitmap with memory that the engine can draw into: 32 bits, rows from the top down.
#pragma once

#include "../Pixels/PixelView.h"
#include "DCHandle.h"

namespace Graphics {

class DibSection {
public:
    DibSection() noexcept = default;

    /// The pixels are zero. Raises "CreateDIBSection fail" under the name `raiser`.
    DibSection(const char* raiser, int32_t width, int32_t height, float dpiX, float dpiY);

    [[nodiscard]] HBITMAP Get() const noexcept { return m_bitmap.Get(); }
    /// Passes ownership of the bitmap to the caller.
    [[nodiscard]] HBITMAP Release() noexcept { return m_bitmap.Release(); }

    /// The pixels, interpreted in one of the 32-bit formats.
    [[nodiscard]] PixelView View(GXPixelFormat format) const noexcept;

private:
    GdiBitmap m_bitmap;
    void* m_pixels = nullptr;
    int32_t m_width = 0;
    int32_t m_height = 0;
};

} // namespace Graphics
