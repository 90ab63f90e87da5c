// SPDX-License-Identifier: MIT
// The checksum of a drawn page: what the recordings' list of checksums holds.
#pragma once

#include <GX/GX.h>

#include <cstdint>

namespace Gxr {

// FNV-1a of 64 bits over rows of `rowBytes`, top down, padding left out.
inline uint64_t PixelChecksum(const void* pixels, uint64_t stride, uint64_t rowBytes, uint32_t rows) {
    uint64_t sum = 0xCBF29CE484222325u;
    for (uint32_t y = 0; y < rows; ++y) {
        const auto* row = static_cast<const unsigned char*>(pixels) + y * stride;
        for (uint64_t i = 0; i < rowBytes; ++i)
            sum = (sum ^ row[i]) * 0x100000001B3u;
    }
    return sum;
}

} // namespace Gxr
