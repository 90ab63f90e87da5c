// SPDX-License-Identifier: MIT
#include "PageList.h"

#include "../PageRenderer.h"

#include <algorithm>
#include <climits>

namespace PdfPage {
namespace {

constexpr int kMaxPage = 1000000000;

// Reads digits from `at` on; 0 when there are none, or too many.
int Number(const std::string& text, size_t& at) {
    int value = 0;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9' && value <= kMaxPage / 10)
        value = 10 * value + (text[at++] - '0');
    return value;
}

} // namespace

PageList PageList::Parse(const std::string& text) {
    std::vector<PageRange> ranges;
    for (size_t at = 0;; ++at) {
        PageRange range;
        range.first = range.last = Number(text, at);
        if (at < text.size() && text[at] == '-') {
            const size_t digits = ++at;
            range.last = Number(text, at);
            if (at > digits && range.last < range.first)
                throw Failure("'" + text + "' is no range of pages");
        }
        if (range.first < 1 || (at < text.size() && text[at] != ','))
            throw Failure("'" + text + "' is no range of pages");
        ranges.push_back(range);
        if (at >= text.size())
            break;
    }
    // Overlapping and adjoining ranges become one.
    std::sort(ranges.begin(), ranges.end(), [](const PageRange& a, const PageRange& b) { return a.first < b.first; });
    std::vector<PageRange> joined;
    for (const PageRange& range : ranges) {
        PageRange* const before = joined.empty() ? nullptr : &joined.back();
        if (!before || (before->last != 0 && before->last < range.first - 1))
            joined.push_back(range);
        else if (before->last != 0)
            before->last = range.last == 0 ? 0 : std::max(before->last, range.last);
    }
    return PageList(std::move(joined));
}

PageList PageList::In(int pageCount) const {
    PageList list = *this;
    for (PageRange& range : list.m_ranges) {
        const int last = range.last == 0 ? std::max(range.first, pageCount) : range.last;
        if (last > pageCount)
            throw Failure("page " + std::to_string(last) + " does not exist, the file has " +
                          std::to_string(pageCount) + (pageCount == 1 ? " page" : " pages"));
        range.last = last;
    }
    return list;
}

size_t PageList::Count() const noexcept {
    size_t count = 0;
    for (const PageRange& range : m_ranges)
        count += static_cast<size_t>(range.last - range.first + 1);
    return count;
}

std::string PageText(std::vector<int> pages) {
    std::sort(pages.begin(), pages.end());
    std::string text;
    for (size_t i = 0; i < pages.size();) {
        size_t end = i + 1;
        while (end < pages.size() && pages[end] - pages[end - 1] <= 1)
            ++end;
        text += (text.empty() ? "" : ", ") + std::to_string(pages[i]);
        if (pages[end - 1] != pages[i])
            text += "-" + std::to_string(pages[end - 1]);
        i = end;
    }
    return text;
}

} // namespace PdfPage
