// SPDX-License-Identifier: MIT
// An image file opened by GDI+.
#pragma once

#include <optional>

#include "../../../Windows/GdiplusScope.h"
#include "../ImageCodec.h"
#include "GlobalStream.h"

namespace Graphics {

/// Starts GDI+ for one load or save. Raises "Failed to initialize GDI+" for the host.
[[nodiscard]] inline GdiplusScope StartForImages() {
    return KeepMessage([] { return GdiplusScope("Failed to initialize GDI+"); });
}

class GdipDecoder final : public ImageDecoder {
public:
    /// Throws ImageError, and what StartForImages throws.
    explicit GdipDecoder(ByteSource& source);
    ~GdipDecoder() override;

    [[nodiscard]] uint32_t CountFrames() override;
    [[nodiscard]] std::shared_ptr<SysMemBitmap> Load(uint32_t frame) override;

private:
    void CopyPixels(SysMemBitmap& image, Gdiplus::PixelFormat format) const;
    [[nodiscard]] std::shared_ptr<const Palette> ReadPalette() const;

    const GdiplusScope m_scope;
    std::optional<GlobalStream> m_stream; // used for a file in memory
    Gdiplus::GpBitmap* m_bitmap = nullptr;
    std::optional<GUID> m_dimension; // of the frames, set when they are counted
};

} // namespace Graphics
