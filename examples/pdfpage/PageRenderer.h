// SPDX-License-Identifier: MIT
// Opens a document with MuPDF and draws its pages, with the library or with MuPDF's own draw device.
#pragma once

#include "Painter.h"
#include "Report.h"

#include "../../tools/gxr/Recording.h"

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace PdfPage {

// A reason that the user can read; the program ends with it.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Opaque rows of B, G, R, X.
struct Picture {
    uint32_t width = 0, height = 0;
    std::vector<uint8_t> pixels;
    size_t StrideBytes() const { return size_t{4} * width; }
};

// Rows of B, G, R with fractions of a level.
struct Means {
    uint32_t width = 0, height = 0;
    std::vector<float> values;
};

class Page;

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using FilePointer = std::unique_ptr<std::FILE, FileCloser>;

class Document {
public:
    // Throws Failure for a file that is missing, damaged beyond repair, or encrypted.
    // With a recorder everything drawn is recorded; it outlives the document.
    Document(const std::string& path, Report& report, Gxr::Recorder* recorder = nullptr);
    // Of a file that is open for reading; its name tells the format and stands in messages.
    Document(FilePointer file, const std::string& name, Report& report, Gxr::Recorder* recorder = nullptr,
             Gxr::Calls::Drawing drawing = Gxr::Calls::Drawing::Now);
    ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    int PageCount() const noexcept { return m_pageCount; }

    // From now on calls are noted for this recorder and not drawn; without one they are drawn.
    void RecordInto(Gxr::Recorder* recorder);

private:
    friend class Page;

    FilePointer m_file;
    Report& m_report;
    Gxr::Calls m_calls;
    fz_context* m_ctx = nullptr;
    fz_document* m_document = nullptr;
    int m_pageCount = 0;
    std::unique_ptr<Caches> m_caches;
};

// One page as a display list: contents, annotations and form fields.
class Page {
public:
    // `number` counts from 1. Throws Failure when there is no such page or nothing of it can be read.
    // Without `adjust` everything has the place and size that the file says: images are not widened to whole pixels, and
    // the thinnest line is one eighth of a pixel, which is what the samples of a pixel can show.
    Page(Document& document, int number, float dpi, bool adjust = true);
    // To be shown before it is drawn.
    Page(Document& document, int number);
    ~Page();
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    // In points.
    fz_rect Bounds() const noexcept { return m_bounds; }
    // From now on this area is drawn, in pixels of the page at `dpi`, the page's own corner at (0, 0). Drawing ends
    // early, with something of no use, once `stop` is set.
    void Show(float dpi, const fz_irect& area, const std::atomic<bool>* stop);
    // The area as a recording. The document records into `recorder` alone. Throws Gxr::Error when it cannot be recorded.
    Gxr::Recording Record(const Gxr::Recorder& recorder);

    // Draws on white. The picture is left alone when null. `milliseconds` is the time of the drawing calls alone.
    void Draw(Picture* picture, double* milliseconds);
    // Draws on white by `threads` threads at a time, the same bytes. The document draws later, and `recorder` is its
    // own. Throws Gxr::Error when the page cannot be recorded.
    void DrawInBands(Picture* picture, const Gxr::Recorder& recorder, unsigned threads);
    // In RGB, as mutool draws. With `timeClear` the time is that of making the page white, too, as it is in a recording.
    void DrawWithPeer(Picture* picture, double* milliseconds, bool timeClear = false);
    // What the page should look like: drawn by MuPDF at `factor` times the resolution, `factor` times `factor` pixels
    // averaged to one. In bands, so that memory is that of a band.
    Means DrawTruth(unsigned factor);

private:
    void DrawOn(Surface& surface);
    void ReadBack(const Surface& surface, Picture* picture) const;
    void Place(float dpi, const fz_irect& area, const fz_rect& scissor);

    Document& m_document;
    bool m_adjust = true;
    float m_dpi = 72.0f;
    fz_rect m_bounds{};
    fz_rect m_scissor = fz_infinite_rect; // nothing outside needs to be drawn
    fz_irect m_box{};
    fz_matrix m_ctm{};
    const std::atomic<bool>* m_stop = nullptr;
    fz_display_list* m_list = nullptr;
    std::vector<Span> m_groups;
};

} // namespace PdfPage
