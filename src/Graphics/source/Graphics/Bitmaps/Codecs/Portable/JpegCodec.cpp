// SPDX-License-Identifier: MIT
// libjpeg reports errors by longjmp. Every call that may do so runs inside Protected, whose work holds no objects with
// destructors: these are held by the callers, which throw after the jump.
#include "FreeCodecs.h"

#include <cmath>
#include <csetjmp>
#include <cstdio> // jpeglib.h needs FILE
#include <cstring>

#include <jpeglib.h>

#include <jerror.h>

#include "../CodecSupport.h"

namespace Graphics {
namespace {

/// Limits the cost of hostile files: each scan passes over the whole image. Real files have far fewer.
constexpr int kMostScans = 100;
constexpr int kQuality = 90;

struct Errors {
    jpeg_error_mgr manager; // first member, so that libjpeg's pointer to it is a pointer to this struct
    jmp_buf landing;
};

[[noreturn]] void OnError(j_common_ptr info) { std::longjmp(reinterpret_cast<Errors*>(info->err)->landing, 1); }

/// Warnings mean that pixels are missing or guessed, except for the harmless ones below.
void OnMessage(j_common_ptr info, int level) {
    if (level >= 0) {
        return; // traces
    }
    switch (info->err->msg_code) {
    case JWRN_ADOBE_XFORM:
    case JWRN_BOGUS_PROGRESSION:
    case JWRN_EXTRANEOUS_DATA:
    case JWRN_JFIF_MAJOR:
        return;
    default:
        OnError(info);
    }
}

jpeg_error_mgr* SetUp(Errors& errors) {
    jpeg_error_mgr* manager = jpeg_std_error(&errors.manager);
    manager->error_exit = OnError;
    manager->emit_message = OnMessage;
    manager->output_message = [](j_common_ptr) {};
    return manager;
}

/// False if libjpeg reports an error. `work` must hold no object with a destructor while it calls libjpeg.
template <class Work> [[nodiscard]] bool Protected(Errors& errors, Work& work) {
    if (setjmp(errors.landing) != 0) {
        return false;
    }
    work();
    return true;
}

template <class Work> void Run(Errors& errors, Work work) { Require(Protected(errors, work)); }

struct Input {
    jpeg_source_mgr manager;
    ByteCursor* cursor;
    JOCTET buffer[4096];
};

boolean FillInput(j_decompress_ptr info) {
    auto* input = reinterpret_cast<Input*>(info->src);
    const size_t got = input->cursor->Read(input->buffer, sizeof input->buffer);
    if (got == 0) {
        ERREXIT(info, JERR_INPUT_EOF);
    }
    input->manager.next_input_byte = input->buffer;
    input->manager.bytes_in_buffer = got;
    return TRUE;
}

void SkipInput(j_decompress_ptr info, long count) {
    auto* input = reinterpret_cast<Input*>(info->src);
    auto left = static_cast<size_t>(count < 0 ? 0 : count);
    if (left > input->manager.bytes_in_buffer) {
        input->cursor->Seek(input->cursor->Position() + (left - input->manager.bytes_in_buffer));
        left = input->manager.bytes_in_buffer;
    }
    input->manager.next_input_byte += left;
    input->manager.bytes_in_buffer -= left;
}

/// Converts the file's C M Y K to B G R. By Adobe's convention, which all files follow, values are inverted: 255 is no
/// ink.
void FromCmyk(uint8_t* bgr, const uint8_t* cmyk, size_t count) noexcept {
    for (size_t i = 0; i < count; ++i, bgr += 3, cmyk += 4) {
        for (size_t c = 0; c < 3; ++c) {
            const uint32_t product = static_cast<uint32_t>(cmyk[2 - c]) * cmyk[3] + 127;
            bgr[c] = static_cast<uint8_t>(product / 255);
        }
    }
}

class JpegDecoder final : public ImageDecoder {
public:
    explicit JpegDecoder(ByteSource& source) : m_cursor(source) {
        m_info.err = SetUp(m_errors);
        try {
            Run(m_errors, [this] { ReadHeader(); });
        } catch (...) {
            jpeg_destroy_decompress(&m_info);
            throw;
        }
    }
    ~JpegDecoder() override { jpeg_destroy_decompress(&m_info); }

    [[nodiscard]] std::shared_ptr<SysMemBitmap> Load(uint32_t) override {
        GXPixelFormat format = GXPixelFormatBGR24;
        bool inks = false;
        switch (m_info.jpeg_color_space) {
        case JCS_GRAYSCALE:
            format = GXPixelFormatIndexed8;
            m_info.out_color_space = JCS_GRAYSCALE;
            break;
        case JCS_RGB:
        case JCS_YCbCr:
            m_info.out_color_space = JCS_EXT_BGR;
            break;
        case JCS_CMYK:
        case JCS_YCCK:
            m_info.out_color_space = JCS_CMYK;
            inks = true;
            break;
        default:
            throw ImageError();
        }
        const uint32_t width = m_info.image_width;
        const uint32_t height = m_info.image_height;
        // A Huffman code has at least one bit per block of 64 pixels, so a shorter file is rejected before memory is
        // allocated. Arithmetic coding has no such limit (200 bytes can be 23000 x 23000 pixels) and is not used in
        // practice.
        Require(m_info.arith_code == 0 && static_cast<uint64_t>(width) * height / 512 <= m_cursor.Size());
        const double unit = m_info.density_unit == 1 ? 1.0 : m_info.density_unit == 2 ? 2.54 : 0.0;
        std::shared_ptr<SysMemBitmap> image =
            NewImage(width, height, format, m_info.X_density * unit, m_info.Y_density * unit);
        if (format == GXPixelFormatIndexed8) {
            image->SetPalette(GreyPalette());
        }
        HeapArray<uint8_t> inkRow;
        if (inks) {
            inkRow.resize(static_cast<size_t>(width) * 4);
        }
        uint8_t* data = image->Data();
        const size_t stride = image->StrideBytes();
        uint8_t* inkData = inkRow.data();
        Run(m_errors, [=, this] {
            jpeg_start_decompress(&m_info);
            while (m_info.output_scanline < m_info.output_height) {
                uint8_t* to = data + stride * m_info.output_scanline;
                JSAMPROW row = inks ? inkData : to;
                if (jpeg_read_scanlines(&m_info, &row, 1) != 1) {
                    ERREXIT(&m_info, JERR_INPUT_EOF);
                }
                if (inks) {
                    if (m_info.saw_Adobe_marker == 0) {
                        for (size_t i = 0; i < static_cast<size_t>(width) * 4; ++i) {
                            inkData[i] = static_cast<uint8_t>(255 - inkData[i]);
                        }
                    }
                    FromCmyk(to, inkData, width);
                }
            }
            jpeg_finish_decompress(&m_info);
        });
        return image;
    }

private:
    void ReadHeader() {
        jpeg_create_decompress(&m_info);
        m_input.cursor = &m_cursor;
        m_input.manager.bytes_in_buffer = 0;
        m_input.manager.next_input_byte = nullptr;
        m_input.manager.init_source = [](j_decompress_ptr) {};
        m_input.manager.fill_input_buffer = FillInput;
        m_input.manager.skip_input_data = SkipInput;
        m_input.manager.resync_to_restart = jpeg_resync_to_restart;
        m_input.manager.term_source = [](j_decompress_ptr) {};
        m_info.src = &m_input.manager;
        m_progress.progress_monitor = [](j_common_ptr info) {
            if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > kMostScans) {
                OnError(info);
            }
        };
        jpeg_read_header(&m_info, TRUE);
        m_info.progress = &m_progress;
    }

    ByteCursor m_cursor;
    Errors m_errors{};
    Input m_input{};
    jpeg_progress_mgr m_progress{};
    jpeg_decompress_struct m_info{};
};

struct Output {
    jpeg_destination_mgr manager;
    ByteSink* sink;
    JOCTET buffer[16384];
};

void FlushOutput(j_compress_ptr info, size_t count) {
    auto* output = reinterpret_cast<Output*>(info->dest);
    if (!output->sink->Write(output->buffer, count)) {
        ERREXIT(info, JERR_FILE_WRITE);
    }
    output->manager.next_output_byte = output->buffer;
    output->manager.free_in_buffer = sizeof output->buffer;
}

class JpegWriter {
public:
    static constexpr std::string_view kName = "jpeg";

    explicit JpegWriter(ByteSink& sink) {
        m_info.err = SetUp(m_errors);
        m_output.sink = &sink;
    }
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;
    ~JpegWriter() { jpeg_destroy_compress(&m_info); }

    void Write(const SysMemBitmap& image) {
        SavedRows rows(image, false, false, false);
        Run(m_errors, [&] { Start(rows, image); });
        for (uint32_t y = 0; y < rows.Height(); ++y) {
            JSAMPROW row = rows.Row(y);
            Run(m_errors, [&] { jpeg_write_scanlines(&m_info, &row, 1); });
        }
        Run(m_errors, [&] { jpeg_finish_compress(&m_info); });
    }

private:
    void Start(const SavedRows& rows, const SysMemBitmap& image) {
        jpeg_create_compress(&m_info);
        m_output.manager.init_destination = [](j_compress_ptr info) {
            auto* output = reinterpret_cast<Output*>(info->dest);
            output->manager.next_output_byte = output->buffer;
            output->manager.free_in_buffer = sizeof output->buffer;
        };
        m_output.manager.empty_output_buffer = [](j_compress_ptr info) -> boolean {
            FlushOutput(info, sizeof(Output::buffer));
            return TRUE;
        };
        m_output.manager.term_destination = [](j_compress_ptr info) {
            FlushOutput(info, sizeof(Output::buffer) - info->dest->free_in_buffer);
        };
        m_info.dest = &m_output.manager;
        m_info.image_width = rows.Width();
        m_info.image_height = rows.Height();
        const bool grey = rows.Kind() == SavedKind::Grey8;
        m_info.input_components = grey ? 1 : 3;
        m_info.in_color_space = grey ? JCS_GRAYSCALE : JCS_EXT_BGR;
        jpeg_set_defaults(&m_info);
        jpeg_set_quality(&m_info, kQuality, TRUE);
        // Full colour resolution, since documents have coloured lines and letters.
        m_info.comp_info[0].h_samp_factor = m_info.comp_info[0].v_samp_factor = 1;
        m_info.density_unit = 1;
        m_info.X_density = Density(image.DpiX());
        m_info.Y_density = Density(image.DpiY());
        jpeg_start_compress(&m_info, TRUE);
    }

    [[nodiscard]] static UINT16 Density(float dpi) noexcept {
        return dpi >= 0.5F && dpi < 65535.0F ? static_cast<UINT16>(std::lround(dpi)) : static_cast<UINT16>(kDefaultDpi);
    }

    Errors m_errors{};
    Output m_output{};
    jpeg_compress_struct m_info{};
};

class JpegCodec final : public FreeCodec<JpegDecoder, JpegWriter> {
public:
    [[nodiscard]] bool Recognizes(std::span<const uint8_t> head) const noexcept override {
        return head.size() >= 3 && head[0] == 0xFF && head[1] == 0xD8 && head[2] == 0xFF;
    }
};

const JpegCodec g_codec;

} // namespace

const ImageCodec& JpegFiles() noexcept { return g_codec; }

} // namespace Graphics
