// SPDX-License-Identifier: MIT
// TIFF files written by libtiff from random samples: strips and tiles, planes, depths, photometric kinds and
// compressions, against plain formulas on those samples.
#include <filesystem>
#include <fstream>

#include <tiffio.h>

#include "../../ScratchFolder.h"
#include "../ImageSupport.h"

using namespace Graphics;
using namespace ImageSupport;

namespace {

struct Kind {
    uint16_t photometric, samples, bits;
    uint16_t format = SAMPLEFORMAT_UINT;
    int extra = -1; // kind of the sample behind the colours
    bool planes = false, tiles = false;
    uint16_t compression = COMPRESSION_NONE;
    const char* mode = "wl";
};

struct Made {
    uint32_t width, height;
    std::vector<double> samples; // [y][x][s], whole numbers or, in float files, 0 to 1
    std::vector<uint16_t> map[3];
};

const std::filesystem::path kPath = ScratchFolder() / "pages.tif";

void Put(Bytes& row, uint64_t bit, uint16_t bits, uint16_t format, double value) {
    if (format == SAMPLEFORMAT_IEEEFP) {
        const auto f = static_cast<float>(value);
        bits == 32 ? std::memcpy(&row[bit / 8], &f, 4) : std::memcpy(&row[bit / 8], &value, 8);
    } else if (bits == 16) {
        const auto v = static_cast<uint16_t>(value);
        std::memcpy(&row[bit / 8], &v, 2);
    } else if (bits == 32) {
        const auto v = static_cast<uint32_t>(value);
        std::memcpy(&row[bit / 8], &v, 4);
    } else {
        for (uint16_t k = 0; k < bits; ++k) {
            const uint32_t on = static_cast<uint32_t>(value) >> (bits - 1 - k) & 1U;
            row[(bit + k) / 8] |= static_cast<uint8_t>(on << (7 - (bit + k) % 8));
        }
    }
}

void WritePage(TIFF* tiff, const Kind& kind, Made& made, std::mt19937& random) {
    const double most = kind.format == SAMPLEFORMAT_IEEEFP ? 1.0 : std::ldexp(1.0, kind.bits) - 1;
    made.samples.resize(static_cast<size_t>(made.width) * made.height * kind.samples);
    for (double& v : made.samples) {
        v = kind.format == SAMPLEFORMAT_IEEEFP
                ? static_cast<double>(static_cast<float>(static_cast<int>(random() % 1401) - 200) / 1000.0F)
                : std::floor(random() / 4294967296.0 * (most + 1));
    }
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, made.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, made.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, kind.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, kind.samples);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, kind.format);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, kind.photometric);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, kind.planes ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, kind.compression);
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 100.0);
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 50.0);
    if (kind.extra >= 0) {
        const auto extra = static_cast<uint16_t>(kind.extra);
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &extra);
    }
    if (kind.photometric == PHOTOMETRIC_PALETTE) {
        for (auto& channel : made.map) {
            channel.resize(size_t{1} << kind.bits);
            for (uint16_t& v : channel) {
                v = static_cast<uint16_t>(random() | 0x100);
            }
        }
        TIFFSetField(tiff, TIFFTAG_COLORMAP, made.map[0].data(), made.map[1].data(), made.map[2].data());
    }
    uint32_t blockWidth = made.width, blockHeight = 3;
    if (kind.tiles) {
        blockWidth = 16;
        blockHeight = 32;
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, blockWidth);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, blockHeight);
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, blockHeight);
    }
    const uint16_t planes = kind.planes ? kind.samples : 1;
    const uint16_t perPixel = kind.planes ? 1 : kind.samples;
    uint32_t index = 0;
    for (uint16_t plane = 0; plane < planes; ++plane) {
        for (uint32_t top = 0; top < made.height; top += blockHeight) {
            for (uint32_t left = 0; left < made.width; left += blockWidth) {
                const size_t stride = (static_cast<size_t>(blockWidth) * perPixel * kind.bits + 7) / 8;
                const uint32_t rows = kind.tiles ? blockHeight : std::min(blockHeight, made.height - top);
                Bytes block;
                for (uint32_t y = 0; y < rows; ++y) {
                    Bytes row(stride, 0);
                    for (uint32_t x = 0; x < blockWidth && top + y < made.height && left + x < made.width; ++x) {
                        for (uint16_t s = 0; s < perPixel; ++s) {
                            Put(row, (static_cast<uint64_t>(x) * perPixel + s) * kind.bits, kind.bits, kind.format,
                                made.samples[((top + y) * made.width + left + x) * kind.samples + s + plane]);
                        }
                    }
                    block.insert(block.end(), row.begin(), row.end());
                }
                const auto size = static_cast<tmsize_t>(block.size());
                EXPECT_EQ(kind.tiles ? TIFFWriteEncodedTile(tiff, index, block.data(), size)
                                     : TIFFWriteEncodedStrip(tiff, index, block.data(), size),
                          size);
                ++index;
            }
        }
    }
    EXPECT_EQ(TIFFWriteDirectory(tiff), 1);
}

Made Write(const Kind& kind, uint32_t width, uint32_t height, std::mt19937& random) {
    Made made{width, height, {}, {}};
    TIFF* tiff = TIFFOpen(kPath.c_str(), kind.mode);
    WritePage(tiff, kind, made, random);
    TIFFClose(tiff);
    return made;
}

Bytes FileBytes() {
    std::ifstream file(kPath, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

uint32_t Expected(const Kind& kind, const Made& made, size_t pixel) {
    const double* s = &made.samples[pixel * kind.samples];
    const auto level = [&](int i) -> uint32_t {
        if (kind.format == SAMPLEFORMAT_IEEEFP) {
            return static_cast<uint32_t>(std::min(std::max(s[i], 0.0), 1.0) * 255 + 0.5);
        }
        const double most = std::ldexp(1.0, kind.bits) - 1;
        return static_cast<uint32_t>(std::floor((s[i] * 255 + std::floor(most / 2)) / most));
    };
    uint32_t r, g, b;
    uint32_t a = 255;
    switch (kind.photometric) {
    case PHOTOMETRIC_PALETTE:
        r = made.map[0][static_cast<size_t>(s[0])] >> 8;
        g = made.map[1][static_cast<size_t>(s[0])] >> 8;
        b = made.map[2][static_cast<size_t>(s[0])] >> 8;
        break;
    case PHOTOMETRIC_SEPARATED:
        r = ((255 - level(0)) * (255 - level(3)) + 127) / 255;
        g = ((255 - level(1)) * (255 - level(3)) + 127) / 255;
        b = ((255 - level(2)) * (255 - level(3)) + 127) / 255;
        break;
    case PHOTOMETRIC_RGB:
        r = level(0);
        g = level(1);
        b = level(2);
        a = kind.extra > 0 && kind.bits == 8 ? level(3) : 255;
        break;
    default:
        r = kind.photometric == PHOTOMETRIC_MINISWHITE ? 255 - level(0) : level(0);
        g = b = r;
        a = kind.extra > 0 && kind.bits == 8 ? level(1) : 255;
        break;
    }
    if (kind.extra == EXTRASAMPLE_ASSOCALPHA && a != 0 && kind.bits == 8) {
        r = std::min(r, a) * 255 / a;
        g = std::min(g, a) * 255 / a;
        b = std::min(b, a) * 255 / a;
    }
    return a << 24 | r << 16 | g << 8 | b;
}

GXPixelFormat ExpectedFormat(const Kind& kind) {
    const bool single = kind.samples == 1 && kind.photometric != PHOTOMETRIC_SEPARATED;
    if (single && kind.bits <= 8 && kind.format == SAMPLEFORMAT_UINT && (kind.bits == 1 || kind.bits == 8)) {
        return kind.bits == 1 ? GXPixelFormatIndexed1 : GXPixelFormatIndexed8;
    }
    if (kind.bits != 8 || kind.photometric == PHOTOMETRIC_SEPARATED) {
        return GXPixelFormatBGRX32;
    }
    return kind.extra > 0 ? GXPixelFormatBGRA32 : GXPixelFormatBGR24;
}

constexpr uint16_t kGrey = PHOTOMETRIC_MINISBLACK, kWhite = PHOTOMETRIC_MINISWHITE, kMap = PHOTOMETRIC_PALETTE,
                   kRgb = PHOTOMETRIC_RGB, kInks = PHOTOMETRIC_SEPARATED, kUint = SAMPLEFORMAT_UINT,
                   kFloat = SAMPLEFORMAT_IEEEFP;

TEST(Tiff, EveryLayoutIsReadRight) {
    std::mt19937 random(1);
    std::vector<Kind> kinds;
    for (const bool planes : {false, true}) {
        for (const bool tiles : {false, true}) {
            for (const uint16_t bits :
                 {uint16_t{1}, uint16_t{2}, uint16_t{4}, uint16_t{8}, uint16_t{12}, uint16_t{16}}) {
                kinds.push_back({kGrey, 1, bits, kUint, -1, planes, tiles});
                kinds.push_back({kWhite, 1, bits, kUint, -1, planes, tiles, COMPRESSION_PACKBITS});
                kinds.push_back({kMap, 1, bits, kUint, -1, planes, tiles, COMPRESSION_LZW});
                kinds.push_back({kRgb, 3, bits, kUint, -1, planes, tiles, COMPRESSION_ADOBE_DEFLATE});
                kinds.push_back({kInks, 4, bits, kUint, -1, planes, tiles, COMPRESSION_NONE, "wb"});
                for (const int alpha : {0, 1, 2}) {
                    if (bits == 8 || alpha != 1) {
                        kinds.push_back({kRgb, 4, bits, kUint, alpha, planes, tiles, COMPRESSION_LZW, "wb"});
                    }
                }
            }
            kinds.push_back({kGrey, 2, 8, kUint, 2, planes, tiles});
            kinds.push_back({kRgb, 3, 32, kUint, -1, planes, tiles, COMPRESSION_NONE, "wb8"});
            kinds.push_back({kRgb, 3, 32, kFloat, -1, planes, tiles});
            kinds.push_back({kGrey, 1, 64, kFloat, -1, planes, tiles, COMPRESSION_LZW, "wb"});
        }
    }
    kinds.push_back({kWhite, 1, 1, kUint, -1, false, false, COMPRESSION_CCITTFAX4});
    kinds.push_back({kWhite, 1, 1, kUint, -1, false, true, COMPRESSION_CCITTFAX3});
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(testing::Message() << "photometric " << kind.photometric << " samples " << kind.samples << " bits "
                                        << kind.bits << " extra " << kind.extra << " planes " << kind.planes
                                        << " tiles " << kind.tiles << " compression " << kind.compression);
        const uint32_t width = 1 + random() % 40, height = 1 + random() % 40;
        const Made made = Write(kind, width, height, random);
        const auto bitmap = ImageFile::Load(kPath.wstring().c_str());
        ASSERT_EQ(bitmap->Format(), ExpectedFormat(kind));
        EXPECT_FLOAT_EQ(bitmap->DpiX(), 254.0F);
        EXPECT_FLOAT_EQ(bitmap->DpiY(), 127.0F);
        const std::vector<uint32_t> pixels = Argb(*bitmap);
        ASSERT_EQ(pixels.size(), static_cast<size_t>(width) * height);
        for (size_t i = 0; i < pixels.size(); ++i) {
            ASSERT_EQ(pixels[i], Expected(kind, made, i)) << i;
        }
    }
}

TEST(Tiff, SubsampledAndCompressedColourIsReadRight) {
    // One colour everywhere survives subsampling: YCbCr as stored and through JPEG, the latter as RGB.
    for (const uint16_t compression : {uint16_t{COMPRESSION_NONE}, uint16_t{COMPRESSION_JPEG}}) {
        TIFF* tiff = TIFFOpen(kPath.c_str(), "wl");
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 32);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 16);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_YCBCR);
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 16);
        TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 2, 2);
        Bytes data;
        if (compression == COMPRESSION_JPEG) {
            TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
            for (int i = 0; i < 32 * 16; ++i) {
                data.insert(data.end(), {200, 100, 50});
            }
        } else {
            for (int i = 0; i < 16 * 8; ++i) { // four Y, Cb, Cr
                data.insert(data.end(), {124, 124, 124, 124, 86, 182});
            }
        }
        ASSERT_GT(TIFFWriteEncodedStrip(tiff, 0, data.data(), static_cast<tmsize_t>(data.size())), 0);
        TIFFClose(tiff);
        const auto bitmap = ImageFile::Load(kPath.wstring().c_str());
        EXPECT_EQ(bitmap->Format(), GXPixelFormatBGR24);
        for (const uint32_t pixel : Argb(*bitmap)) {
            ASSERT_NEAR(static_cast<int>(pixel >> 16 & 255), 200, 3);
            ASSERT_NEAR(static_cast<int>(pixel >> 8 & 255), 100, 3);
            ASSERT_NEAR(static_cast<int>(pixel & 255), 50, 3);
        }
    }
}

TEST(Tiff, PagesAreFrames) {
    std::mt19937 random(2);
    const Kind kinds[3] = {{kRgb, 3, 8}, {kGrey, 1, 1}, {kMap, 1, 4}};
    TIFF* tiff = TIFFOpen(kPath.c_str(), "wl");
    Made made[3];
    for (uint32_t k = 0; k < 3; ++k) {
        made[k].width = 5 + k;
        made[k].height = 9 - k;
        WritePage(tiff, kinds[k], made[k], random);
    }
    TIFFClose(tiff);
    for (uint32_t k = 0; k < 3; ++k) {
        uint32_t count = 0;
        const auto bitmap = ImageFile::LoadFrame(kPath.wstring().c_str(), k, &count);
        EXPECT_EQ(count, 3U);
        const std::vector<uint32_t> pixels = Argb(*bitmap);
        ASSERT_EQ(pixels.size(), static_cast<size_t>(made[k].width) * made[k].height);
        for (size_t i = 0; i < pixels.size(); ++i) {
            ASSERT_EQ(pixels[i], Expected(kinds[k], made[k], i));
        }
    }
    uint32_t count = 0;
    try {
        (void)ImageFile::LoadFrame(kPath.wstring().c_str(), 3, &count);
        ADD_FAILURE();
    } catch (const Exception& e) {
        EXPECT_STREQ(e.what(), "Failed to load. Frame index is out of range.");
    }
    EXPECT_EQ(count, 3U);
}

TEST(Tiff, DamageIsRefused) {
    std::mt19937 random(3);
    for (const Kind& kind : {Kind{kRgb, 3, 8, kUint, -1, true, false, COMPRESSION_LZW}, Kind{kMap, 1, 8},
                             Kind{kInks, 4, 8, kUint, -1, false, true, COMPRESSION_ADOBE_DEFLATE}}) {
        Write(kind, 17, 11, random);
        SCOPED_TRACE(testing::Message() << kind.photometric << " " << FileBytes().size());
        ExpectDamageIsRefused(FileBytes(), 7);
    }
    std::filesystem::remove(kPath);
}

} // namespace
