// SPDX-License-Identifier: MIT
// JPEG files written by libjpeg at its best quality from smooth pictures, which come back nearly as they were.
#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

#include "../ImageSupport.h"
#include "ProcessHeap.h"

using namespace Graphics;
using namespace ImageSupport;

namespace {

struct Kind {
    J_COLOR_SPACE input, stored;
    int components;
    bool progressive, subsampled, adobe;
    bool arithmetic = false;
};

constexpr uint32_t kWidth = 53, kHeight = 38;

/// A smooth picture.
uint8_t Value(uint32_t x, uint32_t y, int c) {
    const uint32_t v[4] = {40 + x * 3, 200 - y * 4, 60 + x + y, 255 - x};
    return static_cast<uint8_t>(v[c]);
}

Bytes Make(const Kind& kind) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* out = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &out, &size);
    info.image_width = kWidth;
    info.image_height = kHeight;
    info.input_components = kind.components;
    info.in_color_space = kind.input;
    jpeg_set_defaults(&info);
    jpeg_set_colorspace(&info, kind.stored);
    jpeg_set_quality(&info, 100, TRUE);
    info.write_Adobe_marker = kind.adobe ? TRUE : info.write_Adobe_marker;
    if (!kind.adobe && kind.stored == JCS_CMYK) {
        info.write_Adobe_marker = FALSE;
    }
    if (!kind.subsampled) {
        info.comp_info[0].h_samp_factor = info.comp_info[0].v_samp_factor = 1;
    }
    if (kind.progressive) {
        jpeg_simple_progression(&info);
    } else {
        info.restart_in_rows = 2;
    }
    info.arith_code = kind.arithmetic ? TRUE : FALSE;
    info.density_unit = 2;
    info.X_density = 50;
    info.Y_density = 100;
    jpeg_start_compress(&info, TRUE);
    for (uint32_t y = 0; y < kHeight; ++y) {
        Bytes row;
        for (uint32_t x = 0; x < kWidth; ++x) {
            for (int c = 0; c < kind.components; ++c) {
                row.push_back(Value(x, y, c));
            }
        }
        JSAMPROW rows = row.data();
        jpeg_write_scanlines(&info, &rows, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    Bytes file(out, out + size);
    std::free(out);
    return file;
}

constexpr Kind kKinds[] = {
    {JCS_GRAYSCALE, JCS_GRAYSCALE, 1, false, false, false},
    {JCS_GRAYSCALE, JCS_GRAYSCALE, 1, true, false, false},
    {JCS_RGB, JCS_YCbCr, 3, false, false, false},
    {JCS_RGB, JCS_YCbCr, 3, true, true, false},
    {JCS_RGB, JCS_YCbCr, 3, false, true, true},
    {JCS_RGB, JCS_RGB, 3, false, false, true},
    {JCS_CMYK, JCS_CMYK, 4, false, false, true},
    {JCS_CMYK, JCS_CMYK, 4, true, false, false},
    {JCS_CMYK, JCS_YCCK, 4, false, true, true},
};

TEST(Jpeg, EveryColourSpaceIsReadRight) {
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(testing::Message() << kind.input << " " << kind.stored << " " << kind.progressive << kind.adobe);
        const auto bitmap = Load(Make(kind));
        EXPECT_EQ(bitmap->Format(), kind.components == 1 ? GXPixelFormatIndexed8 : GXPixelFormatBGR24);
        if (kind.components < 4 && kind.stored != JCS_RGB) { // the others have no JFIF header
            EXPECT_FLOAT_EQ(bitmap->DpiX(), 127.0F);
            EXPECT_FLOAT_EQ(bitmap->DpiY(), 254.0F);
        }
        const std::vector<uint32_t> pixels = Argb(*bitmap);
        ASSERT_EQ(pixels.size(), kWidth * kHeight);
        const int tolerance = kind.subsampled ? 9 : 3;
        for (uint32_t i = 0; i < pixels.size(); ++i) {
            for (int c = 0; c < 3; ++c) {
                const auto value = [&](int channel) {
                    const int v = Value(i % kWidth, i / kWidth, channel);
                    return kind.components == 4 && !kind.adobe ? 255 - v : v;
                };
                const int expected = kind.components == 1   ? value(0)
                                     : kind.components == 3 ? value(c)
                                                            : value(c) * value(3) / 255;
                ASSERT_NEAR(static_cast<int>(pixels[i] >> (16 - 8 * c) & 255U), expected, tolerance) << i << " " << c;
            }
            ASSERT_EQ(pixels[i] >> 24, 255U);
        }
    }
}

TEST(Jpeg, DamageIsRefused) {
    for (const size_t kind : {2U, 3U, 8U}) {
        ExpectDamageIsRefused(Make(kKinds[kind]), 5);
    }
}

TEST(Jpeg, LyingSizesAreRefused) {
    Bytes file = Make(kKinds[2]);
    size_t at = 2;
    while (file[at + 1] != 0xC0) { // to the frame header
        at += 2 + file[at + 2] * 256U + file[at + 3];
    }
    for (size_t i = 5; i < 9; ++i) {
        file[at + i] = 0x7F;
    }
    EXPECT_EQ(Refusal(file), "Failed to load");
}

TEST(Jpeg, ArithmeticCodingIsRefusedBeforeMemoryIsTaken) {
    // A few bytes of it are a whole picture of one colour, so no size tells true claims from others.
    for (const bool progressive : {false, true}) {
        const Bytes file = Make({JCS_RGB, JCS_YCbCr, 3, progressive, false, false, true});
        for (const size_t size : {file.size(), file.size() / 2}) {
            const int64_t before = ProcessHeap::FailAfter(-1);
            EXPECT_EQ(Refusal(Bytes(file.begin(), file.begin() + static_cast<ptrdiff_t>(size))), "Failed to load");
            EXPECT_EQ(ProcessHeap::FailAfter(-1), before);
        }
    }
}

} // namespace
