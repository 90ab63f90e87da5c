// SPDX-License-Identifier: MIT
#include "Outstanding.h"

#include <algorithm>

namespace PdfPage {

size_t Outstanding::Settle(const std::function<bool(const Item&)>& settled) {
    size_t count = SettleFrom(0, settled);
    if (m_items.size() > kFirst) {
        m_turn = m_turn < kFirst || m_turn >= m_items.size() ? kFirst : m_turn;
        const size_t taken = SettleFrom(m_turn, settled);
        m_turn += kFirst - taken;
        count += taken;
    }
    return count;
}

size_t Outstanding::SettleFrom(size_t begin, const std::function<bool(const Item&)>& settled) {
    const auto first = m_items.begin() + static_cast<ptrdiff_t>(begin);
    const auto end = first + static_cast<ptrdiff_t>(std::min(kFirst, m_items.size() - begin));
    const auto kept = std::remove_if(first, end, settled);
    const auto count = static_cast<size_t>(end - kept);
    m_items.erase(kept, end);
    return count;
}

} // namespace PdfPage
