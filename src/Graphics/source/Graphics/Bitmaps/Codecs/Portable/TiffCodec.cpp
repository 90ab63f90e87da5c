// SPDX-License-Identifier: MIT
// Writes with LZW compression, in strips of about 64 KiB.
#include "FreeCodecs.h"

#include <algorithm>
#include <cstring>

#include "TiffReader.h"

namespace Graphics {
namespace {

constexpr size_t kStripBytes = 65536;

class TiffWriter {
public:
    static constexpr std::string_view kName = "tiff";

    explicit TiffWriter(ByteSink& sink) : m_file(sink) {}

    void Write(const SysMemBitmap& image) {
        SavedRows rows(image, true, true, false);
        const SavedKind kind = rows.Kind();
        const bool bits = kind == SavedKind::Palette1;
        const bool color = kind == SavedKind::Rgb || kind == SavedKind::Rgba;
        const int blackAndWhite = bits ? rows.BlackAndWhite() : -1;
        const bool palette = (bits && blackAndWhite < 0) || kind == SavedKind::Palette8;
        Set(TIFFTAG_IMAGEWIDTH, rows.Width());
        Set(TIFFTAG_IMAGELENGTH, rows.Height());
        Set(TIFFTAG_BITSPERSAMPLE, bits ? 1 : 8);
        Set(TIFFTAG_SAMPLESPERPIXEL, kind == SavedKind::Rgba ? 4 : color ? 3 : 1);
        Set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        Set(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
        Set(TIFFTAG_PHOTOMETRIC, color                ? PHOTOMETRIC_RGB
                                 : palette            ? PHOTOMETRIC_PALETTE
                                 : blackAndWhite == 1 ? PHOTOMETRIC_MINISWHITE
                                                      : PHOTOMETRIC_MINISBLACK);
        Set(TIFFTAG_COMPRESSION, COMPRESSION_LZW);
        if (color || kind == SavedKind::Grey8) {
            Set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
        }
        if (kind == SavedKind::Rgba) {
            const uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
            Set(TIFFTAG_EXTRASAMPLES, 1, &alpha);
        }
        if (palette) {
            uint16_t map[3][256];
            for (size_t i = 0; i < 256; ++i) {
                for (size_t c = 0; c < 3; ++c) {
                    map[c][i] = static_cast<uint16_t>((rows.Colors()[i] >> (16 - 8 * c) & 255U) * 257U);
                }
            }
            Set(TIFFTAG_COLORMAP, map[0], map[1], map[2]);
        }
        Set(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
        Set(TIFFTAG_XRESOLUTION, static_cast<double>(SaneDpi(image.DpiX())));
        Set(TIFFTAG_YRESOLUTION, static_cast<double>(SaneDpi(image.DpiY())));
        Set(TIFFTAG_ROWSPERSTRIP,
            static_cast<uint32_t>(std::clamp<size_t>(kStripBytes / rows.RowBytes(), 1, rows.Height())));
        for (uint32_t y = 0; y < rows.Height(); ++y) {
            Require(TIFFWriteScanline(m_file.Tiff(), rows.RowRgb(y), y, 0) == 1);
        }
        Require(TIFFWriteDirectory(m_file.Tiff()) == 1 && !m_file.TakeFailure());
    }

private:
    template <class... Values> void Set(uint32_t tag, Values... values) {
        Require(TIFFSetField(m_file.Tiff(), tag, values...) == 1);
    }

    TiffHandle m_file;
};

class TiffCodec final : public FreeCodec<TiffReader, TiffWriter> {
public:
    [[nodiscard]] bool Recognizes(std::span<const uint8_t> head) const noexcept override {
        constexpr uint8_t kStarts[][4] = {{'I', 'I', 42, 0}, {'M', 'M', 0, 42}, {'I', 'I', 43, 0}, {'M', 'M', 0, 43}};
        return head.size() >= 4 && std::any_of(kStarts, kStarts + 4, [&](const uint8_t(&start)[4]) {
                   return std::memcmp(head.data(), start, 4) == 0;
               });
    }
};

const TiffCodec g_codec;

} // namespace

const ImageCodec& TiffFiles() noexcept { return g_codec; }

} // namespace Graphics
