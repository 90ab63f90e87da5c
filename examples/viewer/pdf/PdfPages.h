// SPDX-License-Identifier: MIT
// The pages of a PDF file. MuPDF, which is AGPL-3.0, reads the file; the host of examples/pdfpage draws with the library.
// A cell of a page is recorded once and played, by as many threads as wanted, for each part of it that comes in sight.
#pragma once

#include "Pages.h"

#include "PageRenderer.h"

#include "BandedPlayer.h"

#include <filesystem>
#include <list>
#include <memory>

namespace Viewer {

class PdfPages : public Pages {
public:
    // Throws PdfPage::Failure for a file that cannot be read.
    PdfPages(const std::filesystem::path& file, unsigned threads);
    ~PdfPages() override;

    int Count() const override { return m_document.PageCount(); }
    std::string Name() const override { return m_name; }
    PageSize SizeOf(int page, const Gxr::StopFlag& stop) override;
    void Draw(const Piece& piece, const Gxr::StopFlag& stop) override;

    // Dots an inch at zoom 1: a point of PDF is 4/3 pixels then.
    static constexpr float kDpi = 96.0f;

private:
    struct OpenPage {
        int number;
        std::unique_ptr<PdfPage::Page> page;
    };
    // A cell ready to be played, or, where a page cannot be recorded, its pixels.
    struct Cell {
        int page;
        float zoom;
        Box box;
        std::unique_ptr<Gxr::Recording> recording;
        std::unique_ptr<Gxr::BandedPlayer> player;
        PdfPage::Picture picture;

        size_t Bytes() const { return recording ? recording->Body().size() : picture.pixels.size(); }
    };

    PdfPage::Page& Opened(int page);
    const Cell& Prepared(const Piece& piece, const Gxr::StopFlag& stop);
    Gxr::Recording Record(PdfPage::Page& page);
    Cell Prepare(const Piece& piece, const Gxr::StopFlag& stop);

    const unsigned m_threads;
    std::string m_name;
    PdfPage::Report m_report;
    PdfPage::Document m_document;
    std::list<OpenPage> m_pages; // as lists of drawing commands; the ones used last come first
    std::list<Cell> m_cells;     // the same order
    int m_direct = -1;           // the page that could not be recorded last
};

} // namespace Viewer
