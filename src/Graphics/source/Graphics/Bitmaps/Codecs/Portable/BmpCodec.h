// SPDX-License-Identifier: MIT
// Reads and writes Windows bitmap files without a library.
#pragma once

#include "../ImageCodec.h"

namespace Graphics {

class BmpCodec final : public ImageCodec {
public:
    [[nodiscard]] bool Recognizes(std::span<const uint8_t> head) const noexcept override;
    [[nodiscard]] std::unique_ptr<ImageDecoder> Open(ByteSource& source) const override;
    [[nodiscard]] bool Writes(std::string_view name) const noexcept override;
    void Save(const SysMemBitmap& image, std::string_view name, ByteSink& sink) const override;
};

} // namespace Graphics
