// SPDX-License-Identifier: MIT
// What failed and why, gathered by reason for one line at the end.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace PdfPage {

class Failures {
public:
    void AddPage(const std::string& reason, const std::string& file, int page);
    // A file of which no page could be begun; its name stands in the reason where there is but one file.
    void AddFile(const std::string& reason, const std::string& file);

    size_t Pages() const noexcept { return m_pages; }
    bool Any() const noexcept { return !m_reasons.empty(); }

    // "2 of 9 pages failed: time limit of 5 s reached: a.pdf 3, 7". With one page or one file only, the bare reason.
    std::string Line(size_t allPages, size_t allFiles) const;

private:
    using PagesOfFile = std::map<std::string, std::vector<int>>; // no pages: the file as a whole

    std::map<std::string, PagesOfFile> m_reasons;
    size_t m_pages = 0, m_files = 0;
};

} // namespace PdfPage
