// SPDX-License-Identifier: MIT
#include "Drawer.h"

#include "PageList.h"

#include <cstdlib>
#include <new>

namespace Viewer {
namespace {

// Thumbnails kept beside those in sight, at most 50 KB each.
constexpr size_t kSpareThumbs = 200;

} // namespace

Drawer::Drawer(Open open, std::function<void()> whenNews)
    : m_whenNews(std::move(whenNews)), m_thread([this, open = std::move(open)] { Run(open); }) {}

Drawer::~Drawer() {
    {
        const std::lock_guard lock(m_mutex);
        m_quit = true;
        m_stop = true;
    }
    m_work.notify_all();
    m_thread.join();
}

void Drawer::Want(const Wanted& wanted) {
    {
        const std::lock_guard lock(m_mutex);
        if (m_wanted && *m_wanted == wanted)
            return;
        if (m_status.opened && (!m_wanted || m_wanted->page != wanted.page)) {
            m_status.size.reset();
            m_status.failure.clear();
            if (m_reading)
                m_stop = true;
        }
        m_wanted = wanted;
        m_cells.Show(wanted.page, wanted.zoom, wanted.extent, wanted.visible);
        m_status.complete = m_status.thumbsComplete = false;
        // A thumbnail waits for the page, unless that is there already.
        if (m_drawing ? !m_cells.IsWanted(*m_drawing) : (!m_reading && m_cells.Missing()))
            m_stop = true;
    }
    m_work.notify_all();
}

Drawer::Status Drawer::GetStatus() const {
    const std::lock_guard lock(m_mutex);
    return m_status;
}

Drawer::Counts Drawer::GetCounts() const {
    const std::lock_guard lock(m_mutex);
    return m_counts;
}

void Drawer::WaitForNews() {
    std::unique_lock lock(m_mutex);
    m_news.wait(lock, [this] { return m_told; });
    m_told = false;
}

std::optional<Drawer::Thumb> Drawer::GetThumb(int page) const {
    const std::lock_guard lock(m_mutex);
    const auto found = m_thumbs.find(page);
    return found != m_thumbs.end() ? std::optional<Thumb>(found->second) : std::nullopt;
}

void Drawer::Tell(std::unique_lock<std::mutex>& lock) {
    m_told = true;
    lock.unlock();
    m_news.notify_all();
    m_whenNews();
    lock.lock();
}

std::optional<std::string> Drawer::Attempt(std::unique_lock<std::mutex>& lock, const std::function<void()>& work) {
    m_stop = m_quit;
    lock.unlock();
    std::optional<std::string> failure(std::in_place);
    try {
        work();
    } catch (const Gxr::Stopped&) {
        failure.reset();
    } catch (const std::bad_alloc&) {
        failure = "out of memory";
    } catch (const std::exception& error) {
        failure = error.what();
        if (failure->empty())
            failure = "unknown fault";
    }
    lock.lock();
    return failure;
}

void Drawer::Run(const Open& open) noexcept {
    std::unique_lock lock(m_mutex);
    const std::optional<std::string> failure = Attempt(lock, [&] { m_pages = open(); });
    m_status.opened = failure && failure->empty();
    m_status.failure = failure.value_or(std::string());
    if (m_status.opened) {
        m_status.pages = m_pages->Count();
        m_status.name = m_pages->Name();
    }
    Tell(lock);
    while (!m_quit) {
        bool more = false;
        try {
            more = m_status.opened && m_wanted && Work(lock);
        } catch (const std::exception&) { // memory for the bookkeeping
            m_status.failure = "out of memory";
            m_status.complete = true;
        }
        if (!more && !m_quit)
            m_work.wait(lock);
    }
    lock.unlock();
    m_pages.reset();
}

bool Drawer::Work(std::unique_lock<std::mutex>& lock) {
    if (!m_status.size && m_status.failure.empty()) {
        const int page = m_wanted->page;
        PageSize size;
        m_reading = true;
        const auto failure = Attempt(lock, [&] { size = m_pages->SizeOf(page, m_stop); });
        m_reading = false;
        if (m_wanted->page == page && failure) {
            m_status.failure = *failure;
            if (failure->empty())
                m_status.size = size;
            Tell(lock);
        }
        return true;
    }
    const bool follows = !m_status.size || *m_status.size == m_wanted->size;
    if (m_status.failure.empty()) {
        if (!follows)
            return false; // the next wish comes with the right size
        if (const std::optional<Piece> piece = m_cells.Missing()) {
            DrawPiece(lock, *piece);
            return true;
        }
    }
    if (!m_status.complete) {
        m_status.complete = true;
        Tell(lock);
        return true;
    }
    if (const int page = NextThumb(); page >= 0) {
        DrawThumb(lock, page);
        return true;
    }
    if (!m_status.thumbsComplete) {
        m_status.thumbsComplete = true;
        Tell(lock);
        return true; // who is told may have another wish already
    }
    return false;
}

void Drawer::DrawPiece(std::unique_lock<std::mutex>& lock, const Piece& piece) {
    m_drawing = piece;
    const auto failure = Attempt(lock, [&] { m_pages->Draw(piece, m_stop); });
    m_drawing.reset();
    if (!failure) {
        ++m_counts.stopped;
        return;
    }
    if (failure->empty()) {
        m_cells.Done(piece);
        ++m_counts.pieces;
        m_counts.pixels += static_cast<uint64_t>(piece.part.width) * static_cast<uint64_t>(piece.part.height);
    } else if (m_wanted->page == piece.page) {
        m_status.failure = *failure;
    }
    Tell(lock);
}

int Drawer::NextThumb() const {
    for (int page = std::max(0, m_wanted->thumbsFrom); page < std::min(m_wanted->thumbsTo, m_status.pages); ++page)
        if (m_thumbs.find(page) == m_thumbs.end())
            return page;
    return -1;
}

void Drawer::DrawThumb(std::unique_lock<std::mutex>& lock, int page) {
    Thumb thumb;
    const auto failure = Attempt(lock, [&] {
        const PageSize size = m_pages->SizeOf(page, m_stop);
        Piece piece;
        piece.page = page;
        piece.zoom = FittingZoom(size, PageList::kThumb, PageList::kThumb);
        // A page that is larger than the smallest zoom can show is cut off.
        piece.extent = {0, 0, Extent(size.width, piece.zoom), Extent(size.height, piece.zoom)};
        piece.cell = piece.part = Common(piece.extent, {0, 0, PageList::kThumb, PageList::kThumb});
        piece.strideBytes = 4U * static_cast<uint32_t>(piece.cell.width);
        piece.pixels.reset(
            static_cast<uint8_t*>(std::calloc(static_cast<size_t>(piece.cell.height), piece.strideBytes)), std::free);
        if (!piece.pixels)
            throw std::bad_alloc();
        m_pages->Draw(piece, m_stop);
        thumb = {piece.cell.width, piece.cell.height, piece.pixels};
    });
    if (!failure)
        return;
    if (!failure->empty())
        thumb = {PageList::kThumb, PageList::kThumb, nullptr};
    // The farthest goes first.
    while (m_thumbs.size() >
           kSpareThumbs + static_cast<size_t>(std::max(0, m_wanted->thumbsTo - m_wanted->thumbsFrom))) {
        const int fromFirst = m_wanted->thumbsFrom - m_thumbs.begin()->first;
        const int fromLast = m_thumbs.rbegin()->first - m_wanted->thumbsTo;
        m_thumbs.erase(fromFirst > fromLast ? m_thumbs.begin() : std::prev(m_thumbs.end()));
    }
    m_thumbs[page] = thumb;
    Tell(lock);
}

} // namespace Viewer
