// SPDX-License-Identifier: MIT
// Recordings as the pages of one document: each file is a page.
#pragma once

#include "Document.h"

#include <memory>
#include <vector>

namespace Viewer {

class RecordedPages : public Pages {
public:
    // At least one file. Throws Gxr::Error for the first that cannot be read.
    RecordedPages(const std::vector<std::filesystem::path>& files, unsigned threads);

    int Count() const override { return static_cast<int>(m_documents.size()); }
    std::string Name() const override { return m_documents.front()->Name(); }
    PageSize SizeOf(int page, const Gxr::StopFlag& stop) override;
    void Draw(const Piece& piece, const Gxr::StopFlag& stop) override;

private:
    const unsigned m_threads;
    std::vector<std::unique_ptr<Document>> m_documents;
    int m_awake[2] = {-1, -1}; // the pages drawn last, the newest first: the only ones that hold more than their file
};

} // namespace Viewer
