// SPDX-License-Identifier: MIT
// Which pages of which files a run is about: every file is opened once, in a process of its own, for its page count.
#pragma once

#include "CommandLine.h"
#include "Failures.h"
#include "PageNames.h"

namespace PdfPage {

class Survey {
public:
    struct Item {
        size_t file;
        int page;
    };

    // Files that can't be read, or that lack a page that was asked for, go to `failures` as a whole.
    Survey(const CommandLine& line, Failures& failures);

    const std::vector<std::string>& Files() const noexcept { return m_files; }
    std::string Name(const Item& item) const { return m_names.Of(item.file, item.page); }
    size_t Count() const noexcept;

    // The next page, file after file; false at the end.
    bool Next(Item& item) noexcept;

private:
    std::vector<std::string> m_files;
    PageNames m_names;
    std::vector<PageList> m_pages; // of each file
    size_t m_file = 0, m_range = 0;
    int m_page = 0; // the last one of this range that was given
};

} // namespace PdfPage
