// SPDX-License-Identifier: MIT
#include "PdfPages.h"

#include "Document.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Viewer {
namespace {

// The page that is looked at and the one that a thumbnail is made of.
constexpr size_t kOpenPages = 2;
// Recorded cells are kept up to this many bytes, and always the last one. Bitmaps are held once more by the player.
constexpr size_t kCellBytes = size_t{64} << 20;
constexpr size_t kCells = 32;
// A cell with larger bitmaps is drawn as it is by one thread, which copies none.
constexpr uint64_t kRecordedPixelBytes = uint64_t{48} << 20;

void CheckStop(const Gxr::StopFlag& stop) {
    if (stop)
        throw Gxr::Stopped();
}

} // namespace

PdfPages::PdfPages(const std::filesystem::path& file, unsigned threads)
    : m_threads(threads), m_name(Document::Text(file.filename())), m_report(false),
      m_document(file.string(), m_report) {}

PdfPages::~PdfPages() { m_pages.clear(); }

PdfPage::Page& PdfPages::Opened(int number) {
    const auto found =
        std::find_if(m_pages.begin(), m_pages.end(), [&](const OpenPage& open) { return open.number == number; });
    if (found != m_pages.end()) {
        m_pages.splice(m_pages.begin(), m_pages, found);
    } else {
        m_report.EndPage();
        m_pages.push_front({number, std::make_unique<PdfPage::Page>(m_document, number + 1)});
        if (m_pages.size() > kOpenPages)
            m_pages.pop_back();
    }
    return *m_pages.front().page;
}

PageSize PdfPages::SizeOf(int page, const Gxr::StopFlag&) {
    const fz_rect bounds = Opened(page).Bounds();
    const double scale = static_cast<double>(kDpi) / 72;
    const PageSize size{(double{bounds.x1} - bounds.x0) * scale, (double{bounds.y1} - bounds.y0) * scale};
    if (!(size.width > 0 && size.height > 0 && std::isfinite(size.width) && std::isfinite(size.height)))
        throw PdfPage::Failure("page " + std::to_string(page + 1) + " has no size");
    return size;
}

const PdfPages::Cell& PdfPages::Prepared(const Piece& piece, const Gxr::StopFlag& stop) {
    const auto found = std::find_if(m_cells.begin(), m_cells.end(), [&](const Cell& cell) {
        return cell.page == piece.page && cell.zoom == piece.zoom && cell.box == piece.cell;
    });
    if (found != m_cells.end()) {
        m_cells.splice(m_cells.begin(), m_cells, found);
        return m_cells.front();
    }
    m_cells.push_front(Prepare(piece, stop));
    size_t bytes = 0, count = 0;
    const auto tooMuch = std::find_if(m_cells.begin(), m_cells.end(), [&](const Cell& cell) {
        bytes += cell.Bytes();
        return ++count > 1 && (bytes > kCellBytes || count > kCells);
    });
    m_cells.erase(tooMuch, m_cells.end());
    return m_cells.front();
}

PdfPages::Cell PdfPages::Prepare(const Piece& piece, const Gxr::StopFlag& stop) {
    PdfPage::Page& page = Opened(piece.page);
    page.Show(kDpi * piece.zoom, {piece.cell.left, piece.cell.top, piece.cell.Right(), piece.cell.Bottom()}, &stop);
    Cell cell{piece.page, piece.zoom, piece.cell, nullptr, nullptr, {}};
    if (piece.page == m_direct) {
        page.Draw(&cell.picture, nullptr);
        CheckStop(stop);
        return cell;
    }
    try {
        cell.recording = std::make_unique<Gxr::Recording>(Record(page));
        CheckStop(stop);
        cell.player = std::make_unique<Gxr::BandedPlayer>(*cell.recording, m_threads);
    } catch (const Gxr::Error&) { // what cannot be recorded is drawn by one thread
        CheckStop(stop);
        cell.recording.reset();
        m_direct = piece.page;
        page.Draw(&cell.picture, nullptr);
    }
    CheckStop(stop);
    return cell;
}

// The recorder, which holds copies of all bitmaps, is gone before they are made for the player.
Gxr::Recording PdfPages::Record(PdfPage::Page& page) {
    struct Restored {
        PdfPage::Document& document;
        ~Restored() { document.RecordInto(nullptr); }
    };
    Gxr::Recorder recorder(kRecordedPixelBytes);
    const Restored after{m_document};
    m_document.RecordInto(&recorder);
    return page.Record(recorder);
}

void PdfPages::Draw(const Piece& piece, const Gxr::StopFlag& stop) {
    const Cell& cell = Prepared(piece, stop);
    const Box part = piece.part.MovedBy(-piece.cell.left, -piece.cell.top);
    if (cell.player) {
        const GXExtBufLayout layout{static_cast<float>(piece.cell.width), static_cast<float>(piece.cell.height),
                                    static_cast<float>(piece.strideBytes), kDpi, kDpi};
        const Gxr::BandedPlayer::Part area{
            {1, 0, 0, 1, 0, 0}, {part.left, part.top, part.Right(), part.Bottom()}, &stop};
        cell.player->Play(piece.pixels.get(), GXPixelFormatPBGRA32, layout, 1.0f, &area);
        return;
    }
    const size_t stride = cell.picture.StrideBytes(), start = 4 * static_cast<size_t>(part.left);
    for (auto row = static_cast<size_t>(part.top); row < static_cast<size_t>(part.Bottom()); ++row)
        std::memcpy(piece.pixels.get() + row * piece.strideBytes + start,
                    cell.picture.pixels.data() + row * stride + start, 4 * static_cast<size_t>(part.width));
}

} // namespace Viewer
