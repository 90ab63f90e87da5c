// SPDX-License-Identifier: MIT
// Image files of every kind that GDI+ reads and writes. GDI+ runs only during each load and save.
#pragma once

#include "../ImageCodec.h"

namespace Graphics {

class GdipCodec final : public ImageCodec {
public:
    /// Always true: GDI+ recognises the kind itself. This codec is tried last.
    [[nodiscard]] bool Recognizes(std::span<const uint8_t> head) const noexcept override;
    /// This and the functions below raise "Failed to initialize GDI+" for the host.
    [[nodiscard]] std::unique_ptr<ImageDecoder> Open(ByteSource& source) const override;
    [[nodiscard]] bool Writes(std::string_view name) const override;
    /// Raises what GdipBitmap raises for the host.
    void Save(const SysMemBitmap& image, std::string_view name, ByteSink& sink) const override;
};

} // namespace Graphics
