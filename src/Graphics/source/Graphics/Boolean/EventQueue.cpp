// SPDX-License-Identifier: MIT
#include "EventQueue.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Graphics {
namespace {

constexpr size_t kFewEnds = 512; // below, comparing is faster than counting digits

[[nodiscard]] GridPoint PointOf(uint64_t key) noexcept {
    constexpr int32_t kBias = 1 << 25;
    return {static_cast<int32_t>(key & 0x3FFFFFF) - kBias, static_cast<int32_t>(key >> 26) - kBias};
}

/// std::push_heap makes a heap with the largest on top; the sweep wants the first.
struct Later {
    [[nodiscard]] bool operator()(const EventQueue::Meeting& a, const EventQueue::Meeting& b) const noexcept {
        return a.key > b.key;
    }
};

} // namespace

void EventQueue::Reset(const HeapArray<GridEdge>& edges) {
    m_position = 0;
    m_meetings.clear();
    m_ends.resize(edges.size() * 2);
    for (size_t i = 0; i < edges.size(); ++i) {
        const auto edge = static_cast<uint32_t>(i);
        m_ends[2 * i] = {SweepKey(edges[i].lo), edge, 1};
        m_ends[2 * i + 1] = {SweepKey(edges[i].hi), edge, 0};
    }
    Sort();
}

/// Stable counting sort by digits of 11 bits, from the lowest; digits that are the same everywhere are skipped.
void EventQueue::Sort() {
    if (m_ends.size() < kFewEnds) {
        std::sort(m_ends.begin(), m_ends.end(), [](const End& a, const End& b) {
            return a.key != b.key ? a.key < b.key : a.edge != b.edge ? a.edge < b.edge : a.start < b.start;
        });
        return;
    }
    constexpr int kBits = 11, kDigits = 5;
    constexpr size_t kValues = size_t{1} << kBits;
    m_scratch.resize(m_ends.size());
    HeapArray<uint32_t> counts;
    counts.resize(kDigits * kValues);
    std::fill(counts.begin(), counts.end(), 0U);
    for (const End& end : m_ends) {
        for (int digit = 0; digit < kDigits; ++digit) {
            ++counts[digit * kValues + (end.key >> (digit * kBits) & (kValues - 1))];
        }
    }
    for (int digit = 0; digit < kDigits; ++digit) {
        uint32_t* count = counts.data() + digit * kValues;
        const auto valueOf = [&](const End& end) { return end.key >> (digit * kBits) & (kValues - 1); };
        if (count[valueOf(m_ends[0])] == m_ends.size()) {
            continue;
        }
        uint32_t sum = 0;
        for (size_t i = 0; i < kValues; ++i) {
            sum += std::exchange(count[i], sum);
        }
        for (const End& end : m_ends) {
            m_scratch[count[valueOf(end)]++] = end;
        }
        std::swap(m_ends, m_scratch);
    }
}

void EventQueue::Add(const GridPoint& at, uint32_t end0, uint32_t end1, uint32_t start0, uint32_t start1) {
    m_meetings.push_back({SweepKey(at), {end0, end1}, {start0, start1}});
    std::push_heap(m_meetings.begin(), m_meetings.end(), Later{});
}

bool EventQueue::Next(GridPoint& point, HeapArray<uint32_t>& ends, HeapArray<uint32_t>& starts) {
    const bool more = m_position < m_ends.size();
    if (!more && m_meetings.empty()) {
        return false;
    }
    uint64_t key = more ? m_ends[m_position].key : m_meetings[0].key;
    key = m_meetings.empty() ? key : std::min(key, m_meetings[0].key);
    ends.clear();
    starts.clear();
    while (m_position < m_ends.size() && m_ends[m_position].key == key) {
        const End& end = m_ends[m_position++];
        (end.start != 0 ? starts : ends).push_back(end.edge);
    }
    const auto put = [](HeapArray<uint32_t>& list, uint32_t edge) {
        if (edge != GridEdge::kNone) {
            list.push_back(edge);
        }
    };
    while (!m_meetings.empty() && m_meetings[0].key == key) {
        std::pop_heap(m_meetings.begin(), m_meetings.end(), Later{});
        for (int i = 0; i < 2; ++i) {
            put(ends, m_meetings.back().ends[i]);
            put(starts, m_meetings.back().starts[i]);
        }
        m_meetings.pop_back();
    }
    point = PointOf(key);
    return true;
}

} // namespace Graphics
