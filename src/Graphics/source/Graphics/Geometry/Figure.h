// SPDX-License-Identifier: MIT
// One figure of a path in one block of memory: points grow from the front, segment kinds from the back.
//
//   | P0 P1 P2 P3 ...  ->   free   <- ... k2 k1 k0 |
//
// P0 is the start point. A line takes one kind byte and one point, a cubic one kind byte and three points.
#pragma once

#include <span>

#include "../ProcessHeap.h"
#include "../Types.h"

namespace Graphics {

class Figure {
public:
    static constexpr uint8_t kLine = 0;
    static constexpr uint8_t kCubic = 1;

    Figure() noexcept = default;
    Figure(const Figure&) = delete;
    Figure& operator=(const Figure&) = delete;
    Figure(Figure&& o) noexcept { Swap(o); }
    Figure& operator=(Figure&& o) noexcept {
        Swap(o);
        return *this;
    }
    ~Figure() { ProcessHeap::Free(m_block); }

    /// Empties the figure and keeps its memory.
    void Reset() noexcept;
    void Start(const Point& p);
    void AddLine(const Point& p);
    void AddCubic(const Point& c1, const Point& c2, const Point& end);
    void SetClosed() noexcept { m_closed = true; }

    [[nodiscard]] bool Closed() const noexcept { return m_closed; }
    [[nodiscard]] uint32_t SegmentCount() const noexcept { return m_segmentCount; }
    [[nodiscard]] std::span<const Point> Points() const noexcept {
        return {reinterpret_cast<const Point*>(m_block), m_pointCount};
    }
    [[nodiscard]] uint8_t Kind(uint32_t segment) const noexcept { return m_block[m_size - 1 - segment]; }
    /// Whether the figure is kept: it has a point, and a segment or the closed flag.
    [[nodiscard]] bool Drawn() const noexcept { return m_pointCount != 0 && (m_segmentCount != 0 || m_closed); }

    /// Same closed flag, points and kinds, compared exactly.
    [[nodiscard]] bool Equals(const Figure& o) const noexcept;

    /// Sends the figure to a sink.
    template <class Sink> void Replay(Sink& sink) const {
        const Point* p = reinterpret_cast<const Point*>(m_block);
        const uint8_t* kind = m_block + m_size;
        const uint32_t count = m_segmentCount;
        sink.BeginFigure(*p++);
        for (uint32_t i = 0; i < count; ++i) {
            if (*--kind == kLine) {
                sink.LineTo(*p);
                p += 1;
            } else {
                sink.CubicTo(p[0], p[1], p[2]);
                p += 3;
            }
        }
        if (m_closed) {
            sink.EndFigureClose();
        } else {
            sink.EndFigure();
        }
    }

private:
    void Swap(Figure& o) noexcept;
    /// Makes room for `points` points and `kinds` kind bytes.
    Point* Grow(size_t points, size_t kinds);

    uint8_t* m_block = nullptr;
    size_t m_size = 0; // bytes of the block
    size_t m_free = 0; // bytes between points and kinds
    uint32_t m_pointCount = 0;
    uint32_t m_segmentCount = 0;
    bool m_closed = false;
};

} // namespace Graphics
