// SPDX-License-Identifier: MIT
// What the tests of image files share: bytes in memory, loading, and pixels as straight ARGB whatever the format is.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "Bitmaps/Codecs/ImageFile.h"
#include "Bitmaps/PixelTransfer.h"
#include "Exception.h"

namespace ImageSupport {

using Bytes = std::vector<uint8_t>;

inline std::shared_ptr<Graphics::Bitmap> Load(const Bytes& file) {
    return Graphics::ImageFile::LoadFromMemory(file.data(), file.size());
}

/// The message of a refused load; empty when it succeeded.
inline std::string Refusal(const Bytes& file) {
    try {
        (void)Load(file);
        return {};
    } catch (const Graphics::Exception& e) {
        return e.what();
    }
}

inline std::vector<uint32_t> Argb(const Graphics::Bitmap& bitmap) {
    const Graphics::PixelView view = bitmap.View();
    std::vector<uint32_t> pixels(static_cast<size_t>(view.width) * static_cast<size_t>(view.height));
    Graphics::PixelView out;
    out.data = reinterpret_cast<uint8_t*>(pixels.data());
    out.strideBytes = view.width * 4;
    out.width = view.width;
    out.height = view.height;
    out.format = GXPixelFormatBGRA32;
    Graphics::PixelTransfer::Copy(out, view);
    return pixels;
}

inline Bytes RandomBytes(size_t count, std::mt19937& random) {
    Bytes bytes(count);
    for (uint8_t& b : bytes) {
        b = static_cast<uint8_t>(random() % 4 == 0 ? (random() % 2) * 255 : random());
    }
    return bytes;
}

/// No shortened file loads, and none with changed bytes does harm.
inline void ExpectDamageIsRefused(const Bytes& file, uint32_t seed) {
    ASSERT_EQ(Refusal(file), "");
    const size_t step = file.size() / 300 + 1;
    for (size_t n = 0; n < file.size(); n += step) {
        EXPECT_EQ(Refusal(Bytes(file.begin(), file.begin() + static_cast<ptrdiff_t>(n))), "Failed to load") << n;
    }
    std::mt19937 random(seed);
    for (int round = 0; round < 300; ++round) {
        Bytes damaged = file;
        for (uint32_t k = 0; k <= random() % 3; ++k) {
            damaged[random() % damaged.size()] = static_cast<uint8_t>(random());
        }
        const std::string refusal = Refusal(damaged);
        EXPECT_TRUE(refusal.empty() || refusal == "Failed to load") << refusal;
    }
}

} // namespace ImageSupport
