// SPDX-License-Identifier: MIT
#include "Shape.h"

#include <algorithm>

namespace Graphics {
namespace {

constinit std::atomic<uint64_t> g_lastIdentity{0};

} // namespace

uint64_t Shape::NewIdentity() const noexcept {
    const uint64_t fresh = g_lastIdentity.fetch_add(1, std::memory_order_relaxed) + 1;
    uint64_t known = 0;
    // Another thread that reads the same path may have been first.
    return m_identity.compare_exchange_strong(known, fresh, std::memory_order_relaxed) ? fresh : known;
}

bool Shape::Equals(const Shape& o) const noexcept {
    if (Empty() || m_figures.size() != o.m_figures.size() || m_fillRule != o.m_fillRule) {
        return false;
    }
    auto other = o.m_figures.begin();
    for (const Figure& figure : m_figures) {
        if (!figure.Equals(*other)) {
            return false;
        }
        ++other;
    }
    return true;
}

} // namespace Graphics
