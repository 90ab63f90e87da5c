// SPDX-License-Identifier: MIT
// PNG files of every kind, written by libpng from random samples, against plain formulas on those samples.
#include <png.h>
#include <zlib.h>

#include "../ImageSupport.h"
#include "ProcessHeap.h"

using namespace Graphics;
using namespace ImageSupport;

namespace {

struct Kind {
    int type, depth;
    bool interlaced, transparent;
};

struct Made {
    Bytes file;
    Bytes raw; // packed rows as in the file
    size_t rowBytes;
    png_color palette[256];
    png_byte alphas[256];
    png_color_16 key{};
    int paletteCount = 0;
};

int Channels(int type) { return type == 2 ? 3 : type == 4 ? 2 : type == 6 ? 4 : 1; }

Made Make(const Kind& kind, uint32_t width, uint32_t height, uint32_t dotsPerMetre, std::mt19937& random) {
    Made made;
    made.rowBytes = (width * static_cast<size_t>(Channels(kind.type) * kind.depth) + 7) / 8;
    made.raw = RandomBytes(made.rowBytes * height, random);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &made.file,
        [](png_structp p, png_bytep data, size_t n) {
            auto* out = static_cast<Bytes*>(png_get_io_ptr(p));
            out->insert(out->end(), data, data + n);
        },
        [](png_structp) {});
    png_set_IHDR(png, info, width, height, kind.depth, kind.type,
                 kind.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (kind.type == PNG_COLOR_TYPE_PALETTE) {
        made.paletteCount = 1 << kind.depth;
        for (int i = 0; i < made.paletteCount; ++i) {
            made.palette[i] = {static_cast<png_byte>(random()), static_cast<png_byte>(random()),
                               static_cast<png_byte>(random())};
            made.alphas[i] = static_cast<png_byte>(random());
        }
        png_set_PLTE(png, info, made.palette, made.paletteCount);
    }
    if (kind.transparent) {
        made.key.gray = static_cast<png_uint_16>(made.raw[0] >> (kind.depth < 8 ? 8 - kind.depth : 0));
        made.key.red = made.raw[0];
        made.key.green = made.raw[1 % made.raw.size()];
        made.key.blue = made.raw[2 % made.raw.size()];
        png_set_tRNS(png, info, made.alphas, made.paletteCount / 2 + 1, &made.key);
    }
    if (dotsPerMetre != 0) {
        png_set_pHYs(png, info, dotsPerMetre, dotsPerMetre * 2, PNG_RESOLUTION_METER);
    }
    std::vector<png_bytep> rows(height);
    for (uint32_t y = 0; y < height; ++y) {
        rows[y] = made.raw.data() + made.rowBytes * y;
    }
    png_set_rows(png, info, rows.data());
    png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    png_destroy_write_struct(&png, &info);
    return made;
}

uint32_t Sample(const Made& made, const Kind& kind, uint32_t x, uint32_t y, int channel) {
    const uint8_t* row = made.raw.data() + made.rowBytes * y;
    const size_t at = x * static_cast<size_t>(Channels(kind.type)) + static_cast<size_t>(channel);
    if (kind.depth == 16) {
        return row[at * 2] * 256U + row[at * 2 + 1];
    }
    const size_t bit = at * static_cast<size_t>(kind.depth);
    return row[bit / 8] >> (8 - kind.depth - static_cast<int>(bit % 8)) & ((1U << kind.depth) - 1);
}

uint32_t Expected(const Made& made, const Kind& kind, uint32_t x, uint32_t y) {
    const bool keepsAlpha = kind.depth == 8 || (kind.depth == 1 && kind.type != 2);
    if (kind.type == PNG_COLOR_TYPE_PALETTE) {
        const uint32_t i = Sample(made, kind, x, y, 0);
        const png_color& c = made.palette[i];
        const bool given = kind.transparent && keepsAlpha && static_cast<int>(i) < made.paletteCount / 2 + 1;
        return (given ? made.alphas[i] : 255U) << 24 | c.red * 65536U | c.green * 256U | c.blue;
    }
    const uint64_t most = (1U << kind.depth) - 1;
    const auto level = [&](int channel) {
        return static_cast<uint32_t>((Sample(made, kind, x, y, channel) * 255 + most / 2) / most);
    };
    const bool grey = kind.type == PNG_COLOR_TYPE_GRAY || kind.type == PNG_COLOR_TYPE_GRAY_ALPHA;
    const uint32_t r = level(0), g = grey ? r : level(1), b = grey ? r : level(2);
    uint32_t a = 255;
    if (keepsAlpha && (kind.type & PNG_COLOR_MASK_ALPHA) != 0) {
        a = level(grey ? 1 : 3);
    } else if (keepsAlpha && kind.transparent) {
        a = (grey ? Sample(made, kind, x, y, 0) == made.key.gray
                  : r == made.key.red && g == made.key.green && b == made.key.blue)
                ? 0
                : 255;
    }
    return a << 24 | r << 16 | g << 8 | b;
}

GXPixelFormat ExpectedFormat(const Kind& kind) {
    const bool single = kind.type == PNG_COLOR_TYPE_PALETTE || kind.type == PNG_COLOR_TYPE_GRAY;
    if (single) {
        return kind.depth == 8 ? GXPixelFormatIndexed8 : kind.depth == 1 ? GXPixelFormatIndexed1 : GXPixelFormatBGRX32;
    }
    const bool alpha = (kind.type & PNG_COLOR_MASK_ALPHA) != 0 || kind.transparent;
    return kind.depth == 16 ? GXPixelFormatBGRX32 : alpha ? GXPixelFormatBGRA32 : GXPixelFormatBGR24;
}

TEST(Png, EveryColourTypeDepthAndInterlaceIsReadRight) {
    std::mt19937 random(1);
    for (const int type : {0, 2, 3, 4, 6}) {
        for (const int depth : {1, 2, 4, 8, 16}) {
            if ((type == 3 && depth == 16) || (depth < 8 && type != 0 && type != 3)) {
                continue;
            }
            for (int variant = 0; variant < 4; ++variant) {
                const Kind kind{type, depth, (variant & 1) != 0, (variant & 2) != 0 && type < 4};
                for (const uint32_t width : {1U, 7U, 34U}) {
                    SCOPED_TRACE(testing::Message() << type << " " << depth << " " << variant << " " << width);
                    const uint32_t height = 1 + random() % 11;
                    const Made made = Make(kind, width, height, 3780, random);
                    const auto bitmap = Load(made.file);
                    ASSERT_EQ(bitmap->Format(), ExpectedFormat(kind));
                    ASSERT_EQ(bitmap->GetSize().width, width);
                    ASSERT_EQ(bitmap->GetSize().height, height);
                    EXPECT_EQ(bitmap->DpiX(), 96.0F);
                    EXPECT_EQ(bitmap->DpiY(), 192.02F);
                    const std::vector<uint32_t> pixels = Argb(*bitmap);
                    for (uint32_t i = 0; i < pixels.size(); ++i) {
                        ASSERT_EQ(pixels[i], Expected(made, kind, i % width, i / width)) << i;
                    }
                }
            }
        }
    }
}

TEST(Png, DamageIsRefused) {
    std::mt19937 random(2);
    for (const Kind& kind : {Kind{6, 8, true, false}, Kind{3, 8, false, true}, Kind{0, 16, false, false}}) {
        const Made made = Make(kind, 13, 9, 0, random);
        EXPECT_EQ(Load(made.file)->DpiX(), 96.0F);
        ExpectDamageIsRefused(made.file, 3);
        // Every changed byte behind the signature shows: chunks carry sums.
        for (size_t i = 0; i < made.file.size(); ++i) {
            Bytes damaged = made.file;
            damaged[i] ^= 0x10;
            EXPECT_EQ(Refusal(damaged), "Failed to load") << i;
        }
    }
}

TEST(Png, LyingSizesAreRefusedBeforeMemoryIsTaken) {
    std::mt19937 random(4);
    Made made = Make({2, 8, false, false}, 10, 10, 0, random);
    const auto claim = [&](uint32_t width, uint32_t height) {
        for (int i = 0; i < 4; ++i) {
            made.file[16 + static_cast<size_t>(i)] = static_cast<uint8_t>(width >> (24 - 8 * i));
            made.file[20 + static_cast<size_t>(i)] = static_cast<uint8_t>(height >> (24 - 8 * i));
        }
        const auto sum = static_cast<uint32_t>(crc32(0, made.file.data() + 12, 17));
        for (int i = 0; i < 4; ++i) {
            made.file[29 + static_cast<size_t>(i)] = static_cast<uint8_t>(sum >> (24 - 8 * i));
        }
        const int64_t before = ProcessHeap::FailAfter(-1);
        EXPECT_EQ(Refusal(made.file), "Failed to load");
        return ProcessHeap::FailAfter(-1) - before;
    };
    EXPECT_EQ(claim(20000, 20000), 0);
    EXPECT_EQ(claim(0x7FFFFFFF, 0x7FFFFFFF), 0);
    EXPECT_EQ(claim(0x7FFFFFFF, 1), 0);
}

} // namespace
