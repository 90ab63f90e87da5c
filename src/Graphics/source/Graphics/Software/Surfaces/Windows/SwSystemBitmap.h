// SPDX-License-Identifier: MIT
// A bitmap that both the engine and GDI can draw into: through its memory and through its own device context.
#pragma once

#include <optional>

#include "../../../Windows/DibSection.h"

namespace Graphics {

class SwSystemBitmap {
public:
    /// A context in memory like `like`, with a picture of BGRX32 pixels in it, all white. Raises "CreateCompatibleDC is
    /// failed.", "CreateDIBSection fail", "Invalid bitmap dimensions", "Bitmap is too big".
    SwSystemBitmap(HDC like, int64_t width, int64_t height, float dpiX, float dpiY);

    [[nodiscard]] HDC Context() const noexcept { return m_context.Get(); }
    [[nodiscard]] PixelView View() const noexcept { return m_bitmap.View(GXPixelFormatBGRX32); }
    void MakeWhite() noexcept;

private:
    [[nodiscard]] static DibSection CreateNativeBitmap(int64_t width, int64_t height, float dpiX, float dpiY);

    // Order matters: the selection must end before the bitmap.
    DCHandle m_context;
    DibSection m_bitmap;
    std::optional<GdiSelection> m_selection;
};

} // namespace Graphics
