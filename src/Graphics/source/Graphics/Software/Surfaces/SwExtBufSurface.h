// SPDX-License-Identifier: MIT
// A surface on the host's memory. Nothing outside width * bits-per-pixel of each row is touched.
#pragma once

#include "../../ProcessHeap.h"
#include "SwSurface.h"

namespace Graphics {

class SwExtBufSurface final : public SwSurface {
public:
    /// Raises "Unsupported pixel format.", "Invalid bitmap dimensions", "Bitmap is too big" or "Invalid stride".
    SwExtBufSurface(void* pixels, GXPixelFormat format, const GXExtBufLayout& layout);
    [[nodiscard]] Size GetSize() const override;
    [[nodiscard]] GXPixelFormat GetPixelFormat() const override { return m_view.format; }
    [[nodiscard]] PixelView BeginPaint() override;
    void EndPaint() override;
    void Abandon() override { EndPaint(); }

private:
    [[nodiscard]] bool IsAligned() const noexcept;

    PixelView m_view;
    // Drawn into instead where the host's rows of 32-bit pixels do not lie at multiples of 4 bytes.
    HeapArray<uint8_t> m_aligned;
};

} // namespace Graphics
