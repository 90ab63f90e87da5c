// SPDX-License-Identifier: MIT
// The pages that were sent and are not settled, in the order in which they were sent, which is nearly the order in
// which they come back.
#pragma once

#include "../jobs/Survey.h"

#include <deque>
#include <functional>

namespace PdfPage {

class Outstanding {
public:
    using Item = Survey::Item;

    void Add(const Item& item) { m_items.push_back(item); }
    size_t Count() const noexcept { return m_items.size(); }
    const Item& operator[](size_t i) const noexcept { return m_items[i]; }

    // Asks for the first pages, and for as many others in turn, whether they are settled, and forgets those that are.
    // Gives how many that were. The work does not grow with the number of pages.
    size_t Settle(const std::function<bool(const Item&)>& settled);

private:
    static constexpr size_t kFirst = 1024;

    size_t SettleFrom(size_t begin, const std::function<bool(const Item&)>& settled);

    std::deque<Item> m_items;
    size_t m_turn = 0;
};

} // namespace PdfPage
