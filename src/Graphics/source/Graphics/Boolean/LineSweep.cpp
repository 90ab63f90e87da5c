// SPDX-License-Identifier: MIT
#include "LineSweep.h"

#include <algorithm>

#include "SlotSort.h"

namespace Graphics {

void LineSweep::Sort(HeapArray<Event>& events) {
    SlotSort<Event> sorter;
    if (!sorter.Sort(events, [](const Event& e) { return e.key; })) {
        std::sort(events.begin(), events.end(),
                  [](const Event& a, const Event& b) { return a.key != b.key ? a.key < b.key : a.index < b.index; });
    }
}

void LineSweep::Run(Listener& listener) {
    m_begins.clear();
    m_ends.clear();
    m_begins.reserve(m_lines.size());
    m_ends.reserve(m_lines.size());
    for (size_t i = 0; i < m_lines.size(); ++i) {
        m_begins.push_back({SweepKey(m_lines[i].lo), static_cast<uint32_t>(i)});
        m_ends.push_back({SweepKey(m_lines[i].hi), static_cast<uint32_t>(i)});
    }
    Sort(m_begins);
    Sort(m_ends);
    Sort(m_questions);
    m_status.Clear();
    m_crossings.clear();
    m_begun = m_ended = 0;
    for (size_t asked = 0;;) {
        uint64_t key = m_ended < m_ends.size() ? m_ends[m_ended].key : UINT64_MAX;
        key = m_begun < m_begins.size() ? std::min(key, m_begins[m_begun].key) : key;
        const bool asks = asked < m_questions.size() && m_questions[asked].key < key;
        key = asks ? m_questions[asked].key : key;
        if (!m_crossings.empty() && (key == UINT64_MAX || m_crossings[0].at.Compare(PointOf(key)) < 0)) {
            Stop(listener, {}, false);
        } else if (key == UINT64_MAX) {
            return;
        } else if (asks) {
            Reply(listener, m_questions[asked++]);
        } else {
            Stop(listener, PointOf(key), true);
        }
    }
}

bool LineSweep::Touches(uint32_t line, const CrossPoint* cross, const GridPoint& point) noexcept {
    return cross != nullptr ? cross->LiesOn(m_lines[line]) : m_lines[line].SideOf(point) == 0;
}

/// Removes all crossings at the point from the heap.
void LineSweep::TakeCrossings(const CrossPoint* cross, const GridPoint& point) {
    const auto later = [](const Crossing& a, const Crossing& b) { return a.at.Compare(b.at) > 0; };
    while (!m_crossings.empty() &&
           (cross != nullptr ? m_crossings[0].at.Compare(*cross) : m_crossings[0].at.Compare(point)) == 0) {
        std::pop_heap(m_crossings.begin(), m_crossings.end(), later);
        m_crossings.pop_back();
    }
}

/// One stop: at the first crossing in the heap, or where a line ends or begins. The lines through the point are
/// adjacent in the order; behind the point, those that continue are in reverse order.
void LineSweep::Stop(Listener& listener, const GridPoint& point, bool isEnd) {
    m_through.clear();
    m_onward.clear();
    CrossPoint top;
    const CrossPoint* cross = nullptr;
    uint32_t known = kNone;
    if (!isEnd) {
        top = m_crossings[0].at;
        cross = &top;
        known = m_crossings[0].left;
    } else if (m_ended < m_ends.size() && m_ends[m_ended].key == SweepKey(point)) {
        known = m_ends[m_ended].index;
    }
    TakeCrossings(cross, point);
    Place place = known == kNone ? m_status.Search(point, m_comparisons) : m_status.Find(known);
    for (uint32_t e = m_status.LeftOf(place); e != kNone && Touches(e, cross, point); e = m_status.LeftOf(place)) {
        place = m_status.StepLeft(place);
    }
    Place behind = place;
    for (uint32_t e = m_status.RightOf(behind); e != kNone && Touches(e, cross, point); e = m_status.RightOf(behind)) {
        m_through.push_back(e);
        behind = m_status.StepRight(behind);
        m_lines[e].block = kNone;
        if (!isEnd || !(m_lines[e].hi == point)) {
            m_onward.push_back(e);
        }
    }
    if (isEnd) {
        const uint64_t key = SweepKey(point);
        for (; m_ended < m_ends.size() && m_ends[m_ended].key == key; ++m_ended) {
        }
        for (; m_begun < m_begins.size() && m_begins[m_begun].key == key; ++m_begun) {
            m_onward.push_back(m_begins[m_begun].index);
        }
    }
    if (m_onward.size() == 2 && !isEnd) {
        std::swap(m_onward[0], m_onward[1]);
    } else if (m_onward.size() > 1) {
        std::sort(m_onward.begin(), m_onward.end(), [&](uint32_t i, uint32_t k) {
            const GridEdge &e = m_lines[i], &f = m_lines[k];
            const int64_t turn = static_cast<int64_t>(e.hi.x - e.lo.x) * (f.hi.y - f.lo.y) -
                                 static_cast<int64_t>(e.hi.y - e.lo.y) * (f.hi.x - f.lo.x);
            return turn != 0 ? turn < 0 : i < k;
        });
    }
    const uint32_t left = m_status.LeftOf(place);
    listener.Meet(isEnd ? point : top.Nearest(), isEnd, left, {m_through.begin(), m_through.end()},
                  {m_onward.begin(), m_onward.end()});
    place = m_status.Exchange(place, static_cast<uint32_t>(m_through.size()), m_onward);
    const uint32_t right = m_status.RightOf(place);
    if (m_onward.empty()) {
        LookAhead(left, right);
    } else {
        LookAhead(left, m_onward[0]);
        LookAhead(m_onward.back(), right);
    }
}

/// Adds the crossing of two neighbours. They cross if the one that ends first is on the other's side by then. An end on
/// the other line is already an event.
void LineSweep::LookAhead(uint32_t left, uint32_t right) {
    if (left == kNone || right == kNone) {
        return;
    }
    const GridEdge &e = m_lines[left], &f = m_lines[right];
    if ((Before(e.hi, f.hi) ? f.SideOf(e.hi) : -e.SideOf(f.hi)) > 0) {
        m_crossings.push_back({CrossPoint(e, f), left, right});
        std::push_heap(m_crossings.begin(), m_crossings.end(),
                       [](const Crossing& a, const Crossing& b) { return a.at.Compare(b.at) > 0; });
    }
}

void LineSweep::Reply(Listener& listener, const Event& question) {
    const GridPoint from = PointOf(question.key), to{from.x + 2, from.y};
    Place place = m_status.Search(from, m_comparisons);
    for (uint32_t e = m_status.RightOf(place); e != kNone && m_lines[e].SideOf(to) >= 0; e = m_status.RightOf(place)) {
        listener.Answer(question.index, e);
        place = m_status.StepRight(place);
    }
}

} // namespace Graphics
