// SPDX-License-Identifier: MIT
// The codecs of a Windows build.
#include "../BmpCodec.h"

namespace Graphics {

std::span<const ImageCodec* const> PlatformCodecs() noexcept {
    static const BmpCodec bmp;
    static const ImageCodec* const all[] = {&bmp};
    return all;
}

} // namespace Graphics
