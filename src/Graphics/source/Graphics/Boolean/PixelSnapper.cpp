// SPDX-License-Identifier: MIT
#include "PixelSnapper.h"

#include <algorithm>
#include <cstdlib>

#include "SlotSort.h"

namespace Graphics {
namespace {

constexpr int kWayBits = 27;

[[nodiscard]] bool IsFlat(const GridEdge& e) noexcept { return e.hi.y - e.lo.y < std::abs(e.hi.x - e.lo.x); }

/// Whether an edge that rises passes through the pixel around a centre, which includes its left and lower borders.
/// Computed in doubled coordinates, in which corners of pixels are integers.
[[nodiscard]] bool Passes(const GridEdge& e, const GridPoint& centre) noexcept {
    const int64_t left = centre.x - 1, right = centre.x + 1, dx = e.hi.x - e.lo.x, dy = e.hi.y - e.lo.y;
    const int64_t low = std::max(e.lo.y, centre.y - 1), high = std::min(e.hi.y, centre.y + 1);
    if (low > high || low > centre.y) {
        return false;
    }
    const bool ends = e.hi.y <= centre.y; // otherwise the edge reaches the row's upper border, which is not part of the
                                          // row
    // x at the heights low and high, minus e.lo.x and times dy, compared with the sides in the same units.
    const int64_t xLow = dx * (low - e.lo.y), xHigh = dx * (high - e.lo.y);
    const int64_t l = (left - e.lo.x) * dy, r = (right - e.lo.x) * dy;
    if (dx >= 0) {
        return xLow < r && (xHigh > l || (xHigh == l && (ends || dx == 0)));
    }
    return xLow >= l && xHigh < r;
}

template <class Item, class NumberOf> void SortBy(HeapArray<Item>& items, const NumberOf& numberOf) {
    SlotSort<Item> sorter;
    if (!sorter.Sort(items, numberOf)) {
        std::sort(items.begin(), items.end(), [&](const Item& a, const Item& b) { return numberOf(a) < numberOf(b); });
    }
}

} // namespace

class PixelSnapper::CrossingCollector final : public LineSweep::Listener {
public:
    explicit CrossingCollector(HeapArray<uint64_t>& pixels) noexcept : m_pixels(pixels) {}

    void Meet(const GridPoint& at, bool, uint32_t, std::span<const uint32_t>, std::span<const uint32_t>) override {
        m_pixels.push_back(SweepKey(at));
    }
    void Answer(uint32_t, uint32_t) override {}

private:
    HeapArray<uint64_t>& m_pixels;
};

/// Queries the lower and the upper side of every pixel: queries 2i and 2i + 1 belong to pixel i.
class PixelSnapper::PassageCollector final : public LineSweep::Listener {
public:
    PassageCollector(PixelSnapper& snapper, const HeapArray<GridEdge>& lines, bool flat) noexcept
        : m_snapper(snapper), m_lines(lines), m_flat(flat) {}

    void Ask(LineSweep& sweep) const {
        for (const uint64_t pixel : m_snapper.m_pixels) {
            const GridPoint centre = Doubled(pixel);
            sweep.Ask({centre.x - 1, centre.y - 1});
            sweep.Ask({centre.x - 1, centre.y + 1});
        }
    }
    void Meet(const GridPoint&, bool, uint32_t, std::span<const uint32_t>, std::span<const uint32_t>) override {}
    void Answer(uint32_t question, uint32_t line) override {
        const uint64_t pixel = m_snapper.m_pixels[question / 2];
        const GridPoint p = PointOf(pixel);
        const GridEdge& e = m_snapper.m_edges[m_lines[line].line];
        if (!(p == e.lo) && !(p == e.hi) && Passes(m_lines[line], Doubled(pixel))) {
            const auto way = static_cast<uint64_t>(Reach(e.lo, p));
            m_snapper.m_passages.push_back({static_cast<uint64_t>(m_lines[line].line) << kWayBits | way, pixel});
        }
    }

private:
    [[nodiscard]] GridPoint Doubled(uint64_t pixel) const noexcept {
        const GridPoint p = PointOf(pixel);
        return m_flat ? GridPoint{2 * p.y, 2 * p.x} : GridPoint{2 * p.x, 2 * p.y};
    }

    PixelSnapper& m_snapper;
    const HeapArray<GridEdge>& m_lines;
    const bool m_flat;
};

uint32_t PixelSnapper::Snap(HeapArray<GridEdge>& out) {
    FindHotPixels();
    FindPassages(false);
    FindPassages(true);
    Link(out);
    return 2; // over all edges, and over the two kinds
}

void PixelSnapper::FindHotPixels() {
    CrossingCollector collector(m_pixels);
    LineSweep(m_edges).Run(collector);
    SortBy(m_pixels, [](uint64_t pixel) { return pixel; });
    m_pixels.resize(static_cast<size_t>(std::unique(m_pixels.begin(), m_pixels.end()) - m_pixels.begin()));
}

void PixelSnapper::FindPassages(bool flat) {
    HeapArray<GridEdge> lines;
    for (size_t i = 0; i < m_edges.size(); ++i) {
        const GridEdge& e = m_edges[i];
        if (IsFlat(e) == flat) {
            const bool turned = flat && e.hi.x < e.lo.x;
            const GridPoint &lo = turned ? e.hi : e.lo, &hi = turned ? e.lo : e.hi;
            GridEdge line;
            line.lo = flat ? GridPoint{2 * lo.y, 2 * lo.x} : GridPoint{2 * lo.x, 2 * lo.y};
            line.hi = flat ? GridPoint{2 * hi.y, 2 * hi.x} : GridPoint{2 * hi.x, 2 * hi.y};
            line.line = static_cast<uint32_t>(i);
            lines.push_back(line);
        }
    }
    if (lines.empty()) {
        return;
    }
    LineSweep sweep(lines);
    PassageCollector collector(*this, lines, flat);
    collector.Ask(sweep);
    sweep.Run(collector);
}

void PixelSnapper::Link(HeapArray<GridEdge>& out) const {
    HeapArray<Passage> passages;
    passages.resize(m_passages.size());
    std::copy(m_passages.begin(), m_passages.end(), passages.begin());
    SortBy(passages, [](const Passage& p) { return p.order; });
    out.clear();
    size_t next = 0;
    for (size_t i = 0; i < m_edges.size(); ++i) {
        const GridEdge& e = m_edges[i];
        GridPoint from = e.lo;
        const auto put = [&](const GridPoint& to) {
            if (from == to) {
                return;
            }
            const bool forward = Before(from, to);
            GridEdge link;
            link.lo = forward ? from : to;
            link.hi = forward ? to : from;
            link.a = forward ? e.a : -e.a;
            link.b = forward ? e.b : -e.b;
            link.line = e.line;
            out.push_back(link);
            from = to;
        };
        for (; next < passages.size() && passages[next].order >> kWayBits == i; ++next) {
            put(PointOf(passages[next].pixel)); // duplicates are ignored
        }
        put(e.hi);
    }
}

} // namespace Graphics
