// SPDX-License-Identifier: MIT
// Draws pages in a thread of its own, so that a window never waits: opens the document, draws what is in sight of the
// page, then thumbnails. What is no longer wanted is stopped.
#pragma once

#include "Cells.h"

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

namespace Viewer {

class Drawer {
public:
    using Open = std::function<std::unique_ptr<Pages>()>;
    // What to draw: the page as the reader shows it, and thumbnails, the first ones first.
    struct Wanted {
        int page = 0;
        PageSize size; // as far as is known
        float zoom = 1.0f;
        Box extent, visible; // as in Cells
        int thumbsFrom = 0, thumbsTo = 0;
        bool operator==(const Wanted&) const = default;
    };
    struct Status {
        bool opened = false;
        int pages = 0;
        std::string name;
        std::string failure; // of the document, or of the page that is wanted
        // Of the page that is wanted, once it is read: when it is not `Wanted::size`, nothing is drawn until the view
        // follows.
        std::optional<PageSize> size;
        bool complete = false; // everything in sight of the page is drawn, or cannot be
        bool thumbsComplete = false;
    };
    struct Counts {
        uint64_t pieces = 0, pixels = 0; // drawn
        uint64_t stopped = 0;
    };

    // `open` runs in the thread, and so does `whenNews`, after each change of the status or of pixels.
    Drawer(Open open, std::function<void()> whenNews);
    ~Drawer();
    Drawer(const Drawer&) = delete;
    Drawer& operator=(const Drawer&) = delete;

    // The same wish again changes nothing.
    void Want(const Wanted& wanted);
    Status GetStatus() const;
    Counts GetCounts() const;
    // Until there is something new to say since the last call: for those without a window.
    void WaitForNews();

    // Copies of pixels while nothing changes them: calls copy(box, pixels, stride) for what is drawn in sight of the
    // wanted page.
    template <class Copy> void ForDrawn(Copy&& copy) const {
        const std::lock_guard lock(m_mutex);
        m_cells.ForDrawn(copy);
    }
    // A thumbnail's pixels; empty when it is not there (yet), without pixels when the page cannot be drawn.
    struct Thumb {
        int width = 0, height = 0;
        std::shared_ptr<uint8_t> pixels;
    };
    std::optional<Thumb> GetThumb(int page) const;

private:
    void Run(const Open& open) noexcept;
    // One step of work; false when there is none left.
    bool Work(std::unique_lock<std::mutex>& lock);
    void DrawPiece(std::unique_lock<std::mutex>& lock, const Piece& piece);
    void DrawThumb(std::unique_lock<std::mutex>& lock, int page);
    int NextThumb() const;
    void Tell(std::unique_lock<std::mutex>& lock);
    // Runs the work without the lock. The text of its failure, empty for none; none when it was stopped.
    std::optional<std::string> Attempt(std::unique_lock<std::mutex>& lock, const std::function<void()>& work);

    const std::function<void()> m_whenNews;
    mutable std::mutex m_mutex; // all below but m_pages, which the thread alone uses, and the flag
    std::condition_variable m_work, m_news;
    std::unique_ptr<Pages> m_pages;
    Gxr::StopFlag m_stop{false};
    bool m_quit = false, m_told = false;
    std::optional<Wanted> m_wanted;
    std::optional<Piece> m_drawing; // none while a thumbnail is
    bool m_reading = false;         // the size of the wanted page
    Status m_status;
    Counts m_counts;
    Cells m_cells;
    std::map<int, Thumb> m_thumbs;
    std::thread m_thread;
};

} // namespace Viewer
