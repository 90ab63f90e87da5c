// SPDX-License-Identifier: MIT
// Turns sides of the vertex loops into band edges in fixed point, then walks and sweeps band after band.
#include "BandScanner.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace Graphics {

namespace {

constexpr size_t kBandBytes = 128U << 10; // of cells: a band stays in the second-level cache
constexpr int32_t kFarFine = 1 << 22;     // band edges represent vertices up to 32768 pixels
constexpr int32_t kTallSubRows = 14 * 8;  // from this height of an upright edge on, a search for equal rows pays
constexpr int64_t kOne = int64_t{1} << kBandFraction;

} // namespace

// The exact position at step k is P_k = x + (error + denominator + k dx) / denominator, a multiple of 1 / dy.
// Claim: X_k, in units of 2^-42, has the same integer part as P_k.
// Proof: X_k exceeds P_k by a positive amount. The start and each step are rounded by doubles (relative error below
// 2^-52), truncated and raised by 2 or more, in all by less than 4 + k (4 + |step| 2^-50) units. Scan ensures that this
// stays below 1 / dy.
void BandScanner::AddSide(const Vertex& from, const Vertex& to) {
    const bool up = to.y < from.y;
    const Vertex a = up ? to : from;
    const Vertex b = up ? from : to;
    const int32_t top = a.y >> 4;
    const int32_t first = std::max(top, m_first);
    const int32_t last = std::min(b.y >> 4, m_last);
    const int32_t minX = std::min(a.x, b.x);
    const int32_t maxX = std::max(a.x, b.x);
    if (first >= last || minX >= m_allRight) {
        return;
    }
    BandEdge& e = *m_nextEdge;
    const int32_t dx = b.x - a.x;
    if (maxX <= m_allLeft) {
        e.x = 0;
        e.step = 0;
        e.flags = 0;
    } else {
        e.flags = minX < m_insideLeft || maxX > m_insideRight ? kEdgeClamp : 0;
        if (dx == 0) {
            e.x = (int64_t{UprightColumn(a.x)} - m_leftSub) * kOne;
            e.step = 0;
            m_hasUpright |= last - first >= kTallSubRows;
        } else {
            const int32_t dy = b.y - a.y;
            const double inverse = 1.0 / dy;
            // The position at the next multiple of 8 in y: floor((n dx - 1) / dy), an estimate corrected by its
            // remainder.
            const int32_t n = ((8 - (a.y & 7)) & 7) * dx - 1;
            auto q = static_cast<int32_t>(n * inverse);
            int32_t rest = n - q * dy;
            const int32_t low = rest >> 31;
            q += low;
            rest += low & dy;
            const int32_t high = ~((rest - dy) >> 31);
            q -= high;
            rest -= high & dy;
            int32_t x = a.x + q + 1;
            int32_t error = rest - dy;
            const int32_t c = x & 7;
            error -= c != 0 ? (8 - c) * dy : 0;
            x = UprightColumn(x);
            error >>= 4;
            if (first > top) {
                const int64_t moved = error + static_cast<int64_t>(first - top) * dx;
                int64_t quotient = moved / dy;
                int64_t remainder = moved - quotient * dy;
                if (remainder < 0) {
                    --quotient;
                    remainder += dy;
                }
                x = static_cast<int32_t>(x + quotient + 1);
                error = static_cast<int32_t>(remainder - dy);
            }
            e.x = (static_cast<int64_t>(x) - m_leftSub) * kOne +
                  static_cast<int64_t>((error + dy) * inverse * static_cast<double>(kOne)) + 2;
            const double slope = dx * inverse;
            if (slope < 524288.0 && slope > -524288.0) {
                const auto step = static_cast<int64_t>(slope * static_cast<double>(kOne));
                e.step = step + 2 + ((step < 0 ? -step : step) >> 51);
            } else {
                e.step = 0; // dy is at most 16: a single sub-scanline
            }
        }
    }
    e.y = first - m_origin;
    e.end = last - m_origin;
    e.flags |= up ? kEdgeUp : 0;
    uint32_t& head = m_heads[static_cast<size_t>(e.y >> m_bandShift)];
    e.next = head;
    head = static_cast<uint32_t>(m_nextEdge - m_edges.data());
    ++m_nextEdge;
}

bool BandScanner::Holds(int32_t minX, int32_t minY, int32_t maxX, int32_t maxY, int32_t subRows) noexcept {
    return minX >= -kFarFine && maxX <= kFarFine && minY >= -kFarFine && maxY <= kFarFine && subRows <= 1 << 17 &&
           (4 + 4 * static_cast<int64_t>(subRows)) * (static_cast<int64_t>(maxY) - minY) < kOne / 2;
}

bool BandScanner::FindChanges(int32_t rows) {
    // Shapes in which every row changes have about as many edges as rows.
    if (!m_hasUpright || m_nextEdge - m_edges.data() > rows) {
        return false;
    }
    const size_t words = static_cast<size_t>(rows) / 64 + 1; // including the row after the last
    m_changes.resize(words);
    std::fill_n(m_changes.data(), words, 0U);
    const auto note = [this](int32_t from, int32_t to) { // both inclusive
        SetBits(m_changes.data(), static_cast<uint32_t>(from), static_cast<uint32_t>(to));
    };
    for (BandEdge* e = m_edges.data(); e != m_nextEdge; ++e) {
        const int32_t first = e->y >> 3;
        const int32_t behind = (e->end + 7) >> 3; // the row after the edge's last one
        if (e->step != 0) {
            note(first, behind);
        } else {
            e->flags |= kEdgeInChanges;
            note(first, (e->y + 7) >> 3); // the rows in which it begins, up to the first that it crosses fully
            note(e->end >> 3, behind);    // the row in which it ends, and the row after
        }
    }
    return true;
}

void BandScanner::SendEqual(RasterizationSink& sink, int32_t y0, int32_t y1, std::span<CoverageRun> runs) {
    if (sink.Rows(y0, y1, runs)) {
        return;
    }
    // Row by row; the sink may change each row's bytes, so they are copied.
    const size_t shapeBytes = m_rowBlocks * 8;
    std::copy_n(m_shape.data(), shapeBytes, m_shape.data() + shapeBytes);
    CoverageRun* const kept = m_runs.data() + runs.size();
    std::copy(runs.begin(), runs.end(), kept);
    for (int32_t y = y0; y < y1; ++y) {
        if (y > y0) {
            std::copy_n(m_shape.data() + shapeBytes, shapeBytes, m_shape.data());
            std::copy_n(kept, runs.size(), runs.begin());
        }
        sink.Row(y, runs);
    }
}

bool BandScanner::Scan(const EdgeBuilder& builder, const FillShape& shape, const IntRect& visible,
                       RasterizationSink& sink) {
    if (shape.windingBound > BandKernels::kMostWinding) {
        return false;
    }
    const int32_t left = std::max(visible.left, (shape.minX - kRoom) >> 7);
    const int32_t right = std::min(visible.right, ((shape.maxX + kRoom) >> 7) + 1);
    const int32_t firstRow = std::max(visible.top, shape.first >> 3);
    const int32_t lastRow = std::min(visible.bottom, (shape.last + 7) >> 3);
    if (left >= right || firstRow >= lastRow) {
        return true;
    }
    m_origin = firstRow * 8;
    m_first = std::max(shape.first, m_origin);
    m_last = std::min(shape.last, lastRow * 8);
    if (!Holds(shape.minX, shape.minY, shape.maxX, shape.maxY, m_last - m_first)) {
        return false;
    }

    const int planeCase = BandKernels::CaseOf(shape.windingBound);
    BandFrame frame;
    frame.left = left;
    frame.width = right - left;
    // One word more than pixels; an odd number of blocks keeps equal columns of neighbouring rows apart in the cache.
    const auto blocks = (static_cast<size_t>(frame.width) + 8) / 8 | 1;
    frame.planeBytes = blocks * 64;
    frame.rowBytes = frame.planeBytes * BandKernels::PlanesOf(planeCase);
    frame.bitWords = (blocks + 63) / 64;
    const int32_t rows = lastRow - firstRow;
    m_bandShift = 3; // log2 of the sub-scanlines of a band
    while (m_bandShift < 9 && (frame.rowBytes << (m_bandShift - 2)) <= kBandBytes && rows > 1 << (m_bandShift - 3)) {
        ++m_bandShift;
    }
    const auto bandRows = std::min(int32_t{1} << (m_bandShift - 3), rows);
    const auto bands = static_cast<size_t>((rows * 8 - 1) >> m_bandShift) + 1;

    // Everything that may fail is done before the first output.
    const size_t cellBytes = frame.rowBytes * static_cast<size_t>(bandRows);
    const size_t bitCount = frame.bitWords * static_cast<size_t>(bandRows);
    if (m_dirty || m_cells.size() < cellBytes) {
        const size_t size = std::max(cellBytes, m_cells.size());
        m_cells.resize(size);
        std::memset(m_cells.data(), 0, size);
    }
    if (m_dirty || m_bits.size() < bitCount) {
        const size_t size = std::max(bitCount, m_bits.size());
        m_bits.resize(size);
        std::memset(m_bits.data(), 0, size * sizeof(uint64_t));
    }
    m_dirty = true;
    m_rowBlocks = blocks;
    m_shape.reserve(2 * blocks * 8);
    m_runs.reserve(2 * (2 * blocks + 2));
    m_edges.reserve(builder.SideCount() + 1);
    m_heads.resize(bands);
    std::fill_n(m_heads.data(), bands, kNoEdge);
    frame.cells = m_cells.data();
    frame.bits = m_bits.data();

    const int32_t leftFine = left * 128;
    const int32_t rightFine = right * 128;
    m_leftSub = left * 8;
    m_allLeft = leftFine - kRoom;
    m_allRight = rightFine + kRoom;
    m_insideLeft = leftFine + kRoom;
    m_insideRight = rightFine - kRoom;
    if (left > visible.left) {
        m_insideLeft = INT_MIN; // the frame was made for this shape
    }
    if (right < visible.right) {
        m_insideRight = INT_MAX;
    }
    m_nextEdge = m_edges.data();
    m_hasUpright = false;
    builder.ForEachSide([this](const Vertex& from, const Vertex& to) { AddSide(from, to); });

    const bool hasEqualRows = FindChanges(rows);
    frame.changes = hasEqualRows ? m_changes.data() : nullptr;

    const auto walk = m_kernels->walk[planeCase];
    const auto sweep = m_kernels->sweep[planeCase];
    uint32_t following = kNoEdge;
    for (size_t band = 0; band < bands; ++band) {
        const auto bandFirst = static_cast<int32_t>(band << m_bandShift);
        const int32_t bandLast = std::min(bandFirst + (1 << m_bandShift), rows * 8);
        uint32_t goingOn = walk(frame, m_edges.data(), following, bandFirst, bandLast, kNoEdge);
        following = walk(frame, m_edges.data(), m_heads[band], bandFirst, bandLast, goingOn);
        uint8_t* cells = frame.cells;
        uint64_t* bits = frame.bits;
        for (int32_t y = bandFirst; y < bandLast; y += 8) {
            const size_t count = sweep(frame, cells, bits, m_shape.data(), m_runs.data());
            if (count != 0) {
                const int32_t row = y >> 3;
                const int32_t behind = hasEqualRows ? NextChange(m_changes.data(), row + 1, rows) : row + 1;
                if (behind == row + 1) {
                    sink.Row(firstRow + row, {m_runs.data(), count});
                } else {
                    SendEqual(sink, firstRow + row, firstRow + behind, {m_runs.data(), count});
                }
            }
            cells += frame.rowBytes;
            bits += frame.bitWords;
        }
    }
    m_dirty = false;
    return true;
}

} // namespace Graphics
