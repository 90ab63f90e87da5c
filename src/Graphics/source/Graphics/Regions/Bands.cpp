// SPDX-License-Identifier: MIT
#include "Bands.h"

namespace Graphics {
namespace {

constexpr int64_t kNone = INT64_MAX; // behind every coordinate

/// A piece of the plane is of class 1 (in a only), 2 (in b only) or 3 (in both). Every operation keeps the classes of
/// one range: intersection 3, union 1 to 3, exclusive or 1 to 2, difference 1. Class 0 (in neither) is in no range.
struct Keeps {
    explicit Keeps(RegionOp op) noexcept
        : first(op == RegionOp::Intersection ? 3U : 1U), last(op == RegionOp::Difference    ? 1U
                                                              : op == RegionOp::ExclusiveOr ? 2U
                                                                                            : 3U) {}
    [[nodiscard]] bool operator()(uint32_t pieceClass) const noexcept {
        return pieceClass >= first && pieceClass <= last;
    }
    uint32_t first, last;
};

[[nodiscard]] bool Same(const Intervals& a, const Intervals& b) noexcept {
    if (a.Shares(b) || a.Size() != b.Size()) {
        return a.Shares(b);
    }
    for (Intervals::Cursor i(a, 0), j(b, 0); i; i.Next(), j.Next()) {
        if (!(*i == *j)) {
            return false;
        }
    }
    return true;
}

/// The ends of a list's intervals, from left to right.
class Edges {
public:
    Edges(const Intervals& list, size_t first, size_t last) noexcept : m_cursor(list, first), m_left(last - first) {}
    [[nodiscard]] int64_t At() const noexcept { return m_left == 0 ? kNone : m_inside ? m_cursor->x1 : m_cursor->x0; }
    [[nodiscard]] bool Inside() const noexcept { return m_inside; }
    void Cross() noexcept {
        if (m_inside) {
            m_cursor.Next();
            --m_left;
        }
        m_inside = !m_inside;
    }

private:
    Intervals::Cursor m_cursor;
    size_t m_left;
    bool m_inside = false;
};

[[nodiscard]] size_t FirstEndingFrom(const Intervals& list, int32_t x) noexcept {
    return list.FirstWhere([x](const Interval& i) { return i.x1 >= x; });
}
[[nodiscard]] size_t FirstStartingBehind(const Intervals& list, int32_t x) noexcept {
    return list.FirstWhere([x](const Interval& i) { return i.x0 > x; });
}

/// Combines interval lists; keeps its buffers from one pair to the next.
class IntervalCombiner {
public:
    explicit IntervalCombiner(RegionOp op) noexcept : m_op(op), m_keeps(op) {}

    [[nodiscard]] Intervals operator()(const Intervals& a, const Intervals& b) {
        if (m_op != RegionOp::Difference && a.Size() < b.Size()) {
            return (*this)(b, a);
        }
        if (a.Empty() || b.Empty()) {
            return m_op == RegionOp::Intersection ? Intervals() : a;
        }
        // Intervals of a that b neither overlaps nor touches are in the result as they are.
        const size_t first = FirstEndingFrom(a, b.Left()), last = FirstStartingBehind(a, b.Right());
        Merge(Edges(a, first, last), Edges(b, 0, b.Size()));
        if (m_op == RegionOp::Intersection) {
            return m_kept.size() == a.Size() && Unchanged(a, 0) ? a : Intervals(m_kept);
        }
        if (m_kept.size() == last - first && Unchanged(a, first)) {
            return a;
        }
        if (m_kept.empty() && last - first == a.Size()) {
            return {};
        }
        return a.Replace(first, last, m_kept);
    }

private:
    /// Walks the ends of both lists from left to right. Invariant: between two ends the class is constant, so an
    /// interval of the result begins where the class enters the operation's range and ends where it leaves it.
    /// Intervals that touch become one, because the class does not leave the range between them.
    void Merge(Edges a, Edges b) {
        m_kept.clear();
        bool inside = false;
        int32_t start = 0;
        for (int64_t x = std::min(a.At(), b.At()); x != kNone; x = std::min(a.At(), b.At())) {
            if (a.At() == x) {
                a.Cross();
            }
            if (b.At() == x) {
                b.Cross();
            }
            if (m_keeps((a.Inside() ? 1U : 0U) + (b.Inside() ? 2U : 0U)) != inside) {
                inside = !inside;
                if (inside) {
                    start = static_cast<int32_t>(x);
                } else {
                    m_kept.push_back({start, static_cast<int32_t>(x)});
                }
            }
        }
    }

    [[nodiscard]] bool Unchanged(const Intervals& a, size_t first) const noexcept {
        Intervals::Cursor i(a, first);
        for (const Interval& kept : m_kept) {
            if (!(*i == kept)) {
                return false;
            }
            i.Next();
        }
        return true;
    }

    RegionOp m_op;
    Keeps m_keeps;
    std::vector<Interval> m_kept;
};

void PushBand(std::vector<Band>& bands, int32_t top, int32_t bottom, Intervals intervals) {
    if (intervals.Empty()) {
        return;
    }
    if (!bands.empty() && bands.back().bottom == top && Same(bands.back().intervals, intervals)) {
        bands.back().bottom = bottom;
        return;
    }
    bands.push_back({top, bottom, std::move(intervals)});
}

/// Walks bands by pieces: maximal stretches of rows with the same intervals, gaps included.
class BandWalk {
public:
    BandWalk(const Bands& bands, size_t first, size_t last) noexcept : m_cursor(bands, first), m_left(last - first) {}
    /// Where the next change from `y` on is.
    [[nodiscard]] int64_t NextChange(int64_t y) noexcept {
        while (m_left > 0 && m_cursor->bottom <= y) {
            m_cursor.Next();
            --m_left;
        }
        return m_left == 0 ? kNone : m_cursor->top > y ? m_cursor->top : m_cursor->bottom;
    }
    /// The intervals at `y`; null in a gap. NextChange(y) was asked.
    [[nodiscard]] const Intervals* At(int64_t y) const noexcept {
        return m_left > 0 && m_cursor->top <= y ? &m_cursor->intervals : nullptr;
    }

private:
    Bands::Cursor m_cursor;
    size_t m_left;
};

/// Calls `piece(top, bottom, a's intervals, b's)` from the top until it answers false; intervals are null in gaps.
template <class Piece> bool WalkPieces(BandWalk a, BandWalk b, const Piece& piece) {
    int64_t y = INT64_MIN;
    for (;;) {
        const int64_t next = std::min(a.NextChange(y), b.NextChange(y));
        if (next == kNone) {
            return true;
        }
        const Intervals *listA = a.At(y), *listB = b.At(y);
        if ((listA != nullptr || listB != nullptr) &&
            !piece(static_cast<int32_t>(y), static_cast<int32_t>(next), listA, listB)) {
            return false;
        }
        y = next;
    }
}

[[nodiscard]] size_t FirstBandEndingFrom(const Bands& bands, int32_t y) noexcept {
    return bands.FirstWhere([y](const Band& b) { return b.bottom >= y; });
}
[[nodiscard]] size_t FirstBandStartingBehind(const Bands& bands, int32_t y) noexcept {
    return bands.FirstWhere([y](const Band& b) { return b.top > y; });
}

[[nodiscard]] int32_t Top(const Bands& bands) noexcept { return Bands::Cursor(bands, 0)->top; }
[[nodiscard]] int32_t Bottom(const Bands& bands) noexcept { return Bands::Cursor(bands, bands.Size() - 1)->bottom; }

/// Whether every interval of b lies in one of a's.
[[nodiscard]] bool IntervalsContain(const Intervals& a, const Intervals& b) noexcept {
    Intervals::Cursor i(a, FirstEndingFrom(a, b.Left()));
    for (Intervals::Cursor j(b, 0); j; j.Next()) {
        while (i && i->x1 < j->x1) {
            i.Next();
        }
        if (!i || i->x0 > j->x0) {
            return false;
        }
    }
    return true;
}

[[nodiscard]] bool IntervalsIntersect(const Intervals& a, const Intervals& b) noexcept {
    Intervals::Cursor i(a, FirstEndingFrom(a, b.Left())), j(b, FirstEndingFrom(b, a.Left()));
    while (i && j) {
        if (std::max(i->x0, j->x0) < std::min(i->x1, j->x1)) {
            return true;
        }
        (i->x1 < j->x1 ? i : j).Next();
    }
    return false;
}

} // namespace

Bands MakeBands(const IntRect& rect) {
    const Interval interval{rect.left, rect.right};
    const Band band{rect.top, rect.bottom, Intervals({&interval, 1})};
    return Bands({&band, 1});
}

Bands MoveBands(const Bands& bands, int64_t dx, int64_t dy) {
    std::vector<Band> moved;
    std::vector<Interval> intervals;
    moved.reserve(bands.Size());
    for (Bands::Cursor band(bands, 0); band; band.Next()) {
        intervals.clear();
        for (Intervals::Cursor i(band->intervals, 0); i; i.Next()) {
            intervals.push_back({static_cast<int32_t>(i->x0 + dx), static_cast<int32_t>(i->x1 + dx)});
        }
        moved.push_back(
            {static_cast<int32_t>(band->top + dy), static_cast<int32_t>(band->bottom + dy), Intervals(intervals)});
    }
    return Bands(moved);
}

Bands CombineBands(const Bands& a, const Bands& b, RegionOp op) {
    if (op != RegionOp::Difference && a.Size() < b.Size()) {
        return CombineBands(b, a, op);
    }
    // Bands of a that b neither overlaps nor touches are in the result as they are.
    const size_t first = FirstBandEndingFrom(a, Top(b)), last = FirstBandStartingBehind(a, Bottom(b));
    IntervalCombiner combine(op);
    const Intervals none;
    std::vector<Band> bands;
    WalkPieces(BandWalk(a, first, last), BandWalk(b, 0, b.Size()),
               [&](int32_t top, int32_t bottom, const Intervals* listA, const Intervals* listB) {
                   PushBand(bands, top, bottom,
                            combine(listA != nullptr ? *listA : none, listB != nullptr ? *listB : none));
                   return true;
               });
    if (op == RegionOp::Intersection) {
        return Bands(bands);
    }
    return bands.empty() && last - first == a.Size() ? Bands() : a.Replace(first, last, bands);
}

bool BandsContain(const Bands& a, const Bands& b) noexcept {
    return WalkPieces(BandWalk(a, FirstBandEndingFrom(a, Top(b)), FirstBandStartingBehind(a, Bottom(b))),
                      BandWalk(b, 0, b.Size()), [](int32_t, int32_t, const Intervals* listA, const Intervals* listB) {
                          return listB == nullptr || (listA != nullptr && IntervalsContain(*listA, *listB));
                      });
}

bool BandsIntersect(const Bands& a, const Bands& b) noexcept {
    const int32_t top = std::max(Top(a), Top(b)), bottom = std::min(Bottom(a), Bottom(b));
    const auto walk = [&](const Bands& bands) {
        const size_t first = FirstBandEndingFrom(bands, top);
        return BandWalk(bands, first, std::max(first, FirstBandStartingBehind(bands, bottom)));
    };
    return !WalkPieces(walk(a), walk(b), [](int32_t, int32_t, const Intervals* listA, const Intervals* listB) {
        return listA == nullptr || listB == nullptr || !IntervalsIntersect(*listA, *listB);
    });
}

} // namespace Graphics
