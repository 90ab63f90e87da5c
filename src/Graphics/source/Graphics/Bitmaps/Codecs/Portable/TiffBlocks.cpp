// SPDX-License-Identifier: MIT
#include "TiffBlocks.h"

#include <algorithm>

#include "../CodecSupport.h"

namespace Graphics {
namespace {

/// Pictures up to this size are always allowed: every coding can produce them from very few bytes, if of one colour. As
/// a pixel counts what unpacks to as much as one of the bitmap, four bytes.
constexpr uint64_t kFreePixels = 1U << 24;
/// For larger pictures, the pixels that a byte may stand for if the coding has no limit. Fax: blank rows as wide as the
/// largest printers', eight to a byte. Others: pictures are cut into blocks with headers.
constexpr uint64_t kMostFaxPixels = 1U << 20;
constexpr uint64_t kMostPixels = 1U << 16;

[[nodiscard]] uint64_t CeilDivide(uint64_t a, uint64_t b) noexcept { return (a + b - 1) / b; }

[[nodiscard]] bool IsFax(uint16_t compression) noexcept {
    return compression == COMPRESSION_CCITTRLE || compression == COMPRESSION_CCITTRLEW ||
           compression == COMPRESSION_CCITTFAX3 || compression == COMPRESSION_CCITTFAX4;
}

/// The largest number of bytes that a byte can become; 0 if there is no limit.
[[nodiscard]] uint64_t MostGrowth(uint16_t compression, uint64_t bitsPerPixel) noexcept {
    switch (compression) {
    case COMPRESSION_NONE:
        return 1;
    case COMPRESSION_PACKBITS: // 128 bytes from two
        return 64;
    case COMPRESSION_THUNDERSCAN: // 63 pixels of four bits from a byte
    case COMPRESSION_NEXT:        // 63 pixels of two bits from a byte
        return 32;
    case COMPRESSION_SGILOG: // runs of 129 from two bytes; a pixel has four such bytes and becomes three floats
    case COMPRESSION_SGILOG24:
        return 65 * 3;
    case COMPRESSION_LZW: // codes of nine bits or more, strings below 4096
        return 4096 * 8 / 9 + 1;
    case COMPRESSION_DEFLATE: // 258 bytes from two bits
    case COMPRESSION_ADOBE_DEFLATE:
        return 1032;
    case COMPRESSION_PIXARLOG: // deflated words of two bytes, which become floats
        return 2064;
    case COMPRESSION_LZMA: // 273 bytes from fourteen binary decisions of 0.022 bits
        return 8192;
    case COMPRESSION_ZSTD: // blocks of 128 KiB from four bytes
        return 32768;
    case COMPRESSION_JPEG: // a block of 64 pixels from a bit
    case COMPRESSION_OJPEG:
        return 512 * CeilDivide(bitsPerPixel, 8);
    default:
        return 0;
    }
}

} // namespace

TiffBlocks::TiffBlocks(TIFF* tiff) : m_tiff(tiff), m_tiled(TIFFIsTiled(tiff) != 0) {
    uint16_t bits = 1, samples = 1, planar = PLANARCONFIG_CONTIG;
    uint32_t imageWidth = 0, faxOptions = 0;
    Require(TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &imageWidth) == 1 &&
            TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &m_imageHeight) == 1 && imageWidth > 0 && m_imageHeight > 0);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planar);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &m_compression);
    if (m_compression == COMPRESSION_CCITTFAX3) {
        TIFFGetField(tiff, TIFFTAG_GROUP3OPTIONS, &faxOptions);
    }
    m_twoDimensional = m_compression == COMPRESSION_CCITTFAX4 ||
                       (m_compression == COMPRESSION_CCITTFAX3 && (faxOptions & GROUP3OPT_2DENCODING) != 0);
    m_width = imageWidth;
    if (m_tiled) {
        Require(TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &m_width) == 1 &&
                TIFFGetField(tiff, TIFFTAG_TILELENGTH, &m_height) == 1);
    } else {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &m_height);
        m_height = std::min(m_height, m_imageHeight);
    }
    Require(m_width > 0 && m_height > 0);
    const bool planes = planar == PLANARCONFIG_SEPARATE && samples > 1;
    m_planes = planes ? samples : 1;
    m_bitsPerPixel = static_cast<uint64_t>(bits) * (planes ? 1 : samples);
    m_imagePixels = static_cast<uint64_t>(imageWidth) * m_imageHeight;
    m_across = CeilDivide(imageWidth, m_width);
    m_down = CeilDivide(m_imageHeight, m_height);

    // Tiles much larger than the image are rejected.
    const uint64_t stride = CeilDivide(m_width * m_bitsPerPixel, 8);
    const uint64_t imageBytes = CeilDivide(imageWidth * m_bitsPerPixel, 8) * m_imageHeight;
    Require(stride <= 0x7FFFFFFF / m_height && stride * m_height <= imageBytes * 4 + (1U << 24));
    m_stride = static_cast<size_t>(stride);
}

bool TiffBlocks::ComesInRows() const noexcept {
    switch (m_compression) {
    case COMPRESSION_NONE:
    case COMPRESSION_PACKBITS:
    case COMPRESSION_LZW:
    case COMPRESSION_DEFLATE:
    case COMPRESSION_ADOBE_DEFLATE:
        return !m_tiled && m_planes == 1;
    default:
        return !m_tiled && m_planes == 1 && IsFax(m_compression);
    }
}

uint64_t TiffBlocks::UnpackedBytes(uint64_t rows) const noexcept {
    return m_tiled ? TIFFTileSize64(m_tiff) : TIFFVStripSize64(m_tiff, static_cast<uint32_t>(rows));
}

uint64_t TiffBlocks::ListedBytes(uint32_t block, uint64_t fileBytes) const {
    int failed = 0;
    const uint64_t offset = TIFFGetStrileOffsetWithErr(m_tiff, block, &failed);
    Require(failed == 0);
    const uint64_t count = TIFFGetStrileByteCountWithErr(m_tiff, block, &failed);
    Require(failed == 0);
    // libtiff reports a missing block at offset 0, where the file's header lies.
    const uint64_t header = TIFFIsBigTIFF(m_tiff) != 0 ? 16 : 8;
    Require(offset >= header && offset < fileBytes && count > 0);
    return std::min(count, fileBytes - offset);
}

bool TiffBlocks::CanBecome(uint64_t bytes, uint64_t rows) const noexcept {
    if (IsFax(m_compression)) {
        // A row that repeats the row above has one bit. A row coded by itself has a code of at least four bits for its
        // last run, and twelve bits for each 2560 pixels before it.
        const uint64_t rowBits = m_twoDimensional ? 1 : 4 + m_width / 2560 * 12;
        return rows * rowBits <= bytes * 8;
    }
    const uint64_t growth = MostGrowth(m_compression, m_bitsPerPixel);
    return growth == 0 || CeilDivide(UnpackedBytes(rows), growth) <= bytes;
}

void TiffBlocks::RequireBacked(uint64_t fileBytes) const {
    const uint64_t blocks = m_across * m_down * m_planes;
    Require(blocks <= (m_tiled ? TIFFNumberOfTiles(m_tiff) : TIFFNumberOfStrips(m_tiff)));
    // Checks each block, and then all together, since a file may list the same bytes many times.
    uint64_t unpacked = 0, rowsOfAll = 0;
    for (uint64_t block = 0; block < blocks; ++block) {
        const uint64_t top = block / m_across % m_down * m_height;
        const uint64_t rows = m_tiled ? m_height : std::min<uint64_t>(m_height, m_imageHeight - top);
        Require(CanBecome(ListedBytes(static_cast<uint32_t>(block), fileBytes), rows));
        unpacked += UnpackedBytes(rows);
        rowsOfAll += rows;
    }
    const uint64_t growth = MostGrowth(m_compression, m_bitsPerPixel);
    if (growth != 0) {
        Require(CeilDivide(unpacked, growth) <= fileBytes);
        return;
    }
    const bool fax = IsFax(m_compression);
    // Fax has one bit for a pixel. libtiff would take many for a longer row, which grows as if it had that many pixels.
    Require(!fax || (m_bitsPerPixel == 1 && CanBecome(fileBytes, rowsOfAll)));
    const uint64_t pixels = std::max(m_imagePixels, unpacked / 4);
    Require(pixels <= kFreePixels || pixels / (fax ? kMostFaxPixels : kMostPixels) <= fileBytes);
}

} // namespace Graphics
