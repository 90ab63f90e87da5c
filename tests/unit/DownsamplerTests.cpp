// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "Exception.h"
#include "Pixels/Box2x2Downsampler.h"
#include "Pixels/PixelFormat.h"

using namespace Graphics;

namespace {

TEST(Box2x2Downsampler, MeansOfTheBlocksThatExist) {
    std::mt19937 random(3);
    for (const GXPixelFormat format : {GXPixelFormatPBGRA32, GXPixelFormatAlpha8, GXPixelFormatGray8}) {
        const int32_t channels = BitsPerPixel(format) / 8;
        for (int32_t width = 1; width <= 19; ++width) {
            for (int32_t height = 1; height <= 4; ++height) {
                const ptrdiff_t stride = width * channels; // no slack: a read past the edge leaves the block
                std::vector<uint8_t> src(static_cast<size_t>(stride * height));
                for (uint8_t& v : src) {
                    v = static_cast<uint8_t>((random() & 3) == 0 ? 255 : random());
                }
                const int32_t halfWidth = (width + 1) / 2;
                const int32_t halfHeight = (height + 1) / 2;
                const ptrdiff_t halfStride = halfWidth * channels + 3;
                std::vector<uint8_t> dst(static_cast<size_t>(halfStride * halfHeight), 0xEE);
                std::vector<uint8_t> expected = dst;
                for (int32_t y = 0; y < halfHeight; ++y) {
                    for (int32_t x = 0; x < halfWidth * channels; ++x) {
                        double sum = 0;
                        int count = 0;
                        for (int32_t v = 2 * y; v < std::min(2 * y + 2, height); ++v) {
                            for (int32_t u = x / channels * 2; u < std::min(x / channels * 2 + 2, width); ++u) {
                                sum += src[static_cast<size_t>(v * stride + u * channels + x % channels)];
                                ++count;
                            }
                        }
                        expected[static_cast<size_t>(y * halfStride + x)] =
                            static_cast<uint8_t>(std::floor(sum / count + 0.5));
                    }
                }
                Box2x2Downsampler::Downsample({dst.data(), halfStride, halfWidth, halfHeight, format},
                                              {src.data(), stride, width, height, format});
                ASSERT_EQ(dst, expected) << "format " << format << ", " << width << " x " << height;
            }
        }
    }
}

TEST(Box2x2Downsampler, OtherFormatsAreRefused) {
    uint8_t pixels[64] = {};
    for (GXPixelFormat format = 0; format <= 11; ++format) {
        if (Box2x2Downsampler::Accepts(format)) {
            continue;
        }
        try {
            Box2x2Downsampler::Downsample({pixels, 4, 1, 1, format}, {pixels + 32, 8, 2, 2, format});
            ADD_FAILURE() << "format " << format << " was halved";
        } catch (const Exception& e) {
            EXPECT_STREQ(e.what(), "Bad format for downsampling");
        }
    }
    EXPECT_EQ(Box2x2Downsampler::Half(INT32_MAX), 1 << 30);
}

} // namespace
