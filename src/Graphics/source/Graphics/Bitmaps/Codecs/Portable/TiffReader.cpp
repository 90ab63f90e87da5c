// SPDX-License-Identifier: MIT
// Strips are read row by row if the coding allows that; otherwise strips and tiles are read as a whole and converted
// row by row.
#include "TiffReader.h"

#include <algorithm>

namespace Graphics {
namespace {

/// Files with more samples hold measurements, not pictures.
constexpr uint16_t kMostSamples = 64;

} // namespace

TiffReader::TiffReader(ByteSource& source) : m_source(source), m_file(source) { Require(!m_file.TakeFailure()); }

uint32_t TiffReader::CountFrames() {
    const uint32_t count = TIFFNumberOfDirectories(m_file.Tiff());
    Require(count > 0 && !m_file.TakeFailure());
    return count;
}

void TiffReader::ReadTags() {
    TIFF* tiff = m_file.Tiff();
    uint16_t planar = PLANARCONFIG_CONTIG, sampleFormat = SAMPLEFORMAT_UINT, compression = COMPRESSION_NONE;
    Require(TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &m_width) == 1 &&
            TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &m_height) == 1 && m_width > 0 && m_height > 0);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &m_page.bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &m_page.samples);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planar);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &sampleFormat);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &compression);
    if (TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &m_page.photometric) != 1) {
        m_page.photometric = m_page.samples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    }
    Require(m_page.samples > 0 && m_page.samples <= kMostSamples && TIFFIsCODECConfigured(compression) == 1);
    if (compression == COMPRESSION_JPEG && m_page.photometric == PHOTOMETRIC_YCBCR && planar == PLANARCONFIG_CONTIG &&
        m_page.bits == 8) {
        Require(TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB) == 1);
        m_page.photometric = PHOTOMETRIC_RGB;
    }
    m_page.planes = planar == PLANARCONFIG_SEPARATE && m_page.samples > 1;

    switch (m_page.photometric) {
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_MINISWHITE:
        m_page.colors = 1;
        break;
    case PHOTOMETRIC_PALETTE: {
        m_page.colors = 1;
        uint16_t* map[3] = {};
        Require(m_page.bits <= 16 && TIFFGetField(tiff, TIFFTAG_COLORMAP, &map[0], &map[1], &map[2]) == 1);
        std::copy(map, map + 3, m_page.map);
        break;
    }
    case PHOTOMETRIC_RGB:
        m_page.colors = 3;
        break;
    case PHOTOMETRIC_SEPARATED: {
        uint16_t inkSet = INKSET_CMYK;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_INKSET, &inkSet);
        m_page.colors = 4;
        m_page.known = inkSet == INKSET_CMYK;
        break;
    }
    default:
        m_page.known = false;
        break;
    }
    if (!m_page.known) {
        return;
    }
    Require(m_page.samples >= m_page.colors);
    uint16_t extraCount = 0;
    uint16_t* extras = nullptr;
    if (m_page.samples > m_page.colors && TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &extraCount, &extras) == 1 &&
        extraCount > 0) {
        m_page.associated = extras[0] == EXTRASAMPLE_ASSOCALPHA;
        m_page.hasAlpha = m_page.associated || extras[0] == EXTRASAMPLE_UNASSALPHA;
    }
    if (sampleFormat == SAMPLEFORMAT_IEEEFP) {
        Require((m_page.bits == 16 || m_page.bits == 32 || m_page.bits == 64) &&
                m_page.photometric != PHOTOMETRIC_PALETTE);
        m_page.kind = m_page.bits == 16   ? TiffSamples::Half
                      : m_page.bits == 32 ? TiffSamples::Float
                                          : TiffSamples::Double;
    } else {
        Require(sampleFormat == SAMPLEFORMAT_UINT || sampleFormat == SAMPLEFORMAT_INT ||
                sampleFormat == SAMPLEFORMAT_VOID);
        Require(m_page.bits >= 1 && m_page.bits <= 32);
        m_page.kind = m_page.bits == 8                         ? TiffSamples::Bytes
                      : m_page.bits == 16 || m_page.bits == 32 ? TiffSamples::Words
                                                               : TiffSamples::Bits;
        m_page.hasSign = sampleFormat == SAMPLEFORMAT_INT && m_page.photometric != PHOTOMETRIC_PALETTE;
    }
}

GXPixelFormat TiffReader::ChooseFormat() {
    if (!m_page.known) {
        return m_page.photometric == PHOTOMETRIC_YCBCR && m_page.bits == 8 ? GXPixelFormatBGR24 : GXPixelFormatBGRX32;
    }
    if (m_page.colors == 1 && m_page.samples == 1 && m_page.bits == 1 && !m_page.hasSign) {
        return GXPixelFormatIndexed1;
    }
    if (m_page.kind != TiffSamples::Bytes || m_page.hasSign || m_page.colors == 4) {
        return GXPixelFormatBGRX32;
    }
    if (m_page.colors == 1) {
        return !m_page.hasAlpha                            ? GXPixelFormatIndexed8
               : m_page.photometric == PHOTOMETRIC_PALETTE ? GXPixelFormatBGRX32
                                                           : GXPixelFormatBGRA32;
    }
    return m_page.hasAlpha ? GXPixelFormatBGRA32 : GXPixelFormatBGR24;
}

std::shared_ptr<const Palette> TiffReader::MakePalette() const {
    const bool bits = m_page.format == GXPixelFormatIndexed1;
    if (m_page.photometric != PHOTOMETRIC_PALETTE) {
        const bool inverted = m_page.photometric == PHOTOMETRIC_MINISWHITE;
        return bits ? BitPalette(inverted) : GreyPalette(inverted);
    }
    uint32_t colors[256];
    const size_t count = bits ? 2 : 256;
    // The map's values have 16 bits, but some writers used only the lower 8.
    bool wide = false;
    for (size_t i = 0; i < count; ++i) {
        wide = wide || ((m_page.map[0][i] | m_page.map[1][i] | m_page.map[2][i]) & 0xFF00) != 0;
    }
    for (size_t i = 0; i < count; ++i) {
        uint32_t color = 0xFF;
        for (const uint16_t* channel : m_page.map) {
            color = color << 8 | static_cast<uint32_t>(wide ? channel[i] >> 8 : channel[i]);
        }
        colors[i] = color;
    }
    return std::make_shared<const Palette>(colors, count);
}

std::shared_ptr<SysMemBitmap> TiffReader::Load(uint32_t frame) {
    TIFF* tiff = m_file.Tiff();
    Require(frame == 0 || TIFFSetDirectory(tiff, frame) == 1);
    ReadTags();
    m_page.format = ChooseFormat();
    float dpiX = 0, dpiY = 0;
    uint16_t unit = RESUNIT_INCH;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
    if (unit != RESUNIT_NONE) {
        TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &dpiX);
        TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &dpiY);
    }
    const double inch = unit == RESUNIT_CENTIMETER ? 2.54 : 1.0;
    m_blocks.emplace(tiff);
    if (m_page.known) {
        RequirePlainBlocks();
    }
    m_blocks->RequireBacked(m_source.Size());
    Require(!m_file.TakeFailure());
    std::shared_ptr<SysMemBitmap> image = NewImage(m_width, m_height, m_page.format, dpiX * inch, dpiY * inch);
    if (IsIndexedFormat(m_page.format)) {
        image->SetPalette(MakePalette());
    }
    if (!m_page.known) {
        LoadConverted(*image);
    } else if (m_blocks->ComesInRows()) {
        LoadRows(*image);
    } else {
        LoadBlocks(*image);
    }
    Require(!m_file.TakeFailure());
    return image;
}

size_t TiffReader::WantedPlanes() const noexcept {
    return m_page.planes ? static_cast<size_t>(m_page.colors + (m_page.hasAlpha ? 1 : 0)) : 1;
}

void TiffReader::RequirePlainBlocks() const {
    TIFF* tiff = m_file.Tiff();
    const bool tiled = m_blocks->Tiled();
    // In one-bit images tiles start at whole bytes, as the format requires.
    Require(!tiled || m_page.bits >= 8 || m_blocks->Width() % 8 == 0);
    const uint64_t bytes = static_cast<uint64_t>(m_blocks->StrideBytes()) * m_blocks->Height();
    Require(bytes * WantedPlanes() <= 0x7FFFFFFF);
    Require((tiled ? TIFFTileSize64(tiff) : TIFFVStripSize64(tiff, m_blocks->Height())) == bytes);
    Require(tiled || TIFFScanlineSize64(tiff) == m_blocks->StrideBytes());
}

void TiffReader::LoadRows(SysMemBitmap& image) {
    HeapArray<uint8_t> row;
    row.resize(m_blocks->StrideBytes());
    for (uint32_t y = 0; y < m_height; ++y) {
        Require(TIFFReadScanline(m_file.Tiff(), row.data(), y, 0) == 1 && !m_file.TakeFailure());
        m_rows.Convert(image.Data() + static_cast<size_t>(image.StrideBytes()) * y, row.data(), 0, m_width);
    }
}

void TiffReader::LoadBlocks(SysMemBitmap& image) {
    TIFF* tiff = m_file.Tiff();
    const bool tiled = m_blocks->Tiled();
    const uint32_t blockWidth = m_blocks->Width(), blockHeight = m_blocks->Height();
    const size_t stride = m_blocks->StrideBytes();
    const size_t blockBytes = stride * blockHeight;
    const size_t planes = WantedPlanes();
    HeapArray<uint8_t> bytes;
    bytes.resize(blockBytes * planes);
    // Alpha directly follows the colours, so the needed planes are the first ones.
    for (uint64_t row = 0; row < m_blocks->Down(); ++row) {
        for (uint64_t column = 0; column < m_blocks->Across(); ++column) {
            const auto left = static_cast<uint32_t>(column * blockWidth);
            const auto top = static_cast<uint32_t>(row * blockHeight);
            const uint32_t width = std::min(blockWidth, m_width - left);
            const uint32_t height = std::min(blockHeight, m_height - top);
            const auto wanted = static_cast<tmsize_t>(tiled ? blockBytes : stride * height);
            for (uint64_t plane = 0; plane < planes; ++plane) {
                const auto index =
                    static_cast<uint32_t>((plane * m_blocks->Down() + row) * m_blocks->Across() + column);
                uint8_t* to = bytes.data() + blockBytes * plane;
                const tmsize_t got = tiled ? TIFFReadEncodedTile(tiff, index, to, wanted)
                                           : TIFFReadEncodedStrip(tiff, index, to, wanted);
                Require(got == wanted && !m_file.TakeFailure());
            }
            const size_t leftBit = static_cast<size_t>(left) * static_cast<size_t>(BitsPerPixel(m_page.format));
            for (uint32_t y = 0; y < height; ++y) {
                uint8_t* dst = image.Data() + static_cast<size_t>(image.StrideBytes()) * (top + y) + leftBit / 8;
                m_rows.Convert(dst, bytes.data() + stride * y, blockBytes, width);
            }
        }
    }
}

void TiffReader::LoadConverted(SysMemBitmap& image) {
    TIFF* tiff = m_file.Tiff();
    char message[1024];
    TIFFRGBAImage converter;
    Require(TIFFRGBAImageOK(tiff, message) == 1 && TIFFRGBAImageBegin(&converter, tiff, 1, message) == 1);
    struct End {
        TIFFRGBAImage* converter;
        ~End() { TIFFRGBAImageEnd(converter); }
    } const end{&converter};
    converter.req_orientation = converter.orientation;
    uint32_t bandRows = m_height;
    if (TIFFIsTiled(tiff) != 0) {
        TIFFGetField(tiff, TIFFTAG_TILELENGTH, &bandRows);
    } else {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &bandRows);
    }
    bandRows = std::clamp(bandRows, 1U, m_height);
    HeapArray<uint32_t> band;
    band.resize(static_cast<size_t>(m_width) * bandRows);
    const size_t step = m_page.format == GXPixelFormatBGR24 ? 3 : 4;
    for (uint32_t y = 0; y < m_height; y += bandRows) {
        const uint32_t rows = std::min(bandRows, m_height - y);
        converter.row_offset = static_cast<int>(y);
        Require(TIFFRGBAImageGet(&converter, band.data(), m_width, rows) == 1 && !m_file.TakeFailure());
        for (uint32_t k = 0; k < rows; ++k) {
            uint8_t* dst = image.Data() + static_cast<size_t>(image.StrideBytes()) * (y + k);
            const uint32_t* src = band.data() + static_cast<size_t>(m_width) * k;
            for (uint32_t x = 0; x < m_width; ++x, dst += step) {
                dst[0] = static_cast<uint8_t>(TIFFGetB(src[x]));
                dst[1] = static_cast<uint8_t>(TIFFGetG(src[x]));
                dst[2] = static_cast<uint8_t>(TIFFGetR(src[x]));
                if (step == 4) {
                    dst[3] = 255;
                }
            }
        }
    }
}

} // namespace Graphics
