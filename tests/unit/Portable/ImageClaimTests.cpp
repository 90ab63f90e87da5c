// SPDX-License-Identifier: MIT
// Files that claim more pixels than their bytes can hold: refused before memory is taken for the pixels. Each file is
// also made with bytes enough and loads, so that it is the claim that is refused.
#include <filesystem>
#include <fstream>

#include <malloc.h>
#include <sys/resource.h>
#include <tiffio.h>

#include "../../ScratchFolder.h"
#include "../ImageSupport.h"
#include "ProcessHeap.h"

using namespace Graphics;
using namespace ImageSupport;

namespace {

/// The load is refused and has asked for no pixels, rows or strips.
void ExpectClaimIsRefused(const Bytes& file) {
    const int64_t before = ProcessHeap::FailAfter(-1);
    EXPECT_EQ(Refusal(file), "Failed to load");
    EXPECT_EQ(ProcessHeap::FailAfter(-1), before) << "memory was taken before the claim was tested";
}

/// A little-endian TIFF file put together tag by tag: 8 bytes of header, `data`, the directory.
struct TiffFile {
    uint32_t width = 16, height = 100, rows = 10; ///< rows of a strip or tile
    uint16_t bits = 8, samples = 1, compression = COMPRESSION_NONE, photometric = PHOTOMETRIC_MINISBLACK;
    bool planes = false, tiled = false;
    uint32_t tileWidth = 16;
    std::vector<uint32_t> offsets, counts;
    Bytes data;

    /// As many blocks as the tags ask for, one after the other, each of `bytes` bytes.
    void List(size_t bytes, uint8_t value = 0) {
        const size_t across = tiled ? (width + tileWidth - 1) / tileWidth : 1;
        const size_t count = across * ((height + rows - 1) / rows) * (planes ? samples : 1);
        for (size_t i = 0; i < count; ++i) {
            offsets.push_back(static_cast<uint32_t>(8 + data.size()));
            counts.push_back(static_cast<uint32_t>(bytes));
            data.insert(data.end(), bytes, value);
        }
    }

    [[nodiscard]] Bytes Make() const {
        struct Entry {
            uint16_t tag, type;
            std::vector<uint32_t> values;
        };
        std::vector<Entry> entries = {{256, 4, {width}},
                                      {257, 4, {height}},
                                      {258, 3, std::vector<uint32_t>(samples, bits)},
                                      {259, 3, {compression}},
                                      {262, 3, {photometric}}};
        if (!tiled) {
            entries.push_back({273, 4, offsets});
        }
        entries.push_back({277, 3, {samples}});
        if (!tiled) {
            entries.push_back({278, 4, {rows}});
            entries.push_back({279, 4, counts});
        }
        entries.push_back({284, 3, {planes ? 2U : 1U}});
        if (tiled) {
            entries.insert(entries.end(),
                           {{322, 4, {tileWidth}}, {323, 4, {rows}}, {324, 4, offsets}, {325, 4, counts}});
        }
        Bytes file = {'I', 'I', 42, 0, 0, 0, 0, 0};
        const auto put = [&file](uint32_t value, int bytes) {
            for (int k = 0; k < bytes; ++k) {
                file.push_back(static_cast<uint8_t>(value >> 8 * k));
            }
        };
        file.insert(file.end(), data.begin(), data.end());
        file.resize((file.size() + 1) / 2 * 2);
        const auto patch = static_cast<uint32_t>(file.size());
        std::memcpy(&file[4], &patch, 4);
        // Values of more than four bytes lie behind the directory.
        uint32_t behind = patch + 2 + 12 * static_cast<uint32_t>(entries.size()) + 4;
        put(static_cast<uint32_t>(entries.size()), 2);
        for (const Entry& e : entries) {
            const auto bytes = static_cast<uint32_t>(e.values.size()) * (e.type == 3 ? 2 : 4);
            put(e.tag, 2);
            put(e.type, 2);
            put(static_cast<uint32_t>(e.values.size()), 4);
            if (bytes > 4) {
                put(behind, 4);
                behind += bytes;
            } else {
                for (const uint32_t v : e.values) {
                    put(v, e.type == 3 ? 2 : 4);
                }
                put(0, 4 - static_cast<int>(bytes));
            }
        }
        put(0, 4);
        for (const Entry& e : entries) {
            if (e.values.size() * (e.type == 3 ? 2 : 4) > 4) {
                for (const uint32_t v : e.values) {
                    put(v, e.type == 3 ? 2 : 4);
                }
            }
        }
        return file;
    }
};

/// Plain samples in strips, tiles, strips of planes and tiles of planes, all of them there.
std::vector<TiffFile> PlainFiles() {
    std::vector<TiffFile> files;
    for (const bool tiled : {false, true}) {
        for (const bool planes : {false, true}) {
            TiffFile file;
            file.tiled = tiled;
            file.planes = planes;
            file.samples = planes ? 3 : 1;
            file.photometric = planes ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
            file.rows = tiled ? 16 : 10;
            file.width = tiled ? 40 : 16;
            file.List(16U * file.rows, 77);
            files.push_back(file);
        }
    }
    return files;
}

TEST(ImageClaims, BlocksThatAreNotListedHoldNothing) {
    for (const TiffFile& whole : PlainFiles()) {
        SCOPED_TRACE(testing::Message() << "tiled " << whole.tiled << " planes " << whole.planes);
        ASSERT_EQ(Refusal(whole.Make()), "");
        const size_t plane = whole.offsets.size() / whole.samples;
        for (const size_t kept : {size_t{1}, plane, whole.offsets.size() - 1}) {
            if (kept == whole.offsets.size()) {
                continue;
            }
            TiffFile file = whole;
            file.offsets.resize(kept);
            file.counts.resize(kept);
            ExpectClaimIsRefused(file.Make());
            file.offsets.resize(whole.offsets.size()); // listed, but at offset 0, where the file begins
            ExpectClaimIsRefused(file.Make());
            file.counts = whole.counts;
            ExpectClaimIsRefused(file.Make());
        }
    }
}

TEST(ImageClaims, BlocksThatAreTooShortOrNotInTheFileAreRefused) {
    for (const TiffFile& whole : PlainFiles()) {
        SCOPED_TRACE(testing::Message() << "tiled " << whole.tiled << " planes " << whole.planes);
        for (const size_t block : {size_t{0}, whole.counts.size() - 1}) {
            for (const uint32_t count : {0U, 1U, whole.counts[block] - 1}) {
                TiffFile file = whole;
                file.counts[block] = count;
                ExpectClaimIsRefused(file.Make());
            }
            for (const uint32_t offset : {4U, 1U << 20, 0xFFFFFF00U}) {
                TiffFile file = whole;
                file.offsets[block] = offset;
                ExpectClaimIsRefused(file.Make());
            }
        }
        TiffFile file = whole; // every block at the same place: the file has a fraction of the bytes
        std::fill(file.offsets.begin(), file.offsets.end(), 8U);
        file.data.resize(whole.counts[0]);
        ExpectClaimIsRefused(file.Make());
    }
}

TEST(ImageClaims, NoCodingMakesPicturesOfNothing) {
    // 30000 x 20000 pixels in strips of one row, of 1000 rows and in one; 4000 bytes for all of them.
    const uint16_t codings[] = {
        COMPRESSION_NONE,     COMPRESSION_CCITTRLE, COMPRESSION_CCITTFAX3, COMPRESSION_CCITTFAX4,
        COMPRESSION_LZW,      COMPRESSION_JPEG,     COMPRESSION_PACKBITS,  COMPRESSION_CCITTRLEW,
        COMPRESSION_DEFLATE,  COMPRESSION_JBIG,     COMPRESSION_LZMA,      COMPRESSION_ADOBE_DEFLATE,
        COMPRESSION_PIXARLOG, COMPRESSION_ZSTD,     COMPRESSION_WEBP,      COMPRESSION_THUNDERSCAN,
        COMPRESSION_NEXT,     COMPRESSION_LERC,     COMPRESSION_SGILOG};
    for (const uint16_t coding : codings) {
        for (const uint32_t rows : {1000U, 20000U}) {
            for (const int layout : {0, 1, 2}) {
                SCOPED_TRACE(testing::Message() << "coding " << coding << " rows " << rows << " layout " << layout);
                TiffFile file;
                file.width = 30000;
                file.height = 20000;
                file.rows = rows;
                file.compression = coding;
                file.tiled = layout == 1;
                file.tileWidth = 30000;
                file.planes = layout == 2;
                file.bits =
                    coding <= COMPRESSION_CCITTFAX4 || coding == COMPRESSION_CCITTRLEW || coding == COMPRESSION_JBIG
                        ? 1
                        : 8;
                file.samples = layout == 2 ? 3 : 1;
                file.photometric = layout == 2 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
                file.List(2000 / (20000 / rows), 0xFF);
                ExpectClaimIsRefused(file.Make());
            }
        }
    }
}

TEST(ImageClaims, ManySamplesMakeNoMoreOfAByte) {
    // Few rows and pixels, 64 samples of each: 24 rows of a fax would unpack to 400 MB, tiles of floats to 1 GB.
    const struct {
        uint16_t coding, bits;
        uint32_t width, height;
    } claims[] = {{COMPRESSION_CCITTRLE, 1, 2000, 24},     {COMPRESSION_CCITTFAX3, 1, 2000, 24},
                  {COMPRESSION_CCITTFAX4, 1, 2300000, 24}, {COMPRESSION_CCITTRLEW, 1, 2000, 24},
                  {COMPRESSION_LERC, 32, 2048, 2048},      {COMPRESSION_JBIG, 1, 8000, 2000}};
    for (const auto& claim : claims) {
        SCOPED_TRACE(testing::Message() << "coding " << claim.coding);
        TiffFile file;
        file.width = claim.width;
        file.height = claim.height;
        file.rows = claim.height;
        file.bits = claim.bits;
        file.samples = 64;
        file.compression = claim.coding;
        file.List(8, 0xFF);
        ExpectClaimIsRefused(file.Make());
    }
}

/// Written by libtiff: one colour, in one strip, so that every coding is at its shortest.
Bytes BlankTiff(uint32_t width, uint32_t height, uint16_t bits, uint16_t compression) {
    const std::filesystem::path path = ScratchFolder() / "blank.tif";
    TIFF* tiff = TIFFOpen(path.c_str(), "wl");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, height);
    const Bytes row((static_cast<size_t>(width) * bits + 7) / 8, 0);
    for (uint32_t y = 0; y < height; ++y) {
        EXPECT_EQ(TIFFWriteScanline(tiff, const_cast<uint8_t*>(row.data()), y, 0), 1);
    }
    TIFFClose(tiff);
    std::ifstream file(path, std::ios::binary);
    const Bytes bytes(std::istreambuf_iterator<char>(file), {});
    std::filesystem::remove(path);
    return bytes;
}

TEST(ImageClaims, BlankPicturesOfEveryCodingLoad) {
    for (const uint16_t coding : {COMPRESSION_NONE, COMPRESSION_CCITTRLE, COMPRESSION_CCITTRLEW, COMPRESSION_CCITTFAX3,
                                  COMPRESSION_CCITTFAX4, COMPRESSION_LZW, COMPRESSION_PACKBITS, COMPRESSION_DEFLATE,
                                  COMPRESSION_ADOBE_DEFLATE, COMPRESSION_LZMA, COMPRESSION_ZSTD, COMPRESSION_JPEG}) {
        if (TIFFIsCODECConfigured(static_cast<uint16_t>(coding)) != 1) {
            continue;
        }
        const uint16_t bits = coding == COMPRESSION_CCITTRLEW || (coding > 1 && coding <= 4) ? 1 : 8;
        SCOPED_TRACE(testing::Message() << "coding " << coding);
        const Bytes file = BlankTiff(3000, 2000, bits, static_cast<uint16_t>(coding));
        ASSERT_EQ(Refusal(file), "") << file.size();
        const std::vector<uint32_t> pixels = Argb(*Load(file));
        EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 0xFFFFFFFFU), 6000000);
    }
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(ImageClaims, AStripOfAFaxIsUnpackedRowByRow) {
    // 40 MB of pixels in one strip: with 60 MB more than the process has now there is room for them, not for them and
    // for the strip.
    constexpr uint32_t kSide = 18000;
    for (const uint16_t coding : {COMPRESSION_CCITTRLE, COMPRESSION_CCITTFAX3, COMPRESSION_CCITTFAX4,
                                  COMPRESSION_PACKBITS, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE}) {
        const Bytes file = BlankTiff(kSide, kSide, 1, static_cast<uint16_t>(coding));
        malloc_trim(0); // so that nothing is left over from before
        uint64_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        rlimit old{};
        ASSERT_EQ(getrlimit(RLIMIT_AS, &old), 0);
        const rlimit tight{pages * 4096 + 60'000'000, old.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_AS, &tight), 0);
        const std::string refusal = Refusal(file);
        ASSERT_EQ(setrlimit(RLIMIT_AS, &old), 0);
        EXPECT_EQ(refusal, "") << "coding " << coding;
    }
}
#endif

TEST(ImageClaims, OtherKindsOfFilesKeepToTheirBytes) {
    // Only as much of each file as says its size, and a little that looks like pixels.
    const auto big = [](uint32_t v) {
        return Bytes{static_cast<uint8_t>(v >> 24), static_cast<uint8_t>(v >> 16), static_cast<uint8_t>(v >> 8),
                     static_cast<uint8_t>(v)};
    };
    const Bytes gif = {'G', 'I', 'F', '8', '9', 'a', 0x00, 0x10, 0x00, 0x10, 0x80, 0, 0, 0, 0, 0, 255, 255,
                       255, ',', 0,   0,   0,   0,   0x00, 0x10, 0x00, 0x10, 0x00, 2, 2, 4, 1, 0, 0x3B};
    ExpectClaimIsRefused(gif);
    Bytes bmp(54, 0); // 20000 x 20000 of 24 bits
    const uint32_t fields[] = {58, 0, 54, 40, 20000, 20000, 24U << 16 | 1U};
    bmp[0] = 'B';
    bmp[1] = 'M';
    std::memcpy(&bmp[2], fields, sizeof fields);
    bmp.resize(58, 1);
    ExpectClaimIsRefused(bmp);
    for (const uint8_t interlaced : {uint8_t{0}, uint8_t{1}}) {
        Bytes png = {0x89, 'P', 'N', 'G', 13, 10, 26, 10};
        const auto chunk = [&](Bytes body) { // name and data
            const Bytes length = big(static_cast<uint32_t>(body.size() - 4));
            uint32_t crc = 0xFFFFFFFFU;
            for (const uint8_t b : body) {
                crc ^= b;
                for (int k = 0; k < 8; ++k) {
                    crc = crc >> 1 ^ (crc % 2 != 0 ? 0xEDB88320U : 0U);
                }
            }
            png.insert(png.end(), length.begin(), length.end());
            png.insert(png.end(), body.begin(), body.end());
            const Bytes sum = big(~crc);
            png.insert(png.end(), sum.begin(), sum.end());
        };
        Bytes header = {'I', 'H', 'D', 'R'};
        for (const uint32_t side : {20000U, 20000U}) {
            const Bytes bytes = big(side);
            header.insert(header.end(), bytes.begin(), bytes.end());
        }
        header.insert(header.end(), {8, 6, 0, 0, interlaced});
        chunk(header);
        chunk({'I', 'D', 'A', 'T', 0x78, 0x9C, 0x63, 0x00, 0x00, 0x00, 0x01, 0x00, 0x01});
        ExpectClaimIsRefused(png);
    }
}

} // namespace
