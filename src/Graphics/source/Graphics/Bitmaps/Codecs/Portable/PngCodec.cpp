// SPDX-License-Identifier: MIT
// libpng reports errors by longjmp. Every call that may do so runs inside Protected, whose work holds no objects with
// destructors: these are held by the callers, which throw after the jump.
#include "FreeCodecs.h"

#include <csetjmp>
#include <cstring>

#include <png.h>

#include "../CodecSupport.h"

namespace Graphics {
namespace {

void OnError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void OnWarning(png_structp, png_const_charp) {}

/// False if libpng reports an error. `work` must hold no object with a destructor while it calls libpng.
template <class Work> [[nodiscard]] bool Protected(png_structp png, Work& work) {
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    work();
    return true;
}

template <class Work> void Run(png_structp png, Work work) { Require(Protected(png, work)); }

class PngDecoder final : public ImageDecoder {
public:
    explicit PngDecoder(ByteSource& source) : m_cursor(source) {
        m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning);
        m_info = m_png != nullptr ? png_create_info_struct(m_png) : nullptr;
        try {
            Require(m_info != nullptr);
            Run(m_png, [this] { ReadHeader(); });
        } catch (...) {
            Destroy();
            throw;
        }
    }
    ~PngDecoder() override { Destroy(); }

    [[nodiscard]] std::shared_ptr<SysMemBitmap> Load(uint32_t) override {
        const uint32_t width = png_get_image_width(m_png, m_info);
        const uint32_t height = png_get_image_height(m_png, m_info);
        // Deflate expands a byte to at most 1032, so a file too short for its size is rejected before memory is
        // allocated.
        const uint64_t rawBytes = static_cast<uint64_t>(png_get_rowbytes(m_png, m_info)) * height;
        Require(rawBytes / 1032 <= m_cursor.Size());
        GXPixelFormat format = GXPixelFormatUnknown;
        Run(m_png, [this, &format] { format = ChooseFormat(); });

        png_uint_32 dpmX = 0, dpmY = 0;
        int unit = PNG_RESOLUTION_UNKNOWN;
        png_get_pHYs(m_png, m_info, &dpmX, &dpmY, &unit);
        const bool known = unit == PNG_RESOLUTION_METER;
        std::shared_ptr<SysMemBitmap> image =
            NewImage(width, height, format, known ? DpiFromMetre(dpmX) : 0, known ? DpiFromMetre(dpmY) : 0);
        SetPalette(*image);
        Require(png_get_rowbytes(m_png, m_info) == RowBytes(format, static_cast<int32_t>(width)));
        uint8_t* data = image->Data();
        const size_t stride = image->StrideBytes();
        Run(m_png, [this, data, stride, height] {
            // Interlace passes are combined in the bitmap itself.
            for (int pass = 0; pass < m_passes; ++pass) {
                for (uint32_t y = 0; y < height; ++y) {
                    png_read_row(m_png, data + stride * y, nullptr);
                }
            }
            png_read_end(m_png, nullptr);
        });
        if (format == GXPixelFormatIndexed1) { // padding bits of a row
            ClearTails(*image, width);
        }
        return image;
    }

private:
    void Destroy() noexcept { png_destroy_read_struct(&m_png, &m_info, nullptr); }

    static void ReadBytes(png_structp png, png_bytep dst, size_t count) {
        if (static_cast<ByteCursor*>(png_get_io_ptr(png))->Read(dst, count) != count) {
            png_error(png, "end of data");
        }
    }

    void ReadHeader() {
        png_set_read_fn(m_png, &m_cursor, ReadBytes);
        png_set_user_limits(m_png, 0x7FFFFFFF, 0x7FFFFFFF); // the bitmap's own limits are checked later
        png_set_crc_action(m_png, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
        // Profiles, texts and similar chunks are not read.
        static const png_byte kSkipped[] =
            "bKGD\0cHRM\0eXIf\0gAMA\0hIST\0iCCP\0iTXt\0oFFs\0pCAL\0sCAL\0sPLT\0sRGB\0tEXt\0"
            "tIME\0zTXt";
        png_set_keep_unknown_chunks(m_png, PNG_HANDLE_CHUNK_NEVER, kSkipped, static_cast<int>(sizeof kSkipped / 5));
        png_read_info(m_png, m_info);
    }

    /// Configures libpng to deliver rows in the bitmap's format, which is returned.
    GXPixelFormat ChooseFormat() {
        const int depth = png_get_bit_depth(m_png, m_info);
        const int type = png_get_color_type(m_png, m_info);
        const bool transparent = png_get_valid(m_png, m_info, PNG_INFO_tRNS) != 0;
        GXPixelFormat format = GXPixelFormatBGRX32;
        if (type == PNG_COLOR_TYPE_PALETTE || type == PNG_COLOR_TYPE_GRAY) {
            format = depth == 8 ? GXPixelFormatIndexed8 : depth == 1 ? GXPixelFormatIndexed1 : GXPixelFormatBGRX32;
        } else if (depth == 8) {
            const bool alpha = transparent || (type & PNG_COLOR_MASK_ALPHA) != 0;
            format = alpha ? GXPixelFormatBGRA32 : GXPixelFormatBGR24;
        }
        if (format == GXPixelFormatBGRX32) {
            if (depth == 16) {
                png_set_scale_16(m_png);
            }
            if (type == PNG_COLOR_TYPE_PALETTE) {
                png_set_palette_to_rgb(m_png);
            } else if (depth < 8) {
                png_set_expand_gray_1_2_4_to_8(m_png);
            }
            png_set_strip_alpha(m_png);
        }
        if (format != GXPixelFormatIndexed8 && format != GXPixelFormatIndexed1) {
            if (format == GXPixelFormatBGRA32 && transparent) {
                png_set_tRNS_to_alpha(m_png);
            }
            if ((type & PNG_COLOR_MASK_COLOR) == 0) {
                png_set_gray_to_rgb(m_png);
            }
            if (format == GXPixelFormatBGRX32) {
                png_set_filler(m_png, 255, PNG_FILLER_AFTER);
            }
            png_set_bgr(m_png);
        }
        m_passes = png_set_interlace_handling(m_png);
        png_read_update_info(m_png, m_info);
        return format;
    }

    /// Sets the file's palette, or the levels of a grey image; transparent entries have alpha 0.
    void SetPalette(SysMemBitmap& image) {
        if (!IsIndexedFormat(image.Format())) {
            return;
        }
        png_bytep alphas = nullptr;
        int alphaCount = 0;
        png_color_16p key = nullptr;
        const bool transparent = png_get_tRNS(m_png, m_info, &alphas, &alphaCount, &key) != 0;
        uint32_t colors[256];
        size_t count = image.Format() == GXPixelFormatIndexed8 ? 256 : 2;
        if (png_get_color_type(m_png, m_info) == PNG_COLOR_TYPE_PALETTE) {
            png_colorp entries = nullptr;
            int entryCount = 0;
            Require(png_get_PLTE(m_png, m_info, &entries, &entryCount) != 0 && entryCount > 0 && entryCount <= 256);
            count = static_cast<size_t>(entryCount);
            for (int i = 0; i < entryCount; ++i) {
                const uint32_t alpha = transparent && alphas != nullptr && i < alphaCount ? alphas[i] : 255U;
                colors[i] = alpha << 24 | static_cast<uint32_t>(entries[i].red) << 16 |
                            static_cast<uint32_t>(entries[i].green) << 8 | entries[i].blue;
            }
        } else {
            for (size_t i = 0; i < count; ++i) {
                colors[i] = 0xFF000000U | static_cast<uint32_t>(i * 255 / (count - 1)) * 0x010101U;
            }
            if (transparent && key != nullptr && key->gray < count) {
                colors[key->gray] &= 0xFFFFFFU;
            }
        }
        image.SetPalette(std::make_shared<const Palette>(colors, count));
    }

    static void ClearTails(SysMemBitmap& image, uint32_t width) noexcept {
        if (width % 8 != 0) {
            const PixelView view = image.View();
            for (int32_t y = 0; y < view.height; ++y) {
                view.data[y * view.strideBytes + width / 8] &= static_cast<uint8_t>(0xFF00U >> (width % 8));
            }
        }
    }

    ByteCursor m_cursor;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    int m_passes = 1;
};

class PngWriter {
public:
    static constexpr std::string_view kName = "png";

    explicit PngWriter(ByteSink& sink) : m_sink(sink) {
        m_png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning);
        m_info = m_png != nullptr ? png_create_info_struct(m_png) : nullptr;
    }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;
    ~PngWriter() { png_destroy_write_struct(&m_png, &m_info); }

    void Write(const SysMemBitmap& image) {
        Require(m_info != nullptr);
        SavedRows rows(image, true, true, true);
        Run(m_png, [&] { WriteHeader(rows, image); });
        for (uint32_t y = 0; y < rows.Height(); ++y) {
            const uint8_t* row = rows.Row(y);
            Run(m_png, [&] { png_write_row(m_png, row); });
        }
        Run(m_png, [&] { png_write_end(m_png, m_info); });
    }

private:
    void WriteHeader(const SavedRows& rows, const SysMemBitmap& image) {
        const SavedKind kind = rows.Kind();
        const bool bits = kind == SavedKind::Palette1;
        const bool grey = kind == SavedKind::Grey8 || (bits && rows.BlackAndWhite() == 0);
        const bool palette = !grey && (bits || kind == SavedKind::Palette8);
        png_set_write_fn(
            m_png, &m_sink,
            [](png_structp png, png_bytep data, size_t count) {
                if (!static_cast<ByteSink*>(png_get_io_ptr(png))->Write(data, count)) {
                    png_error(png, "write");
                }
            },
            [](png_structp) {});
        png_set_user_limits(m_png, 0x7FFFFFFF, 0x7FFFFFFF);
        png_set_IHDR(m_png, m_info, rows.Width(), rows.Height(), bits ? 1 : 8,
                     grey                      ? PNG_COLOR_TYPE_GRAY
                     : palette                 ? PNG_COLOR_TYPE_PALETTE
                     : kind == SavedKind::Rgba ? PNG_COLOR_TYPE_RGB_ALPHA
                                               : PNG_COLOR_TYPE_RGB,
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_set_pHYs(m_png, m_info, DotsPerMetre(image.DpiX()), DotsPerMetre(image.DpiY()), PNG_RESOLUTION_METER);
        if (palette) {
            png_color entries[256];
            png_byte alphas[256];
            const int count = bits ? 2 : 256;
            for (int i = 0; i < count; ++i) {
                const uint32_t c = rows.Colors()[i];
                entries[i] = {static_cast<png_byte>(c >> 16), static_cast<png_byte>(c >> 8), static_cast<png_byte>(c)};
                alphas[i] = static_cast<png_byte>(c >> 24);
            }
            png_set_PLTE(m_png, m_info, entries, count);
            if (rows.ColorsHaveAlpha()) {
                png_set_tRNS(m_png, m_info, alphas, count, nullptr);
            }
        }
        png_write_info(m_png, m_info);
        if (kind == SavedKind::Rgb || kind == SavedKind::Rgba) {
            png_set_bgr(m_png);
        }
    }

    ByteSink& m_sink;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
};

class PngCodec final : public FreeCodec<PngDecoder, PngWriter> {
public:
    [[nodiscard]] bool Recognizes(std::span<const uint8_t> head) const noexcept override {
        return head.size() >= 8 && png_sig_cmp(head.data(), 0, 8) == 0;
    }
};

const PngCodec g_codec;

} // namespace

const ImageCodec& PngFiles() noexcept { return g_codec; }

} // namespace Graphics
