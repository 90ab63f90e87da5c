// SPDX-License-Identifier: MIT
// Active edges, their spans and the search for trapezoid bands. All x are in sub units.
#include "EdgeScanner.h"

#include <algorithm>
#include <array>

namespace Graphics {

namespace {

constexpr int32_t kNever = 0x7FFFFFFF;

/// The edge advanced by `count` sub-scanlines.
Edge Advanced(const Edge& e, int64_t count) noexcept {
    Edge out = e;
    int64_t x = e.x + count * e.step;
    int64_t error = e.error + count * e.increment;
    if (error >= 0) {
        const int64_t wraps = error / e.denominator + 1;
        x += wraps;
        error -= wraps * e.denominator;
    }
    out.x = static_cast<int32_t>(std::clamp<int64_t>(x, INT32_MIN, INT32_MAX));
    out.error = static_cast<int32_t>(error);
    return out;
}

/// 4 |slope| + 1: the reach of the edge's ramp to either side, in the middle of a pixel row.
int64_t Ramp(const Edge& e) noexcept {
    const int64_t ramp = 4 * int64_t{e.increment} / e.denominator + 4 * int64_t{e.step} + 1;
    return e.step >= 0 ? ramp : 1 - ramp;
}

int64_t Distance(const Edge& a, const Edge& b) noexcept { return int64_t{b.x} - a.x - (b.error < a.error ? 1 : 0); }

bool Converge(const Edge& a, const Edge& b) noexcept {
    if (a.step != b.step) {
        return a.step > b.step;
    }
    return int64_t{a.increment} * b.denominator > int64_t{b.increment} * a.denominator;
}

float PixelX(const Edge& e) noexcept {
    return (static_cast<float>(e.x) + static_cast<float>(e.error) / static_cast<float>(e.denominator)) * 0.125F;
}

/// An upper bound of the edges in any sub-scanline: the number of edges in the fullest of kBands equal bands. Most
/// edges of a large path are short, so this is a small part of them.
size_t MostActive(const HeapArray<Edge>& edges) noexcept {
    constexpr int64_t kBands = 256;
    if (edges.size() <= kBands) {
        return edges.size();
    }
    int64_t first = INT32_MAX;
    int64_t last = INT32_MIN;
    for (const Edge& e : edges) {
        first = std::min<int64_t>(first, e.first);
        last = std::max<int64_t>(last, e.last);
    }
    const int64_t rows = (last - first) / kBands + 1;
    std::array<int32_t, kBands + 1> changes{};
    for (const Edge& e : edges) {
        ++changes[static_cast<size_t>((e.first - first) / rows)];
        --changes[static_cast<size_t>((e.last - 1 - first) / rows) + 1];
    }
    return MostOverlapping(changes);
}

float HalfRamp(const Edge& e) noexcept {
    const float slope =
        static_cast<float>(e.step) + static_cast<float>(e.increment) / static_cast<float>(e.denominator);
    return 0.5F * std::fabs(slope) + 0.5F;
}

} // namespace

/// Inserts the edges [from, to), sorted by x. New edges go before active ones with the same x.
void EdgeScanner::Insert(const Edge* from, const Edge* to) {
    const size_t old = m_active.size();
    const auto added = static_cast<size_t>(to - from);
    m_active.resize(old + added);
    Edge* a = m_active.data();
    size_t end = old + added;
    size_t i = old;
    while (to != from) {
        const Edge& e = to[-1];
        if (i > 0 && a[i - 1].x >= e.x) {
            a[--end] = a[--i];
        } else {
            a[--end] = e;
            --to;
        }
    }
}

template <class F> void EdgeScanner::ForEachSpan(F&& f) noexcept(noexcept(f(size_t{}, size_t{}))) {
    const Edge* a = m_active.data();
    const size_t count = m_active.size();
    for (size_t i = 0; i + 1 < count;) {
        size_t b = i + 1;
        if (!m_evenOdd) {
            int32_t winding = a[i].direction;
            for (; b < count; ++b) {
                winding += a[b].direction;
                if (winding == 0) {
                    break;
                }
            }
            if (b == count) {
                return;
            }
        }
        f(i, b);
        i = b + 1;
    }
}

void EdgeScanner::AddSpans() noexcept {
    const Edge* a = m_active.data();
    ForEachSpan([&](size_t from, size_t to) noexcept {
        if (a[from].x != a[to].x) {
            m_row.Add(a[from].x, a[to].x);
        }
    });
}

/// Drops the edges that end at sub-scanline `next` and advances the others to it.
void EdgeScanner::Step(int32_t next) noexcept {
    Edge* a = m_active.data();
    size_t kept = 0;
    bool sorted = true;
    for (size_t i = 0; i < m_active.size(); ++i) {
        Edge e = a[i];
        if (e.last <= next) {
            continue;
        }
        // In 64 bits, since long steps may exceed the range of x; beyond it only the side matters.
        int64_t x = int64_t{e.x} + e.step;
        e.error += e.increment;
        if (e.error >= 0) {
            ++x;
            e.error -= e.denominator;
        }
        e.x = static_cast<int32_t>(std::clamp<int64_t>(x, INT32_MIN, INT32_MAX));
        sorted = sorted && (kept == 0 || a[kept - 1].x <= e.x);
        a[kept++] = e;
    }
    m_active.resize(kept);
    if (!sorted) {
        Restore();
    }
}

void EdgeScanner::Restore() noexcept {
    Edge* a = m_active.data();
    const size_t count = m_active.size();
    size_t moves = 0;
    for (size_t i = 1; i < count; ++i) {
        const Edge e = a[i];
        size_t k = i;
        for (; k > 0 && a[k - 1].x > e.x; --k) {
            a[k] = a[k - 1];
        }
        a[k] = e;
        moves += i - k;
        if (moves > 16 * count + 256) { // strongly out of order
            std::sort(a, a + count, [](const Edge& l, const Edge& r) { return l.x < r.x; });
            return;
        }
    }
}

/// The sub-scanline, a multiple of 8, up to which all neighbours stay apart; below s + 8 if there is no band.
int64_t EdgeScanner::FindBandEnd(int32_t s, int64_t limit) const noexcept {
    const Edge* a = m_active.data();
    const size_t count = m_active.size();
    if (!m_evenOdd) {
        for (size_t i = 0; i + 1 < count; i += 2) {
            if (a[i].direction + a[i + 1].direction != 0) {
                return s;
            }
        }
    }
    if (count % 2 != 0) {
        return s;
    }
    int64_t end = limit;
    for (size_t i = 0; i < count; ++i) {
        end = std::min<int64_t>(end, a[i].last);
    }
    for (size_t i = 0; i + 1 < count; ++i) {
        const Edge& l = a[i];
        const Edge& r = a[i + 1];
        const int64_t margin = Ramp(l) + 8 + Ramp(r);
        const int64_t distance = Distance(l, r);
        if (distance < margin) {
            return s;
        }
        if (!Converge(l, r)) {
            continue;
        }
        const int64_t atEnd = Distance(Advanced(l, end - s), Advanced(r, end - s));
        if (atEnd <= margin) {
            end = s + (distance - margin) * (end - s) / (distance - atEnd + 1);
            if (end < s + 8) {
                return s;
            }
        }
    }
    return end & ~int64_t{7};
}

void EdgeScanner::EmitTrapezoids(int32_t s, int32_t end, RasterizationSink& sink) {
    const Edge* a = m_active.data();
    ForEachSpan([&](size_t from, size_t to) {
        const Edge l = Advanced(a[from], end - s);
        const Edge r = Advanced(a[to], end - s);
        sink.TrapezoidBand({static_cast<float>(s) * 0.125F, static_cast<float>(end) * 0.125F, PixelX(a[from]),
                            PixelX(l), HalfRamp(l), PixelX(a[to]), PixelX(r), HalfRamp(r)});
    });
    Edge* out = m_active.data();
    for (Edge& e : m_active) {
        if (e.last > end) {
            *out++ = Advanced(e, end - s);
        }
    }
    m_active.resize(static_cast<size_t>(out - m_active.data()));
}

void EdgeScanner::Start(HeapArray<Edge>& edges, bool evenOdd) {
    m_evenOdd = evenOdd;
    m_active.clear();
    m_active.reserve(MostActive(edges)); // before any output, so that a failure has drawn nothing
    std::sort(edges.begin(), edges.end(),
              [](const Edge& l, const Edge& r) { return l.first != r.first ? l.first < r.first : l.x < r.x; });
}

void EdgeScanner::Scan(HeapArray<Edge>& edges, bool evenOdd, int32_t first, int32_t last, SampleGrid& grid) {
    Start(edges, evenOdd);
    const Edge* next = edges.begin();
    const Edge* const stop = edges.end();
    for (int32_t s = first; s < last;) {
        const Edge* to = next;
        while (to != stop && to->first <= s) {
            ++to;
        }
        Insert(next, to);
        next = to;
        if (m_active.empty()) {
            if (next == stop) {
                return;
            }
            s = next->first;
            continue;
        }
        ForEachSpan([&](size_t from, size_t end) noexcept { grid.Add(s, m_active[from].x, m_active[end].x); });
        Step(++s);
    }
}

void EdgeScanner::Scan(HeapArray<Edge>& edges, bool evenOdd, bool trapezoids, int32_t first, int32_t last,
                       const IntRect& visible, RasterizationSink& sink) {
    Start(edges, evenOdd);
    m_row.Begin(visible.left, visible.right);
    const Edge* next = edges.begin();
    const Edge* const stop = edges.end();
    const auto emit = [&](int32_t y) {
        const std::span<CoverageRun> runs = m_row.Take();
        if (!runs.empty() && y >= visible.top && y < visible.bottom) {
            sink.Row(y, runs);
        }
    };
    int32_t s = first;
    while (s < last) {
        const Edge* to = next;
        while (to != stop && to->first <= s) {
            ++to;
        }
        if (to != next) {
            Insert(next, to);
            next = to;
        }
        const int64_t limit = next != stop ? next->first : kNever;
        if (m_active.empty()) { // no edges until the next one begins
            if (next == stop) {
                break;
            }
            if (s >> 3 != next->first >> 3 && (s & 7) != 0) {
                emit(s >> 3);
            }
            s = next->first;
            continue;
        }
        if (trapezoids && (s & 7) == 0 && limit >= int64_t{s} + 8) {
            const int64_t end = FindBandEnd(s, limit);
            if (end >= int64_t{s} + 8) {
                EmitTrapezoids(s, static_cast<int32_t>(end), sink);
                s = static_cast<int32_t>(end);
                continue;
            }
        }
        AddSpans();
        Step(s + 1);
        ++s;
        if ((s & 7) == 0) {
            emit((s >> 3) - 1);
        }
    }
    if ((s & 7) != 0) {
        emit(s >> 3);
    }
}

} // namespace Graphics
