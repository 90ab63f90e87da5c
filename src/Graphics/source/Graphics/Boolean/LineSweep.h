// SPDX-License-Identifier: MIT
// A sweep over straight lines that are never bent (Bentley and Ottmann 1979). Its order is that of the exact lines, so
// it is always correct, and one sweep finds every crossing. It reports to a listener and changes only GridEdge::block.
//
// Time: O(n + k log n) for k crossings, with one event for each end and for each pair of neighbours that cross; for
// each query (see Ask) one search, plus what it finds.
#pragma once

#include <span>

#include "CrossPoint.h"
#include "SweepStatus.h"

namespace Graphics {

class LineSweep {
public:
    class Listener {
    public:
        virtual ~Listener() = default;
        /// Lines meet or end at a point; `at` is the nearest grid point. `through` are the lines that reach it and
        /// `onward` those that continue or begin there, both from left to right. `left` is the line to the left, or
        /// kNone. `isEnd`: a line ends or begins there, so `at` is the exact point.
        virtual void Meet(const GridPoint& at, bool isEnd, uint32_t left, std::span<const uint32_t> through,
                          std::span<const uint32_t> onward) = 0;
        /// A line touches the segment of a query.
        virtual void Answer(uint32_t question, uint32_t line) = 0;
    };

    /// `lines` are edges with lo before hi.
    explicit LineSweep(HeapArray<GridEdge>& lines) noexcept : m_lines(lines), m_status(lines) {}
    LineSweep(const LineSweep&) = delete;
    LineSweep& operator=(const LineSweep&) = delete;

    /// Adds a query: which lines touch the horizontal segment of length 2 to the right of a point? No line may be
    /// horizontal or end in that row. Queries are numbered in the order of calls.
    void Ask(const GridPoint& from) {
        m_questions.push_back({SweepKey(from), static_cast<uint32_t>(m_questions.size())});
    }
    void Run(Listener& listener);

private:
    static constexpr uint32_t kNone = GridEdge::kNone;
    using Place = SweepStatus::Place;

    struct Event {
        uint64_t key;
        uint32_t index;
    };
    struct Crossing {
        CrossPoint at;
        uint32_t left, right;
    };

    void Sort(HeapArray<Event>& events);
    void Stop(Listener& listener, const GridPoint& point, bool isEnd);
    void TakeCrossings(const CrossPoint* cross, const GridPoint& point);
    [[nodiscard]] bool Touches(uint32_t line, const CrossPoint* cross, const GridPoint& point) noexcept;
    void LookAhead(uint32_t left, uint32_t right);
    void Reply(Listener& listener, const Event& question);

    HeapArray<GridEdge>& m_lines;
    SweepStatus m_status;
    HeapArray<Event> m_begins, m_ends, m_questions;
    HeapArray<Crossing> m_crossings; // a heap, the first crossing on top
    HeapArray<uint32_t> m_through, m_onward;
    size_t m_begun = 0, m_ended = 0;
    uint64_t m_comparisons = 0;
};

} // namespace Graphics
