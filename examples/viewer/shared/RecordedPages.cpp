// SPDX-License-Identifier: MIT
#include "RecordedPages.h"

#include <utility>

namespace Viewer {

RecordedPages::RecordedPages(const std::vector<std::filesystem::path>& files, unsigned threads) : m_threads(threads) {
    for (const std::filesystem::path& file : files)
        m_documents.push_back(std::make_unique<Document>(file));
}

PageSize RecordedPages::SizeOf(int page, const Gxr::StopFlag&) {
    return m_documents[static_cast<size_t>(page)]->Size();
}

void RecordedPages::Draw(const Piece& piece, const Gxr::StopFlag& stop) {
    // Thumbnails and the page that is looked at take turns.
    if (piece.page != m_awake[0]) {
        const int oldest = std::exchange(m_awake[1], m_awake[0]);
        m_awake[0] = piece.page;
        if (oldest >= 0 && oldest != piece.page)
            m_documents[static_cast<size_t>(oldest)]->Rest();
    }
    m_documents[static_cast<size_t>(piece.page)]->Draw(piece, m_threads, stop);
}

} // namespace Viewer
