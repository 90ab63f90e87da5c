// SPDX-License-Identifier: MIT
#include "EventQueue.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Graphics {
namespace {

constexpr size_t kFewEnds = 256; // below this number comparison sorting is faster than counting digits

/// Reverses the order, since std::push_heap puts the largest element on top and the sweep needs the first.
struct Later {
    [[nodiscard]] bool operator()(const EventQueue::Meeting& a, const EventQueue::Meeting& b) const noexcept {
        return a.key > b.key;
    }
};

} // namespace

/// Consecutive edges of a ring are usually consecutive in the list; their common point is stored once.
void EventQueue::Reset(const HeapArray<GridEdge>& edges) {
    m_position = 0;
    m_meetings.clear();
    m_ends.clear();
    m_ends.reserve(edges.size() * 2);
    size_t open = SIZE_MAX; // the point at which the next edge probably continues
    for (size_t i = 0; i < edges.size(); ++i) {
        const auto edge = static_cast<uint32_t>(i);
        const uint64_t lo = SweepKey(edges[i].lo), hi = SweepKey(edges[i].hi);
        if (open != SIZE_MAX && (m_ends[open].key == lo || m_ends[open].key == hi)) {
            const bool starts = m_ends[open].key == lo;
            m_ends[open].edges[1] = edge | (starts ? kStart : 0U);
            open = m_ends.size();
            m_ends.push_back({starts ? hi : lo, {edge | (starts ? 0U : kStart), GridEdge::kNone}});
            continue;
        }
        m_ends.push_back({lo, {edge | kStart, GridEdge::kNone}});
        m_ends.push_back({hi, {edge, GridEdge::kNone}});
        const bool back = i + 1 < edges.size() && (edges[i + 1].lo == edges[i].lo || edges[i + 1].hi == edges[i].lo);
        open = m_ends.size() - (back ? 2 : 1);
    }
    Sort();
}

void EventQueue::Sort() {
    if (m_sorter.Sort(m_ends, [](const End& end) { return end.key; })) {
        return;
    }
    if (m_ends.size() < kFewEnds) {
        std::sort(m_ends.begin(), m_ends.end(),
                  [](const End& a, const End& b) { return a.key != b.key ? a.key < b.key : a.edges[0] < b.edges[0]; });
    } else {
        SortByDigits();
    }
}

/// Stable counting sort by digits of 11 bits, lowest first; digits equal in all keys are skipped.
void EventQueue::SortByDigits() {
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
        for (const uint32_t edge : m_ends[m_position].edges) {
            if (edge != GridEdge::kNone) {
                ((edge & kStart) != 0 ? starts : ends).push_back(edge & ~kStart);
            }
        }
        ++m_position;
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
