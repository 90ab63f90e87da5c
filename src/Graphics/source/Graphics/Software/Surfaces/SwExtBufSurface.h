// SPDX-License-Identifier: MIT
// A surface on the host's memory. Bytes beyond width * bits-per-pixel of a row are not accessed.
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
    // Replaces the host's memory while painting if its 32-bit rows are not aligned to 4 bytes.
    HeapArray<uint8_t> m_aligned;
};

} // namespace Graphics
