// SPDX-License-Identifier: MIT
// Image files of every kind that the system's GDI+ reads and writes. GDI+ is up during each load and save only.
#pragma once

#include "../ImageCodec.h"

namespace Graphics {

class GdipCodec final : public ImageCodec {
public:
    /// Everything: GDI+ finds out by itself. Asked last.
    [[nodiscard]] bool Recognizes(std::span<const uint8_t> head) const noexcept override;
    /// Raises "Failed to initialize GDI+" for the host, as do the others.
    [[nodiscard]] std::unique_ptr<ImageDecoder> Open(ByteSource& source) const override;
    [[nodiscard]] bool Writes(std::string_view name) const override;
    /// Raises what GdipBitmap raises for the host.
    void Save(const SysMemBitmap& image, std::string_view name, ByteSink& sink) const override;
};

} // namespace Graphics
