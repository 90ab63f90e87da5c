// SPDX-License-Identifier: MIT
// Which pages: "1-500", "3,7-9", "5-" (to the end). Pages count from 1; each is named once, in rising order.
#pragma once

#include <string>
#include <vector>

namespace PdfPage {

struct PageRange {
    int first = 1;
    int last = 0; // 0: the end of the file
};

class PageList {
public:
    PageList() = default; // no page
    // Throws Failure for what is no list of pages.
    static PageList Parse(const std::string& text);
    static PageList All() { return PageList({{1, 0}}); }
    static PageList One(int page) { return PageList({{page, page}}); }

    // The same in a file of so many pages. Throws Failure when it lacks one of them.
    PageList In(int pageCount) const;

    // Of a list without open ends.
    size_t Count() const noexcept;
    const std::vector<PageRange>& Ranges() const noexcept { return m_ranges; }

private:
    explicit PageList(std::vector<PageRange> ranges) : m_ranges(std::move(ranges)) {}

    std::vector<PageRange> m_ranges; // rising, apart from each other
};

// "3, 7-9" from page numbers in any order.
std::string PageText(std::vector<int> pages);

} // namespace PdfPage
