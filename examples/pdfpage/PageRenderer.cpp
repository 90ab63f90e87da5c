// SPDX-License-Identifier: MIT
#include "PageRenderer.h"

#include "GxDevice.h"
#include "MemoryLimit.h"

#include "../../tools/gxr/BandedPlayer.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <utility>

namespace PdfPage {
namespace {

// Far beyond any screen or printer, and small enough for the pixels to fit into memory.
constexpr int64_t kMaxPixels = int64_t{1} << 29;
constexpr int kMaxSide = 65500;

void PrintMessage(void* user, const char* message) {
    if (static_cast<Report*>(user)->Verbose())
        std::fprintf(stderr, "pdfpage: MuPDF: %s\n", message);
}

class Stopwatch {
public:
    double Milliseconds() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_start).count();
    }

private:
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

FilePointer Open(const std::string& path) {
    FilePointer file(std::fopen(path.c_str(), "rb"));
    if (!file)
        throw Failure("cannot open '" + path + "': " + std::strerror(errno));
    return file;
}

} // namespace

Document::Document(const std::string& path, Report& report, Gxr::Recorder* recorder)
    : Document(Open(path), path, report, recorder) {}

Document::Document(FilePointer opened, const std::string& path, Report& report, Gxr::Recorder* recorder,
                   Gxr::Calls::Drawing drawing)
    : m_file(std::move(opened)), m_report(report), m_calls(recorder, drawing) {
    m_ctx = fz_new_context(MemoryLimit::Allocator(), nullptr, FZ_STORE_DEFAULT);
    if (!m_ctx)
        throw Failure("MuPDF does not start");
    fz_set_error_callback(m_ctx, PrintMessage, &report);
    fz_set_warning_callback(m_ctx, PrintMessage, &report);

    const char* const name = path.c_str();
    std::FILE* const file = m_file.get();
    fz_stream* stream = nullptr;
    bool encrypted = false;
    const bool read = Try(m_ctx, [&] {
        fz_register_document_handlers(m_ctx);
        stream = fz_open_file_ptr_no_close(m_ctx, file);
        m_document = fz_open_document_with_stream(m_ctx, name, stream);
        encrypted = fz_needs_password(m_ctx, m_document) != 0;
        if (!encrypted)
            m_pageCount = fz_count_pages(m_ctx, m_document);
    });
    fz_drop_stream(m_ctx, stream);
    std::string reason;
    if (!read)
        reason = "cannot read '" + path + "': " + fz_caught_message(m_ctx);
    else if (encrypted)
        reason = "'" + path + "' is encrypted and needs a password";
    else if (m_pageCount < 1)
        reason = "'" + path + "' has no pages";
    if (!reason.empty()) {
        fz_drop_document(m_ctx, m_document);
        fz_drop_context(m_ctx);
        throw Failure(reason);
    }
    m_caches = std::make_unique<Caches>(m_ctx, m_calls);
}

Document::~Document() {
    m_caches.reset();
    fz_drop_document(m_ctx, m_document);
    fz_drop_context(m_ctx);
}

void Document::RecordInto(Gxr::Recorder* recorder) {
    m_calls = Gxr::Calls(recorder, recorder ? Gxr::Calls::Drawing::Later : Gxr::Calls::Drawing::Now);
    // A recorder knows the gradients that it has seen being made.
    m_caches->shadings.Clear();
}

Page::Page(Document& document, int number) : m_document(document) {
    const std::string which = "page " + std::to_string(number);
    if (number < 1 || number > document.m_pageCount)
        throw Failure(which + " does not exist, the file has " + std::to_string(document.m_pageCount) +
                      (document.m_pageCount == 1 ? " page" : " pages"));
    fz_context* const ctx = document.m_ctx;
    fz_page* page = nullptr;
    const bool loaded = Try(ctx, [&] {
        page = fz_load_page(ctx, document.m_document, number - 1);
        m_bounds = fz_bound_page(ctx, page);
        m_list = fz_new_display_list_from_page(ctx, page);
    });
    fz_drop_page(ctx, page);
    if (!loaded)
        throw Failure("cannot read " + which + ": " + fz_caught_message(ctx));
}

Page::Page(Document& document, int number, float dpi, bool adjust) : Page(document, number) {
    m_adjust = adjust;
    const fz_irect box = fz_round_rect(fz_transform_rect(m_bounds, fz_scale(dpi / 72.0f, dpi / 72.0f)));
    const int64_t width = int64_t{box.x1} - box.x0, height = int64_t{box.y1} - box.y0;
    if (width < 1 || height < 1 || width > kMaxSide || height > kMaxSide || width * height > kMaxPixels)
        throw Failure("page " + std::to_string(number) + " would be " + std::to_string(width) + " x " +
                      std::to_string(height) + " pixels");
    Place(dpi, {0, 0, static_cast<int>(width), static_cast<int>(height)}, fz_infinite_rect);
}

void Page::Place(float dpi, const fz_irect& area, const fz_rect& scissor) {
    const fz_matrix scale = fz_scale(dpi / 72.0f, dpi / 72.0f);
    const fz_irect corner = fz_round_rect(fz_transform_rect(m_bounds, scale));
    m_dpi = dpi;
    m_ctm = fz_concat(scale, fz_translate(static_cast<float>(-corner.x0), static_cast<float>(-corner.y0)));
    m_box = area;
    m_scissor = scissor;
    m_groups = SurveyGroups(m_document.m_ctx, m_list, m_ctm, m_scissor);
}

void Page::Show(float dpi, const fz_irect& area, const std::atomic<bool>* stop) {
    // Lines thinner than a pixel and what snapping moves reach a little beyond the boxes of the list.
    Place(dpi, area, fz_expand_rect(fz_rect_from_irect(area), 8.0f));
    m_stop = stop;
}

Page::~Page() {
    fz_drop_display_list(m_document.m_ctx, m_list);
    m_document.m_caches->images.Trim();
}

void Page::DrawOn(Surface& surface) {
    fz_context* const ctx = m_document.m_ctx;
    Report& report = m_document.m_report;
    {
        Painter painter(ctx, m_document.m_calls, report, *m_document.m_caches, surface, m_dpi, m_adjust,
                        GroupRoads(m_groups));
        fz_cookie cookie{};
        fz_device* const device = NewGxDevice(ctx, painter, m_stop, &cookie);
        if (!device)
            throw Failure("out of memory");
        if (!Try(ctx, [&] {
                fz_run_display_list(ctx, m_list, device, m_ctm, m_scissor, m_stop ? &cookie : nullptr);
                fz_close_device(ctx, device);
            }))
            report.Notice("the page could be drawn in part only");
        fz_drop_device(ctx, device);
        painter.Finish();
    }
    surface.Finish();
}

void Page::ReadBack(const Surface& surface, Picture* picture) const {
    Report& report = m_document.m_report;
    GXBitmapData data{};
    if (!report.Check(GXBitmapLock(surface.Bitmap(), nullptr, GXLockRead, &data), "GXBitmapLock"))
        throw Failure("the picture cannot be read back");
    picture->width = fz_irect_width(m_box);
    picture->height = static_cast<uint32_t>(fz_irect_height(m_box));
    picture->pixels.resize(picture->StrideBytes() * picture->height);
    for (uint32_t y = 0; y < picture->height; ++y)
        std::memcpy(picture->pixels.data() + y * picture->StrideBytes(),
                    static_cast<const uint8_t*>(data.data) + size_t{y} * data.stride, picture->StrideBytes());
    report.Check(GXBitmapUnlock(surface.Bitmap()), "GXBitmapUnlock");
}

void Page::Draw(Picture* picture, double* milliseconds) {
    try {
        Surface surface(m_document.m_calls, m_document.m_report, m_box, GXPixelFormatPBGRA32, m_dpi, 0xFFFFFFFFu);
        const Stopwatch watch;
        DrawOn(surface);
        if (milliseconds)
            *milliseconds = watch.Milliseconds();
        if (picture)
            ReadBack(surface, picture);
    } catch (const std::bad_alloc&) {
        throw Failure("out of memory");
    }
}

Gxr::Recording Page::Record(const Gxr::Recorder& recorder) {
    Surface surface(m_document.m_calls, m_document.m_report, m_box, GXPixelFormatPBGRA32, m_dpi, 0xFFFFFFFFu);
    DrawOn(surface);
    return Gxr::Recording::FromBody(recorder.Body());
}

void Page::DrawInBands(Picture* picture, const Gxr::Recorder& recorder, unsigned threads) {
    try {
        Surface surface(m_document.m_calls, m_document.m_report, m_box, GXPixelFormatPBGRA32, m_dpi, 0xFFFFFFFFu);
        DrawOn(surface);
        const Gxr::Recording recording = Gxr::Recording::FromBody(recorder.Body());
        Gxr::BandedPlayer(recording, threads).Play(surface.Bitmap());
        ReadBack(surface, picture);
    } catch (const std::bad_alloc&) {
        throw Failure("out of memory");
    }
}

void Page::DrawWithPeer(Picture* picture, double* milliseconds, bool timeClear) {
    fz_context* const ctx = m_document.m_ctx;
    fz_pixmap* pixmap = nullptr;
    bool ok = Try(ctx, [&] {
        pixmap = fz_new_pixmap_with_bbox(ctx, fz_device_rgb(ctx), m_box, nullptr, 1);
        fz_clear_pixmap_with_value(ctx, pixmap, 255);
    });
    const Stopwatch watch;
    if (ok) {
        fz_device* device = nullptr;
        ok = Try(ctx, [&] {
            if (timeClear)
                fz_clear_pixmap_with_value(ctx, pixmap, 255); // its memory is there since the first time
            device = fz_new_draw_device(ctx, fz_identity, pixmap);
            fz_run_display_list(ctx, m_list, device, m_ctm, fz_infinite_rect, nullptr);
            fz_close_device(ctx, device);
        });
        fz_drop_device(ctx, device);
    }
    if (milliseconds)
        *milliseconds = watch.Milliseconds();
    if (ok && picture) {
        picture->width = static_cast<uint32_t>(pixmap->w);
        picture->height = static_cast<uint32_t>(pixmap->h);
        picture->pixels.resize(picture->StrideBytes() * picture->height);
        for (uint32_t y = 0; y < picture->height; ++y) {
            const uint8_t* from = pixmap->samples + static_cast<ptrdiff_t>(y) * pixmap->stride;
            uint8_t* to = picture->pixels.data() + y * picture->StrideBytes();
            for (uint32_t x = 0; x < picture->width; ++x, from += 4, to += 4) {
                to[0] = from[2];
                to[1] = from[1];
                to[2] = from[0];
                to[3] = from[3];
            }
        }
    }
    fz_drop_pixmap(ctx, pixmap);
    if (!ok)
        throw Failure(std::string("MuPDF cannot draw the page: ") + fz_caught_message(ctx));
}

Means Page::DrawTruth(unsigned factor) {
    constexpr size_t kBandBytes = size_t{32} << 20;
    constexpr unsigned kMaxFactor = 16; // the sum of a pixel is exact in 16 bits: 16 * 16 * 255
    fz_context* const ctx = m_document.m_ctx;
    const int scale = static_cast<int>(std::clamp(factor, 1u, kMaxFactor)), width = fz_irect_width(m_box);
    const size_t rowBytes = size_t{4} * static_cast<size_t>(width) * static_cast<size_t>(scale * scale);
    const int bandRows = static_cast<int>(std::max(kBandBytes / rowBytes, size_t{1}));
    const fz_matrix ctm = fz_post_scale(m_ctm, static_cast<float>(scale), static_cast<float>(scale));
    Means means{static_cast<uint32_t>(width), static_cast<uint32_t>(m_box.y1), {}};
    means.values.reserve(size_t{3} * means.width * means.height);
    std::vector<uint16_t> sums(size_t{3} * means.width);
    for (int top = 0; top < m_box.y1; top += bandRows) {
        const fz_irect band{0, top * scale, width * scale, std::min(top + bandRows, m_box.y1) * scale};
        fz_pixmap* pixmap = nullptr;
        fz_device* device = nullptr;
        const bool ok = Try(ctx, [&] {
            pixmap = fz_new_pixmap_with_bbox(ctx, fz_device_rgb(ctx), band, nullptr, 1);
            fz_clear_pixmap_with_value(ctx, pixmap, 255);
            device = fz_new_draw_device(ctx, fz_identity, pixmap);
            fz_run_display_list(ctx, m_list, device, ctm, fz_infinite_rect, nullptr);
            fz_close_device(ctx, device);
        });
        fz_drop_device(ctx, device);
        for (int y = 0; ok && y < fz_irect_height(band); ++y) {
            const uint8_t* pixel = pixmap->samples + static_cast<ptrdiff_t>(y) * pixmap->stride;
            for (size_t x = 0; x < means.width; ++x)
                for (int i = 0; i < scale; ++i, pixel += 4)
                    for (size_t c = 0; c < 3; ++c)
                        sums[3 * x + c] = static_cast<uint16_t>(sums[3 * x + c] + pixel[2 - c]);
            if ((y + 1) % scale != 0)
                continue;
            for (uint16_t& sum : sums)
                means.values.push_back(static_cast<float>(std::exchange(sum, uint16_t{0})) /
                                       static_cast<float>(scale * scale));
        }
        fz_drop_pixmap(ctx, pixmap);
        if (!ok)
            throw Failure(std::string("MuPDF cannot draw the page: ") + fz_caught_message(ctx));
    }
    return means;
}

} // namespace PdfPage
