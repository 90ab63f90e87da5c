// SPDX-License-Identifier: MIT
// Bitmap formats that have the file's layout take the samples as they are. All else passes row by row through arrays of
// 8-bit levels, one for each channel.
#include "TiffReader.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "../../../Pixels/PixelConversion.h"

namespace Graphics {
namespace {

/// More are the bands of measurements, not of pictures.
constexpr uint16_t kMostSamples = 64;

[[nodiscard]] uint64_t CeilDivide(uint64_t a, uint64_t b) noexcept { return (a + b - 1) / b; }

template <class T> [[nodiscard]] T LoadNative(const uint8_t* p) noexcept {
    T value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

/// A float of 16 bits: sign, five bits of exponent, ten of fraction.
[[nodiscard]] double FromHalf(uint16_t half) noexcept {
    const int exponent = half >> 10 & 31;
    const double fraction = half & 1023;
    const double value = exponent == 0    ? std::ldexp(fraction, -24)
                         : exponent == 31 ? (fraction == 0 ? HUGE_VAL : NAN)
                                          : std::ldexp(fraction + 1024, exponent - 25);
    return (half & 0x8000) != 0 ? -value : value;
}

/// `bits` bits from bit `at` on, most significant first.
[[nodiscard]] uint32_t BitsAt(const uint8_t* row, uint64_t at, uint32_t bits) noexcept {
    uint64_t value = 0;
    const uint64_t last = (at + bits - 1) / 8;
    for (uint64_t i = at / 8; i <= last; ++i) {
        value = value << 8 | row[i];
    }
    value >>= (last + 1) * 8 - (at + bits);
    return static_cast<uint32_t>(value & ((1ULL << bits) - 1));
}

} // namespace

TiffReader::TiffReader(ByteSource& source) : m_file(source) { Require(!m_file.TakeFailure()); }

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
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &m_bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &m_samples);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planar);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &sampleFormat);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &compression);
    if (TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &m_photometric) != 1) {
        m_photometric = m_samples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    }
    Require(m_samples > 0 && m_samples <= kMostSamples && TIFFIsCODECConfigured(compression) == 1);
    if (compression == COMPRESSION_JPEG && m_photometric == PHOTOMETRIC_YCBCR && planar == PLANARCONFIG_CONTIG &&
        m_bits == 8) {
        Require(TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB) == 1);
        m_photometric = PHOTOMETRIC_RGB;
    }
    m_planes = planar == PLANARCONFIG_SEPARATE && m_samples > 1;

    switch (m_photometric) {
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_MINISWHITE:
        m_colors = 1;
        break;
    case PHOTOMETRIC_PALETTE: {
        m_colors = 1;
        uint16_t* map[3] = {};
        Require(m_bits <= 16 && TIFFGetField(tiff, TIFFTAG_COLORMAP, &map[0], &map[1], &map[2]) == 1);
        std::copy(map, map + 3, m_map);
        break;
    }
    case PHOTOMETRIC_RGB:
        m_colors = 3;
        break;
    case PHOTOMETRIC_SEPARATED: {
        uint16_t inkSet = INKSET_CMYK;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_INKSET, &inkSet);
        m_colors = 4;
        m_known = inkSet == INKSET_CMYK;
        break;
    }
    default:
        m_known = false;
        break;
    }
    if (!m_known) {
        return;
    }
    Require(m_samples >= m_colors);
    uint16_t extraCount = 0;
    uint16_t* extras = nullptr;
    if (m_samples > m_colors && TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &extraCount, &extras) == 1 && extraCount > 0) {
        m_associated = extras[0] == EXTRASAMPLE_ASSOCALPHA;
        m_hasAlpha = m_associated || extras[0] == EXTRASAMPLE_UNASSALPHA;
    }
    if (sampleFormat == SAMPLEFORMAT_IEEEFP) {
        Require((m_bits == 16 || m_bits == 32 || m_bits == 64) && m_photometric != PHOTOMETRIC_PALETTE);
        m_kind = m_bits == 16 ? Samples::Half : m_bits == 32 ? Samples::Float : Samples::Double;
    } else {
        Require(sampleFormat == SAMPLEFORMAT_UINT || sampleFormat == SAMPLEFORMAT_INT ||
                sampleFormat == SAMPLEFORMAT_VOID);
        Require(m_bits >= 1 && m_bits <= 32);
        m_kind = m_bits == 8 ? Samples::Bytes : m_bits == 16 || m_bits == 32 ? Samples::Words : Samples::Bits;
        m_signed = sampleFormat == SAMPLEFORMAT_INT && m_photometric != PHOTOMETRIC_PALETTE;
    }
}

GXPixelFormat TiffReader::ChooseFormat() {
    if (!m_known) {
        return m_photometric == PHOTOMETRIC_YCBCR && m_bits == 8 ? GXPixelFormatBGR24 : GXPixelFormatBGRX32;
    }
    if (m_colors == 1 && m_samples == 1 && m_bits == 1 && !m_signed) {
        return GXPixelFormatIndexed1;
    }
    if (m_kind != Samples::Bytes || m_signed || m_colors == 4) {
        return GXPixelFormatBGRX32;
    }
    if (m_colors == 1) {
        return !m_hasAlpha                            ? GXPixelFormatIndexed8
               : m_photometric == PHOTOMETRIC_PALETTE ? GXPixelFormatBGRX32
                                                      : GXPixelFormatBGRA32;
    }
    return m_hasAlpha ? GXPixelFormatBGRA32 : GXPixelFormatBGR24;
}

std::shared_ptr<const Palette> TiffReader::MakePalette() const {
    const bool bits = m_format == GXPixelFormatIndexed1;
    if (m_photometric != PHOTOMETRIC_PALETTE) {
        const bool inverted = m_photometric == PHOTOMETRIC_MINISWHITE;
        return bits ? BitPalette(inverted) : GreyPalette(inverted);
    }
    uint32_t colors[256];
    const size_t count = bits ? 2 : 256;
    // The map's numbers have 16 bits; some writers used only the lower 8.
    bool wide = false;
    for (size_t i = 0; i < count; ++i) {
        wide = wide || ((m_map[0][i] | m_map[1][i] | m_map[2][i]) & 0xFF00) != 0;
    }
    for (size_t i = 0; i < count; ++i) {
        uint32_t color = 0xFF;
        for (const uint16_t* channel : m_map) {
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
    m_format = ChooseFormat();
    float dpiX = 0, dpiY = 0;
    uint16_t unit = RESUNIT_INCH;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
    if (unit != RESUNIT_NONE) {
        TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &dpiX);
        TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &dpiY);
    }
    const double inch = unit == RESUNIT_CENTIMETER ? 2.54 : 1.0;
    std::shared_ptr<SysMemBitmap> image = NewImage(m_width, m_height, m_format, dpiX * inch, dpiY * inch);
    if (IsIndexedFormat(m_format)) {
        image->SetPalette(MakePalette());
    }
    if (m_known) {
        LoadBlocks(*image);
    } else {
        LoadConverted(*image);
    }
    Require(!m_file.TakeFailure());
    return image;
}

void TiffReader::LoadBlocks(SysMemBitmap& image) {
    TIFF* tiff = m_file.Tiff();
    const bool tiled = TIFFIsTiled(tiff) != 0;
    uint32_t blockWidth = m_width, blockHeight = m_height;
    if (tiled) {
        Require(TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &blockWidth) == 1 &&
                TIFFGetField(tiff, TIFFTAG_TILELENGTH, &blockHeight) == 1);
    } else {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &blockHeight);
        blockHeight = std::min(blockHeight, m_height);
    }
    // In one-bit images a tile starts at a whole byte, as the format has it.
    Require(blockWidth > 0 && blockHeight > 0 && (!tiled || m_bits >= 8 || blockWidth % 8 == 0));
    const uint64_t perPixel = static_cast<uint64_t>(m_bits) * (m_planes ? 1 : m_samples);
    const uint64_t stride = CeilDivide(blockWidth * perPixel, 8);
    const uint64_t planes = m_planes ? static_cast<uint64_t>(m_colors + (m_hasAlpha ? 1 : 0)) : 1;
    // Tiles are about as large as the image at most, whatever the file says.
    const uint64_t imageBytes = CeilDivide(m_width * perPixel, 8) * m_height;
    Require(stride <= 0x7FFFFFFF / blockHeight && stride * blockHeight * planes <= 0x7FFFFFFF);
    Require(stride * blockHeight <= imageBytes * 4 + (1U << 24));
    const size_t blockBytes = static_cast<size_t>(stride * blockHeight);
    const int64_t libraryBytes = tiled ? TIFFTileSize64(tiff) : TIFFVStripSize64(tiff, blockHeight);
    Require(static_cast<uint64_t>(libraryBytes) == blockBytes);

    const uint64_t across = CeilDivide(m_width, blockWidth);
    const uint64_t down = CeilDivide(m_height, blockHeight);
    Require(across * down * planes <= (tiled ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff)));
    HeapArray<uint8_t> bytes;
    bytes.resize(blockBytes * planes);
    // Alpha is the sample right behind the colours, so the needed planes are the first ones.
    for (uint64_t row = 0; row < down; ++row) {
        for (uint64_t column = 0; column < across; ++column) {
            const auto left = static_cast<uint32_t>(column * blockWidth);
            const auto top = static_cast<uint32_t>(row * blockHeight);
            const uint32_t width = std::min(blockWidth, m_width - left);
            const uint32_t height = std::min(blockHeight, m_height - top);
            const auto wanted = static_cast<tmsize_t>(tiled ? blockBytes : static_cast<size_t>(stride) * height);
            for (uint64_t plane = 0; plane < planes; ++plane) {
                const auto index = static_cast<uint32_t>((plane * down + row) * across + column);
                uint8_t* to = bytes.data() + blockBytes * plane;
                const tmsize_t got = tiled ? TIFFReadEncodedTile(tiff, index, to, wanted)
                                           : TIFFReadEncodedStrip(tiff, index, to, wanted);
                Require(got == wanted && !m_file.TakeFailure());
            }
            const size_t leftBit = static_cast<size_t>(left) * static_cast<size_t>(BitsPerPixel(m_format));
            for (uint32_t y = 0; y < height; ++y) {
                uint8_t* dst = image.Data() + static_cast<size_t>(image.StrideBytes()) * (top + y) + leftBit / 8;
                ConvertRow(dst, bytes.data() + static_cast<size_t>(stride) * y, blockBytes, width);
            }
        }
    }
}

double TiffReader::Level(const uint8_t* sample) const noexcept {
    const double value = m_kind == Samples::Half    ? FromHalf(LoadNative<uint16_t>(sample))
                         : m_kind == Samples::Float ? static_cast<double>(LoadNative<float>(sample))
                                                    : LoadNative<double>(sample);
    return value > 0 ? std::min(value, 1.0) * 255.0 + 0.5 : 0.5; // NaN is 0
}

template <class Out>
void TiffReader::Unpack(Out* out, const uint8_t* row, size_t count, uint32_t channel, bool asNumber) const noexcept {
    const size_t step = m_planes ? 1 : m_samples;
    const size_t first = m_planes ? 0 : channel;
    const uint64_t most = (1ULL << m_bits % 64) - 1;
    const uint32_t sign = m_signed ? 1U << (m_bits - 1) : 0U;
    const auto store = [&](size_t i, uint32_t value) {
        value ^= sign;
        out[i] = static_cast<Out>(asNumber ? value : (value * uint64_t{255} + most / 2) / most);
    };
    for (size_t i = 0; i < count; ++i) {
        const size_t at = first + i * step;
        switch (m_kind) {
        case Samples::Bytes:
            out[i] = static_cast<Out>(row[at] ^ sign);
            break;
        case Samples::Words:
            store(i, m_bits == 16 ? LoadNative<uint16_t>(row + at * 2) : LoadNative<uint32_t>(row + at * 4));
            break;
        case Samples::Bits:
            store(i, BitsAt(row, static_cast<uint64_t>(at) * m_bits, m_bits));
            break;
        default:
            out[i] = static_cast<Out>(Level(row + at * (m_bits / 8)));
            break;
        }
    }
}

void TiffReader::ConvertRow(uint8_t* dst, const uint8_t* row, size_t planeBytes, uint32_t count) {
    if (m_format == GXPixelFormatIndexed1) {
        std::memcpy(dst, row, (count + 7) / 8);
        if (count % 8 != 0) {
            dst[count / 8] &= static_cast<uint8_t>(0xFF00U >> (count % 8));
        }
        return;
    }
    if (m_format == GXPixelFormatIndexed8) {
        Unpack(dst, row, count, 0, true);
        return;
    }
    const size_t dstStep = m_format == GXPixelFormatBGR24 ? 3 : 4;
    if (m_kind == Samples::Bytes && m_colors == 3 && m_samples == dstStep && !m_planes && !m_associated &&
        m_format != GXPixelFormatBGRX32) {
        for (const uint8_t* end = row + count * dstStep; row != end; row += dstStep, dst += dstStep) {
            dst[0] = row[2];
            dst[1] = row[1];
            dst[2] = row[0];
            if (dstStep == 4) {
                dst[3] = row[3];
            }
        }
        return;
    }
    if (m_photometric == PHOTOMETRIC_PALETTE) {
        m_indices.resize(count);
        Unpack(m_indices.data(), row, count, 0, true);
        for (size_t i = 0; i < count; ++i, dst += 4) {
            const uint32_t index = m_indices[i];
            for (size_t c = 0; c < 3; ++c) {
                dst[c] = static_cast<uint8_t>(m_map[2 - c][index] >> 8);
            }
            dst[3] = 255;
        }
        return;
    }
    const bool alpha = m_format == GXPixelFormatBGRA32;
    const uint32_t channels = m_colors + (alpha ? 1U : 0U);
    for (uint32_t c = 0; c < channels; ++c) {
        m_levels[c].resize(count);
        Unpack(m_levels[c].data(), row + (m_planes ? planeBytes * c : 0), count, c, false);
    }
    const uint8_t invert = m_photometric == PHOTOMETRIC_MINISWHITE ? 255 : 0;
    uint8_t* to = dst;
    for (size_t i = 0; i < count; ++i, to += dstStep) {
        for (uint32_t c = 0; c < 3; ++c) {
            const uint8_t level = m_levels[m_colors == 1 ? 0 : 2 - c][i];
            if (m_colors == 4) { // inks: 0 is none
                const uint32_t white = (255U - level) * (255U - m_levels[3][i]);
                to[c] = static_cast<uint8_t>((white + 127) / 255);
            } else {
                to[c] = level ^ invert;
            }
        }
        if (dstStep == 4) {
            to[3] = alpha ? m_levels[m_colors][i] : 255;
        }
    }
    if (alpha && m_associated) {
        PixelConversion::Find(GXPixelFormatPBGRA32, GXPixelFormatBGRA32)(dst, 0, dst, 0, count);
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
    const size_t step = m_format == GXPixelFormatBGR24 ? 3 : 4;
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
