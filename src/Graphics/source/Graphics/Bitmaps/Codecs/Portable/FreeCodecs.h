// SPDX-License-Identifier: MIT
// The codecs based on free libraries, one object each, created when the library is loaded.
#pragma once

#include <memory>
#include <string_view>

#include "../ImageCodec.h"

namespace Graphics {

/// The common part of codecs that write; `Writer::kName` is the format.
template <class Decoder, class Writer> class FreeCodec : public ImageCodec {
public:
    [[nodiscard]] std::unique_ptr<ImageDecoder> Open(ByteSource& source) const final {
        return std::make_unique<Decoder>(source);
    }
    [[nodiscard]] bool Writes(std::string_view name) const noexcept final { return name == Writer::kName; }
    void Save(const SysMemBitmap& image, std::string_view, ByteSink& sink) const final { Writer(sink).Write(image); }
};

/// Through libpng.
[[nodiscard]] const ImageCodec& PngFiles() noexcept;
/// Through libjpeg-turbo.
[[nodiscard]] const ImageCodec& JpegFiles() noexcept;
/// Through libtiff.
[[nodiscard]] const ImageCodec& TiffFiles() noexcept;
/// Through giflib; read only.
[[nodiscard]] const ImageCodec& GifFiles() noexcept;

} // namespace Graphics
