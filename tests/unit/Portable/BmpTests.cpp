// SPDX-License-Identifier: MIT
// Windows bitmap files put together by hand: every depth, header and run code.
#include "../ImageSupport.h"
#include "Bitmaps/Codecs/Portable/BmpCodec.h"

using namespace Graphics;
using namespace ImageSupport;

namespace {

void Add(Bytes& out, uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        out.push_back(static_cast<uint8_t>(value >> (8 * i)));
    }
}

struct Kind {
    uint32_t header, bits, compression;
    bool topDown = false;
    std::vector<uint32_t> masks = {}; // red, green, blue, alpha
    uint32_t colors = 0;              // 0: all
};

/// `palette` as 0xRRGGBB.
Bytes Make(const Kind& kind, uint32_t width, uint32_t height, const std::vector<uint32_t>& palette,
           const Bytes& pixels) {
    const bool old = kind.header == 12;
    const bool behind = kind.header == 40 && !kind.masks.empty();
    Bytes file = {'B', 'M'};
    const auto offset =
        static_cast<uint32_t>(14 + kind.header + (behind ? kind.masks.size() * 4 : 0) + palette.size() * (old ? 3 : 4));
    Add(file, offset + static_cast<uint32_t>(pixels.size()), 4);
    Add(file, 0, 4);
    Add(file, offset, 4);
    Bytes info;
    Add(info, kind.header, 4);
    Add(info, width, old ? 2 : 4);
    Add(info, kind.topDown ? 0U - height : height, old ? 2 : 4);
    Add(info, 1, 2);
    Add(info, kind.bits, 2);
    if (!old) {
        Add(info, kind.compression, 4);
        Add(info, 0, 4);
        Add(info, 11811, 4); // 300 dots per inch
        Add(info, 5906, 4);  // 150
        Add(info, kind.colors, 4);
        Add(info, 0, 4);
        for (const uint32_t mask : kind.masks) {
            Add(info, mask, 4);
        }
    }
    if (!behind) {
        info.resize(kind.header);
    }
    file.insert(file.end(), info.begin(), info.end());
    for (const uint32_t color : palette) {
        Add(file, color, old ? 3 : 4);
    }
    file.insert(file.end(), pixels.begin(), pixels.end());
    return file;
}

std::vector<uint32_t> RandomPalette(size_t count, std::mt19937& random) {
    std::vector<uint32_t> palette(count);
    for (uint32_t& c : palette) {
        c = random() & 0xFFFFFFU;
    }
    return palette;
}

std::shared_ptr<Bitmap> LoadBmp(const Bytes& file) {
    MemorySource source(file.data(), file.size());
    return std::make_shared<Bitmap>(BmpCodec().Open(source)->Load(0));
}

uint32_t Field(uint32_t pixel, uint32_t mask) {
    if (mask == 0) {
        return 0;
    }
    int shift = 0;
    while ((mask >> shift & 1) == 0) {
        ++shift;
    }
    uint64_t value = (pixel & mask) >> shift, most = mask >> shift;
    while (most > 255) { // the upper eight bits count
        value >>= 1;
        most >>= 1;
    }
    return static_cast<uint32_t>((value * 255 + most / 2) / most);
}

TEST(Bmp, EveryDepthAndHeaderIsReadRight) {
    std::mt19937 random(1);
    const std::vector<uint32_t> argb = {0xFF0000, 0xFF00, 0xFF, 0xFF000000}, k565 = {0xF800, 0x7E0, 0x1F, 0},
                                k4444 = {0xF00, 0xF0, 0xF, 0xF000}, wide = {0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000},
                                rgba = {0xFF, 0xFF00, 0xFF0000, 0xFF000000}, k565Short = {0xF800, 0x7E0, 0x1F};
    const Kind kinds[] = {
        {12, 1, 0},
        {12, 4, 0},
        {12, 8, 0},
        {12, 24, 0},
        {64, 8, 0},
        {40, 1, 0},
        {40, 4, 0, true},
        {40, 8, 0, true},
        {40, 16, 0},
        {40, 24, 0, true},
        {40, 32, 0},
        {108, 24, 0},
        {124, 8, 0},
        {40, 16, 3, false, k565Short},
        {56, 16, 3, false, k565},
        {108, 16, 3, true, k4444},
        {124, 32, 3, false, argb},
        {108, 32, 3, false, wide},
        {56, 32, 3, true, rgba},
        {40, 32, 6, false, argb},
        {16, 24, 0},
        {40, 8, 0, false, {}, 100},
        {108, 32, 3, false, {0xFF0000, 0xFF00, 0xFF, 0}},
    };
    for (const Kind& kind : kinds) {
        for (const uint32_t width : {1U, 3U, 8U, 21U}) {
            SCOPED_TRACE(testing::Message()
                         << kind.header << " " << kind.bits << " " << kind.compression << " " << width);
            const uint32_t height = 1 + random() % 5;
            const size_t stride = (static_cast<size_t>(width) * kind.bits + 31) / 32 * 4;
            const std::vector<uint32_t> palette = RandomPalette(kind.bits > 8      ? 0
                                                                : kind.colors != 0 ? kind.colors
                                                                                   : size_t{1} << kind.bits,
                                                                random);
            const Bytes pixels = RandomBytes(stride * height, random);
            // A header of 16 bytes ends before everything but sizes and depth.
            Bytes file = Make({kind.header, kind.bits, kind.compression, kind.topDown, kind.masks, kind.colors}, width,
                              height, palette, pixels);
            const auto bitmap = LoadBmp(file);
            const bool alpha = kind.bits == 32 && kind.compression != 0 && kind.masks[3] == 0xFF000000;
            ASSERT_EQ(bitmap->Format(), kind.bits == 1    ? GXPixelFormatIndexed1
                                        : kind.bits == 8  ? GXPixelFormatIndexed8
                                        : kind.bits == 24 ? GXPixelFormatBGR24
                                        : alpha           ? GXPixelFormatBGRA32
                                                          : GXPixelFormatBGRX32);
            EXPECT_EQ(bitmap->DpiX(), kind.header >= 40 ? 300.0F : 96.0F);
            EXPECT_EQ(bitmap->DpiY(), kind.header >= 40 ? 150.0F : 96.0F);
            const std::vector<uint32_t> masks = !kind.masks.empty() ? kind.masks
                                                : kind.bits == 16   ? std::vector<uint32_t>{0x7C00, 0x3E0, 0x1F}
                                                                    : std::vector<uint32_t>{0xFF0000, 0xFF00, 0xFF};
            const std::vector<uint32_t> out = Argb(*bitmap);
            for (uint32_t i = 0; i < out.size(); ++i) {
                const uint32_t y = i / width, x = i % width;
                const uint8_t* row = pixels.data() + stride * (kind.topDown ? y : height - 1 - y);
                uint32_t expected = 0xFF000000;
                if (kind.bits <= 8) {
                    const uint32_t index =
                        row[x * kind.bits / 8] >> (8 - kind.bits - x * kind.bits % 8) & ((1U << kind.bits) - 1);
                    expected |= index < palette.size() ? palette[index] : 0;
                } else if (kind.bits == 24) {
                    expected |= row[x * 3 + 2] * 65536U + row[x * 3 + 1] * 256U + row[x * 3];
                } else {
                    uint32_t pixel = 0;
                    std::memcpy(&pixel, row + x * kind.bits / 8, kind.bits / 8);
                    expected |= Field(pixel, masks[0]) << 16 | Field(pixel, masks[1]) << 8 | Field(pixel, masks[2]);
                    if (alpha) {
                        expected = (expected & 0xFFFFFF) | Field(pixel, masks[3]) << 24;
                    }
                }
                ASSERT_EQ(out[i], expected) << i;
            }
        }
    }
}

TEST(Bmp, RunsAreReadRight) {
    // Random pictures written as random mixtures of runs, literals, line ends and moves.
    std::mt19937 random(2);
    for (int round = 0; round < 200; ++round) {
        const bool nibbles = round % 2 != 0;
        const uint32_t width = 1 + random() % 40, height = 1 + random() % 9, most = nibbles ? 16 : 256;
        const std::vector<uint32_t> palette = RandomPalette(most, random);
        Bytes indices(static_cast<size_t>(width) * height, 0); // in the file's order
        Bytes code;
        uint32_t x = 0, y = 0;
        while (y < height) {
            const uint32_t left = width - x;
            const uint32_t choice = random() % 8;
            uint8_t* at = indices.data() + static_cast<size_t>(y) * width + x;
            if (left == 0 || choice == 0) {
                code.insert(code.end(), {0, 0});
                x = 0;
                ++y;
            } else if (choice == 1) {
                const uint32_t right = random() % (left + 1), up = random() % (height - y);
                Add(code, 0x0200 | right << 16 | up << 24, 4);
                x += right;
                y += up;
            } else if (choice < 5 || left < 3) {
                const uint32_t count = 1 + random() % std::min(left, 255U), value = random() % 256;
                code.insert(code.end(), {static_cast<uint8_t>(count), static_cast<uint8_t>(value)});
                for (uint32_t i = 0; i < count; ++i) {
                    at[i] = static_cast<uint8_t>(!nibbles ? value : i % 2 == 0 ? value >> 4 : value & 15);
                }
                x += count;
            } else {
                const uint32_t count = 3 + random() % (left - 2);
                code.insert(code.end(), {0, static_cast<uint8_t>(count)});
                Bytes literal((nibbles ? (count + 1) / 2 : count), 0);
                for (uint32_t i = 0; i < count; ++i) {
                    at[i] = static_cast<uint8_t>(random() % most);
                    literal[nibbles ? i / 2 : i] |= static_cast<uint8_t>(nibbles && i % 2 == 0 ? at[i] << 4 : at[i]);
                }
                literal.resize((literal.size() + 1) / 2 * 2);
                code.insert(code.end(), literal.begin(), literal.end());
                x += count;
            }
            if (random() % 30 == 0) {
                break;
            }
        }
        code.insert(code.end(), {0, 1});
        const Kind kind{40, nibbles ? 4U : 8U, nibbles ? 2U : 1U};
        const auto bitmap = LoadBmp(Make(kind, width, height, palette, code));
        EXPECT_EQ(bitmap->Format(), nibbles ? GXPixelFormatBGRX32 : GXPixelFormatIndexed8);
        const std::vector<uint32_t> out = Argb(*bitmap);
        for (uint32_t i = 0; i < out.size(); ++i) {
            const uint32_t index = indices[static_cast<size_t>(height - 1 - i / width) * width + i % width];
            ASSERT_EQ(out[i], 0xFF000000 | palette[index]) << "round " << round << " pixel " << i;
        }
    }
}

TEST(Bmp, DamageAndLiesAreRefused) {
    std::mt19937 random(3);
    const auto refused = [](const Bytes& file) {
        try {
            (void)LoadBmp(file);
            return false;
        } catch (const ImageError&) {
            return true;
        }
    };
    const std::vector<uint32_t> palette = RandomPalette(256, random);
    const Bytes good = Make({40, 8, 0}, 5, 4, palette, RandomBytes(32, random));
    ASSERT_FALSE(refused(good));
    for (size_t n = 0; n + 3 < good.size(); ++n) { // the last row's padding may be missing
        EXPECT_TRUE(refused(Bytes(good.begin(), good.begin() + static_cast<ptrdiff_t>(n)))) << n;
    }
    const Bytes runs = {255, 7, 0, 1};
    EXPECT_FALSE(refused(Make({40, 8, 1}, 5, 4, palette, runs)));
    EXPECT_TRUE(refused(Make({40, 8, 1}, 5, 4, palette, {255, 7, 0})));             // no end
    EXPECT_TRUE(refused(Make({40, 8, 1}, 5, 4, palette, {0, 2, 6, 0, 0, 1})));      // a move out of the row
    EXPECT_TRUE(refused(Make({40, 8, 1}, 40000, 40000, palette, runs)));            // gigabytes from four bytes
    EXPECT_TRUE(refused(Make({40, 8, 1, true}, 5, 4, palette, runs)));              // runs go upwards
    EXPECT_TRUE(refused(Make({40, 24, 0}, 0x7FFFFFFF, 0x7FFFFFFF, {}, Bytes(64)))); // sizes
    EXPECT_TRUE(refused(Make({40, 24, 0}, 0, 3, {}, Bytes(64))));
    EXPECT_TRUE(refused(Make({40, 7, 0}, 3, 3, palette, Bytes(64))));
    EXPECT_TRUE(refused(Make({40, 8, 4}, 3, 3, palette, Bytes(64))));                                // JPEG inside
    EXPECT_TRUE(refused(Make({56, 16, 3, false, {0x15, 0x2A, 0, 0}}, 3, 3, {}, Bytes(64))));         // holes
    EXPECT_TRUE(refused(Make({56, 16, 3, false, {0xFF, 0x1FE, 0, 0}}, 3, 3, {}, Bytes(64))));        // overlap
    EXPECT_TRUE(refused(Make({56, 16, 3, false, {0x1F0000, 0x7E0, 0x1F, 0}}, 3, 3, {}, Bytes(64)))); // outside
}

} // namespace
