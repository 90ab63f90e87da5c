// SPDX-License-Identifier: MIT
// The codecs on the free libraries: each has one object, made when the library is loaded.
#pragma once

#include "../ImageCodec.h"

namespace Graphics {

/// Through libpng.
[[nodiscard]] const ImageCodec& PngFiles() noexcept;
/// Through libjpeg-turbo.
[[nodiscard]] const ImageCodec& JpegFiles() noexcept;
/// Through libtiff.
[[nodiscard]] const ImageCodec& TiffFiles() noexcept;
/// Through giflib; read only.
[[nodiscard]] const ImageCodec& GifFiles() noexcept;

} // namespace Graphics
